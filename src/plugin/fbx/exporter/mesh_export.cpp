// SPDX-License-Identifier: MIT
#include "plugin/fbx/exporter/mesh_export.h"

#include "plugin/fbx/exporter/material_export.h"
#include "plugin/fbx/exporter/mesh_layout.h"
#include "plugin/fbx/exporter/morph_export.h"
#include "plugin/fbx/exporter/skin_export.h"

namespace tavrilon::fbx_export {

using namespace corvanta;
using namespace fbx;

namespace {

void LogLeftOut(ExportJob& job, const WStr& name, const Mesh& mesh, const MeshLayout& layout) {
  const auto note = [&](int count, const wchar_t* what) {
    if (count > 0) job.Log(Format(L"%d %s of mesh '%s' stayed behind.", count, what, name.c_str()));
  };
  note(layout.NumLoosePoints(), L"points without a polygon");
  note(mesh.NumPolygons() - static_cast<int>(layout.oldPolygons.size()), L"polygons of fewer than three points");
  for (const MeshMap& map : mesh.maps)
    if (map.channel == 0) note(1, L"channel of vertex colours");
}

bool CheckMesh(ExportJob& job, const WStr& name, const Affine& offset, const Mesh& mesh) {
  if (!IsSound(offset)) return job.Fail(L"Mesh '" + name + L"' has an invalid or singular vertex transform.");
  const std::string fault = FaultOf(mesh);
  if (!fault.empty()) return job.Fail(L"Mesh '" + name + L"' is damaged: " + FromUtf8(fault) + L".");
  for (size_t i = 0; i < mesh.points.size(); ++i)
    if (!IsFinite(ToVector(mesh.points[i]) * offset))
      return job.Fail(Format(L"Mesh '%s' has no place for its point %d: a coordinate is no finite number.",
                             name.c_str(), static_cast<int>(i)));
  return true;
}

bool ExportMesh(ExportJob& job, ExportNode& node) {
  const MeshStack& stack = *node.mesh;
  const Mesh& mesh = stack.object->GetMesh();
  const WStr& name = node.node->GetName();
  const Affine offset = ToAffine(node.node->GetObjOffsetTM());
  if (!CheckMesh(job, name, offset, mesh)) return false;

  const MeshLayout layout = LayOut(mesh, offset);
  LogLeftOut(job, name, mesh, layout);
  auto& out = static_cast<FbxMesh&>(*node.out->GetNodeAttribute());
  FillMesh(mesh, layout, out);
  if (stack.subdivisionLevels > 0) {
    out.smoothness = 2;
    out.previewLevels = out.renderLevels = stack.subdivisionLevels;
  }
  ExportMaterials(job, node, mesh, layout, out);
  if (stack.morpher && !ExportMorpher(job, node, mesh, layout, out)) return false;
  return !stack.skin || ExportSkin(job, node, layout, out);
}

/// Nodes of the bind pose, by their places in the list.
std::vector<bool> BoundNodes(const ExportJob& job) {
  std::vector<bool> bound(job.nodes.size());
  // From the end, so that a node is marked before its parent is asked for.
  for (size_t i = job.nodes.size(); i-- > 0;) {
    if (job.nodes[i].bind) bound[i] = true;
    if (bound[i] && job.nodes[i].parent >= 0) bound[static_cast<size_t>(job.nodes[i].parent)] = true;
  }
  return bound;
}

}  // namespace

bool ExportMeshes(ExportJob& job) {
  for (ExportNode& node : job.nodes)
    if (node.mesh && !ExportMesh(job, node)) return false;
  return true;
}

void ExportBindPose(ExportJob& job) {
  const std::vector<bool> bound = BoundNodes(job);
  FbxPose* pose = nullptr;
  for (size_t i = 0; i < job.nodes.size(); ++i) {
    if (!bound[i]) continue;
    if (!pose) pose = FbxPose::Create(job.scene, "BindPose");
    const ExportNode& node = job.nodes[i];
    pose->entries.push_back({node.out, node.bind ? *node.bind : node.rest});
  }
}

}  // namespace tavrilon::fbx_export
