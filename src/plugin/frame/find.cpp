// SPDX-License-Identifier: MIT
#include "plugin/frame/find.h"

#include "plugin/frame/animation_manager_mod.h"

namespace tavrilon {

using namespace corvanta;

namespace {

// What a dependent of a transform controller says about the owner.
INode* OwnerThrough(ReferenceMaker* dependent, const Control* control) {
  ReferenceTarget* target = dependent->AsTarget();
  if (!target) return nullptr;
  if (INode* node = target->AsNode()) return node->GetTMController() == control ? node : nullptr;
  return target->SuperClassID() == kMatrixControlSuper ? FindOwnerNode(target->AsControl()) : nullptr;
}

bool IsMarkedRoot(const INode* node) {
  AnimationManagerMod* manager = FindManagerMod(node);
  ParamBlock2* block = manager ? manager->GetParamBlock() : nullptr;
  return block && block->GetBool(AnimationManagerMod::kRoot);
}

}  // namespace

INode* FindOwnerNode(const Control* control) {
  INode* owner = nullptr;
  if (control)
    control->FindDependent([&](ReferenceMaker* dependent) {
      owner = OwnerThrough(dependent, control);
      return owner != nullptr;
    });
  return owner;
}

AnimationManagerMod* FindManagerMod(const INode* node) {
  Object* object = node ? node->GetObjectRef() : nullptr;
  while (object && object->SuperClassID() == kDerivedObjectSuper) {
    auto* derived = static_cast<DerivedObject*>(object);
    for (int i = 0; i < derived->NumModifiers(); ++i)
      if (IsOfClass(derived->GetModifier(i), TavrilonClass::AnimationManagerMod))
        return static_cast<AnimationManagerMod*>(derived->GetModifier(i));
    object = derived->GetObjRef();
  }
  return nullptr;
}

INode* FindRigRoot(INode* node) {
  for (INode* at = node; at && !at->IsRootNode(); at = at->GetParentNode())
    if (IsMarkedRoot(at)) return at;
  for (INode* at = node; at && !at->IsRootNode(); at = at->GetParentNode())
    if (!at->GetParentNode() || at->GetParentNode()->IsRootNode()) return at;
  return nullptr;
}

}  // namespace tavrilon
