// SPDX-License-Identifier: MIT
#include "plugin/fbx/exporter/mesh_stack.h"

#include "host/scene/morpher_modifier.h"
#include "host/scene/node.h"
#include "host/scene/skin_modifier.h"
#include "host/scene/subdivision_modifier.h"
#include "plugin/frame/class_table.h"

namespace tavrilon::fbx_export {

using namespace corvanta;

namespace {

template <class T>
T* As(Modifier* modifier) {
  return modifier->SuperClassID() == kModifierSuper && modifier->ClassID() == T::kClassId ? static_cast<T*>(modifier)
                                                                                          : nullptr;
}

/// Modifiers that pass every mesh through as it is.
bool LeavesMeshAlone(const Modifier* modifier) {
  return IsOfClass(modifier, TavrilonClass::AnimationManagerMod) || IsOfClass(modifier, TavrilonClass::IKFKDisplayMod);
}

/// Walks a stack from its top.
class StackReader {
 public:
  StackReader(const WStr& mesh, MeshStack& stack, std::vector<WStr>& log) : mesh_(mesh), stack_(stack), log_(log) {}

  WStr Read(Modifier* modifier) {
    if (LeavesMeshAlone(modifier)) return {};
    if (auto* subdivision = As<SubdivisionModifier>(modifier)) return ReadSubdivision(*subdivision);
    if (auto* skin = As<SkinModifier>(modifier)) return ReadSkin(*skin);
    if (auto* morpher = As<MorpherModifier>(modifier)) return ReadMorpher(*morpher);
    return L"Mesh '" + mesh_ + L"' has the modifier '" + modifier->GetName() +
           L"', which cannot be exported: only Skin, Morpher and a subdivision on top of them can.";
  }

 private:
  template <class T>
  bool IsOff(T& modifier) {
    if (modifier.GetParamBlock()->GetBool(T::kEnabled)) return false;
    log_.push_back(L"The " + modifier.GetName() + L" of mesh '" + mesh_ + L"' is turned off and was left out.");
    return true;
  }

  WStr ReadSubdivision(SubdivisionModifier& subdivision) {
    ParamBlock2* block = subdivision.GetParamBlock();
    const int levels = block ? block->GetInt(SubdivisionModifier::kLevels) : -1;
    if (levels < 0 || levels > SubdivisionModifier::kMaxLevels)
      return L"Could not read supported subdivision levels for mesh '" + mesh_ + L"'.";
    if (IsOff(subdivision)) return {};
    if (hasSubdivision_ || stack_.skin || stack_.morpher)
      return L"Mesh '" + mesh_ + L"' may have only a single subdivision modifier above its Skin and Morpher.";
    hasSubdivision_ = true;
    stack_.subdivisionLevels = levels;
    return {};
  }

  WStr ReadSkin(SkinModifier& skin) {
    if (IsOff(skin)) return {};
    if (stack_.morpher) return MorpherMisplaced();
    if (stack_.skin) return L"Mesh '" + mesh_ + L"' has more than one Skin, which cannot be exported.";
    stack_.skin = &skin;
    return {};
  }

  WStr ReadMorpher(MorpherModifier& morpher) {
    if (stack_.morpher) return MorpherMisplaced();
    stack_.morpher = &morpher;
    return {};
  }

  WStr MorpherMisplaced() const {
    return L"Mesh '" + mesh_ + L"' must have one Morpher directly below the Skin, or at the top of an unskinned mesh.";
  }

  const WStr& mesh_;
  MeshStack& stack_;
  std::vector<WStr>& log_;
  bool hasSubdivision_ = false;
};

}  // namespace

bool HasMesh(const INode& node) {
  const Object* base = node.GetBaseObject();
  return base && base->SuperClassID() == kGeomObjectSuper && base->ClassID() == MeshObject::kClassId;
}

bool HasPolygons(const INode& node) {
  return static_cast<const MeshObject*>(node.GetBaseObject())->GetMesh().NumPolygons() > 0;
}

WStr ReadMeshStack(INode& node, MeshStack& stack, std::vector<WStr>& log) {
  stack = {};
  stack.object = static_cast<MeshObject*>(node.GetBaseObject());
  StackReader reader(node.GetName(), stack, log);
  for (Modifier* modifier : node.Modifiers()) {
    WStr error = reader.Read(modifier);
    if (!error.empty()) return error;
  }
  return {};
}

}  // namespace tavrilon::fbx_export
