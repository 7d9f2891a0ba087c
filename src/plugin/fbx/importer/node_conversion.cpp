// SPDX-License-Identifier: MIT
// The hierarchy: which host object a node becomes, its name, colour, visibility and properties.
#include "host/scene/node.h"
#include "plugin/fbx/importer/conversion.h"

namespace tavrilon::fbx_import {

using namespace corvanta;
using namespace fbx;

namespace {

/// What becomes of an attribute, and the sentence for the log where the host has nothing of its kind.
struct KindRow {
  AttributeKind attribute;
  PlannedKind kind;
  const char* note;
};
constexpr KindRow kKinds[] = {
    {AttributeKind::Null, PlannedKind::Helper, nullptr},
    {AttributeKind::Skeleton, PlannedKind::Bone, nullptr},
    {AttributeKind::Mesh, PlannedKind::Mesh, nullptr},
    {AttributeKind::Camera, PlannedKind::Helper, "Cameras come in as point helpers"},
    {AttributeKind::Light, PlannedKind::Helper, "Lights come in as point helpers"},
    {AttributeKind::Other, PlannedKind::Helper, "Nodes of other kinds come in as point helpers"},
};

const KindRow& RowOf(const FbxNode& node) {
  const FbxNodeAttribute* attribute = node.GetNodeAttribute();
  for (const KindRow& row : kKinds)
    if (attribute && row.attribute == attribute->Kind()) return row;
  return kKinds[0];
}

uint32_t WireColour(const Vector3& c) {
  const auto part = [](double v) { return static_cast<float>(v > 0 ? std::min(v, 1.0) : 0); };
  return PackColour({part(c.x), part(c.y), part(c.z)});
}

PlannedNode Describe(const Conversion& conversion, const FbxNode& node) {
  PlannedNode planned;
  planned.name = FromUtf8(node.GetName());
  const KindRow& row = RowOf(node);
  planned.kind = row.kind;
  if (row.note) conversion.Note(row.note, node.GetName());
  if (planned.kind == PlannedKind::Mesh && !conversion.options.skeletalMesh) planned.kind = PlannedKind::Helper;
  planned.visible = node.visible;
  if (const FbxNodeAttribute* attribute = node.GetNodeAttribute())
    if (attribute->colour) planned.wireColour = WireColour(*attribute->colour);
  for (const auto& [key, value] : node.userProperties) planned.userProps[FromUtf8(key)] = FromUtf8(value);
  return planned;
}

struct Waiting {
  const FbxNode* node;
  int parent, depth;
};

void PushChildren(const FbxNode& node, int number, int depth, std::vector<Waiting>& waiting) {
  for (int i = node.GetChildCount(); i-- > 0;) waiting.push_back({node.GetChild(i), number, depth});
}

}  // namespace

WStr ConvertNodes(Conversion& conversion) {
  std::vector<Waiting> waiting;
  PushChildren(*conversion.scene.GetRootNode(), -1, 1, waiting);
  while (!waiting.empty()) {
    const Waiting next = waiting.back();
    waiting.pop_back();
    if (next.depth > INode::kMaxDepth)
      return Format(L"The hierarchy is deeper than %d nodes at '%s'.", INode::kMaxDepth,
                    FromUtf8(next.node->GetName()).c_str());
    const int number = static_cast<int>(conversion.plan.nodes.size());
    if (number >= conversion.options.limits.maxNodes)
      return Format(L"The file has more than %d nodes, which is more than can be imported.",
                    conversion.options.limits.maxNodes);
    conversion.numbers[next.node] = number;
    conversion.sources.push_back(next.node);
    conversion.plan.nodes.push_back(Describe(conversion, *next.node));
    conversion.plan.nodes.back().parent = next.parent;
    PushChildren(*next.node, number, next.depth + 1, waiting);
  }
  return {};
}

}  // namespace tavrilon::fbx_import
