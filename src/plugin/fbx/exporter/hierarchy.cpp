// SPDX-License-Identifier: MIT
#include "plugin/fbx/exporter/hierarchy.h"

#include <unordered_set>

#include "host/maths/colour.h"
#include "host/scene/bone_object.h"
#include "host/scene/scene.h"
#include "host/scene/skin_modifier.h"
#include "plugin/fbx/exporter/names.h"

namespace tavrilon::fbx_export {

using namespace corvanta;
using namespace fbx;

namespace {

BoneObject* BoneOf(const INode& node) {
  Object* base = node.GetBaseObject();
  return base && base->SuperClassID() == kGeomObjectSuper && base->ClassID() == BoneObject::kClassId
             ? static_cast<BoneObject*>(base)
             : nullptr;
}

int ExportedParent(const ExportJob& job, const INode* node) {
  for (const INode* above = node->GetParentNode(); above; above = above->GetParentNode()) {
    const auto found = job.places.find(above);
    if (found != job.places.end()) return found->second;
  }
  return -1;
}

/// Keeps a bind matrix for the node; a second skin that tells another one is logged.
void SetBind(ExportJob& job, ExportNode& node, const Affine& bind) {
  if (!node.bind) {
    node.bind = bind;
    return;
  }
  for (size_t i = 0; i < 4; ++i)
    // Binds of one pose, recorded at different times, differ by rounding.
    if (Length(node.bind->row[i] - bind.row[i]) > 1e-4 * (1 + Length(bind.row[i]))) {
      job.Log(L"Skins bind '" + node.node->GetName() + L"' in different places; the still pose is that of the first.");
      return;
    }
}

bool ReadBinds(ExportJob& job, ExportNode& mesh) {
  const SkinModifier& skin = *mesh.mesh->skin;
  const WStr& name = mesh.node->GetName();
  if (skin.NumBones() == 0) return job.Fail(L"Skin has no bones on mesh '" + name + L"'.");
  for (int i = 0; i < skin.NumBones(); ++i) {
    const INode* bone = skin.GetBone(i);
    ExportNode* exported = bone ? job.Find(bone) : nullptr;
    const WStr boneName = bone ? bone->GetName() : L"<missing>";
    if (!exported) {
      job.Log(bone ? L"Mesh '" + name + L"' is skinned to '" + boneName + L"': select it too."
                   : L"A bone of the Skin on mesh '" + name + L"' was deleted: take it out of the Skin.");
      return job.Fail(L"Skin bone '" + boneName + L"' is missing from the exported hierarchy.");
    }
    const Affine bind = ToAffine(skin.GetBoneBindTM(i));
    if (!IsSound(bind)) return job.Fail(L"Skin bone '" + boneName + L"' has an invalid or singular bind transform.");
    SetBind(job, *exported, bind * job.axes);
  }
  const Affine offset = ToAffine(mesh.node->GetObjOffsetTM());
  const Affine meshBind = ToAffine(skin.GetMeshBindTM());
  if (!IsSound(meshBind)) return job.Fail(L"Mesh '" + name + L"' has a singular export or bind transform.");
  if (!IsSound(offset)) return job.Fail(L"Mesh '" + name + L"' has an invalid or singular vertex transform.");
  SetBind(job, mesh, Inverse(offset) * meshBind * job.axes);
  return true;
}

FbxSkeleton* MakeLimb(ExportJob& job, const INode& node, const std::string& name) {
  FbxSkeleton* limb = FbxSkeleton::Create(job.scene, name);
  if (BoneObject* bone = limb ? BoneOf(node) : nullptr)
    limb->limbLength = bone->GetParamBlock()->GetFloat(BoneObject::kLength);
  return limb;
}

FbxNodeAttribute* MakeAttribute(ExportJob& job, const ExportNode& node, const std::string& name) {
  if (node.mesh) return FbxMesh::Create(job.scene, name);
  if (BoneOf(*node.node) || node.node->State().boneOn || node.bind) return MakeLimb(job, *node.node, name);
  return FbxNull::Create(job.scene, name);
}

bool IsVisible(INode& node, TimeValue t) {
  if (node.IsHidden()) return false;
  Control* control = node.GetVisController();
  if (!control) return true;
  float share = 1;
  Interval valid = FOREVER;
  control->GetValue(t, share, valid, CTRL_ABSOLUTE);
  return share > 0;
}

bool MakeNode(ExportJob& job, ExportNode& node, const std::string& name) {
  const NodeState& state = node.node->State();
  node.out = FbxNode::Create(job.scene, name);
  FbxNodeAttribute* attribute = node.out ? MakeAttribute(job, node, name) : nullptr;
  if (!attribute) return false;
  const Colour colour = UnpackColour(state.wireColour);
  attribute->colour = Vector3{colour.r, colour.g, colour.b};
  node.out->SetNodeAttribute(attribute);
  node.out->visible = IsVisible(*node.node, job.times.start);
  for (const auto& [key, value] : state.userProps) node.out->userProperties[ToUtf8(key)] = ToUtf8(value);
  FbxNode* parent = node.parent < 0 ? job.scene.GetRootNode() : job.nodes[static_cast<size_t>(node.parent)].out;
  return node.out->GetParent() == parent || parent->AddChild(node.out);
}

}  // namespace

std::vector<INode*> InTreeOrder(const std::vector<INode*>& nodes) {
  std::unordered_set<const INode*> wanted;
  for (const INode* node : nodes)
    if (node && !node->IsRootNode() && node->IsInScene()) wanted.insert(node);
  std::vector<INode*> ordered, level{GetScene().GetRootNode()}, next;
  while (!level.empty() && ordered.size() < wanted.size()) {
    next.clear();
    for (INode* node : level) {
      if (wanted.count(node)) ordered.push_back(node);
      next.insert(next.end(), node->Children().begin(), node->Children().end());
    }
    level.swap(next);
  }
  return ordered;
}

bool ListNodes(ExportJob& job, const std::vector<INode*>& nodes) {
  job.nodes.resize(nodes.size());
  for (size_t i = 0; i < nodes.size(); ++i) {
    ExportNode& node = job.nodes[i];
    node.node = nodes[i];
    node.parent = ExportedParent(job, nodes[i]);
    if (node.parent >= 0) job.nodes[static_cast<size_t>(node.parent)].hasChildren = true;
    job.places[nodes[i]] = static_cast<int>(i);
    if (!job.options.skeletalMesh || !HasMesh(*nodes[i])) continue;
    if (!HasPolygons(*nodes[i])) {
      job.Log(L"Mesh '" + nodes[i]->GetName() + L"' has no polygons and is exported as a null.");
      continue;
    }
    node.mesh.emplace();
    WStr error = ReadMeshStack(*nodes[i], *node.mesh, job.report.log);
    if (!error.empty()) return job.Fail(std::move(error));
  }
  for (ExportNode& node : job.nodes)
    if (node.mesh && node.mesh->skin && !ReadBinds(job, node)) return false;
  return true;
}

bool MakeNodes(ExportJob& job) {
  UniqueNames names;
  for (const ExportNode& node : job.nodes) names.Reserve(node.node->GetName());
  for (ExportNode& node : job.nodes) {
    bool changed = false;
    const std::string name = names.Take(node.node->GetName(), "Node", &changed);
    if (changed)
      job.Log(L"Node '" + node.node->GetName() + L"' is exported as '" + FromUtf8(name) +
              L"': readers need each name once.");
    if (!MakeNode(job, node, name)) return job.Fail(L"Could not export the FBX hierarchy.");
    if (node.node->GetVisController() && job.options.animation)
      job.Log(L"The visibility of '" + node.node->GetName() + L"' is exported as it is at the first sample.");
  }
  return true;
}

}  // namespace tavrilon::fbx_export
