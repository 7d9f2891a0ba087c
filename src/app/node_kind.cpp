// SPDX-License-Identifier: MIT
#include "app/node_kind.h"

#include <algorithm>
#include <sstream>

#include "app/nearest_name.h"
#include "host/core/class_desc.h"
#include "host/scene/bone_object.h"

namespace app {

using namespace corvanta;

namespace {

constexpr const char* kNames[kNodeKinds] = {"controls", "bones", "helpers", "guides", "meshes"};
constexpr const char* kSingular[kNodeKinds] = {"control", "bone", "helper", "guide", "mesh"};

bool IsOfClass(const Object& object, const wchar_t* name) {
  const ClassDesc* desc = ClassDirectory::Get().FindByName(name);
  return desc != nullptr && desc->classId == object.ClassID() && desc->superClass == object.SuperClassID();
}

}  // namespace

NodeKind KindOf(INode& node) {
  const Object* object = node.GetBaseObject();
  if (object == nullptr) return NodeKind::Helper;
  if (object->ClassID() == BoneObject::kClassId) return NodeKind::Bone;
  if (IsOfClass(*object, L"ControlShape") || IsOfClass(*object, L"ControlHelper")) return NodeKind::Control;
  if (IsOfClass(*object, L"Rig")) return NodeKind::Guide;
  return object->SuperClassID() == kHelperSuper ? NodeKind::Helper : NodeKind::Mesh;
}

const char* KindName(NodeKind kind) { return kNames[static_cast<int>(kind)]; }

const char* KindName(NodeKind kind, int count) {
  return count == 1 ? kSingular[static_cast<int>(kind)] : KindName(kind);
}

std::string ReadKinds(const std::string& list, std::vector<NodeKind>& kinds) {
  std::vector<std::string> names(std::begin(kNames), std::end(kNames));
  names.push_back("all");
  std::istringstream words(list);
  for (std::string word; std::getline(words, word, ',');) {
    const auto found = std::find(names.begin(), names.end(), word);
    if (found == names.end()) {
      return "\"" + word + "\" is no kind of node" + Suggestion(word, names) +
             " (controls, bones, helpers, guides, meshes or all)";
    }
    const bool all = word == "all";
    const int first = all ? 0 : static_cast<int>(found - names.begin());
    for (int i = first; i < (all ? kNodeKinds : first + 1); ++i) kinds.push_back(static_cast<NodeKind>(i));
  }
  return kinds.empty() ? "no kind of node is named" : "";
}

}  // namespace app
