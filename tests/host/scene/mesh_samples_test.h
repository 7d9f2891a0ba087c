// SPDX-License-Identifier: MIT
// Small meshes and a skinned, morphed, painted node for tests.
#pragma once

#include "host/scene/material.h"
#include "host/scene/morpher_modifier.h"
#include "host/scene/point_helper.h"
#include "host/scene/skin_modifier.h"
#include "host/scene/subdivision_modifier.h"
#include "support/test_objects.h"

namespace corvanta::mesh_samples {

/// The corners by bits: 1 x, 2 y, 4 z.
inline Mesh Cube(float size) {
  Mesh mesh;
  for (int i = 0; i < 8; ++i) mesh.points.push_back({i & 1 ? size : 0, i & 2 ? size : 0, i & 4 ? size : 0});
  constexpr int kSides[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
  for (const auto& side : kSides) mesh.AddPolygon(side);
  return mesh;
}

inline std::shared_ptr<const Mesh> Share(Mesh mesh) { return std::make_shared<const Mesh>(std::move(mesh)); }

inline INode* MeshNode(Mesh mesh) {
  auto* object = new MeshObject;
  const Ref<MeshObject> keep(object);
  object->SetMesh(Share(std::move(mesh)));
  return GetScene().CreateObjectNode(object);
}

inline INode* BoneNode(const WStr& name) {
  INode* node = GetScene().CreateObjectNode(new PointHelper);
  node->SetName(name);
  return node;
}

/// Undoable, and tells dependents.
inline void Place(INode* node, const Matrix3& tm) { node->SetNodeTM(0, tm); }

/// Each point with all its weight on one bone.
inline std::shared_ptr<const SkinWeights> Rigid(const std::vector<int>& bones) {
  auto weights = std::make_shared<SkinWeights>();
  for (const int bone : bones) {
    const SkinWeight w{bone, 1};
    weights->Add({&w, 1});
  }
  return weights;
}

inline std::shared_ptr<const std::vector<MorphTarget>> Targets(std::vector<MorphTarget> targets) {
  return std::make_shared<const std::vector<MorphTarget>>(std::move(targets));
}

/// A cube with everything a mesh can have, with a skin of two bones, a morpher, a subdivision and materials.
struct Figure {
  INode* node;
  INode* bones[2];
  SkinModifier* skin;
  MorpherModifier* morpher;
  SubdivisionModifier* subdivision;
};

inline Mesh FullCube(float size) {
  Mesh mesh = Cube(size);
  mesh.smoothing = {1, 1, 2, 2, 4, 4};
  mesh.materials = {0, 1, 0, 1, 0, 1};
  MeshMap map{1, L"map", {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {}};
  for (size_t i = 0; i < mesh.corners.size(); ++i) map.corners.push_back(static_cast<int>(i % 4));
  mesh.maps = {map};
  mesh.normals = {{0, 0, 1}};
  mesh.normalCorners.assign(mesh.corners.size(), 0);
  return mesh;
}

inline Figure MakeFigure() {
  Figure f{};
  f.node = MeshNode(FullCube(2));
  for (int i = 0; i < 2; ++i) {
    f.bones[i] = BoneNode(i ? L"high" : L"low");
    Place(f.bones[i], TransMatrix({0, 0, i * 1.0f}));
  }
  f.morpher = new MorpherModifier;
  f.node->AddModifier(f.morpher);
  f.morpher->AddChannel(L"grow")->SetTargets(Targets({{50, {7}, {{1, 0, 0}}}, {100, {6, 7}, {{0, 1, 0}, {3, 0, 0}}}}));
  f.skin = new SkinModifier;
  f.node->AddModifier(f.skin);
  for (INode* bone : f.bones) f.skin->AddBone(bone, bone->GetNodeTM(0));
  f.skin->SetMeshBindTM(f.node->GetObjectTM(0));
  f.skin->SetWeights(Rigid({0, 0, 0, 0, 1, 1, 1, 1}));
  f.subdivision = new SubdivisionModifier;
  f.node->AddModifier(f.subdivision);
  auto* material = new MultiMaterial;
  f.node->SetMtl(material);
  auto* painted = new PhysicalMaterial;
  material->AppendSubMtl(painted);
  painted->SetName(L"skin");
  painted->GetParamBlock()->SetValue(PhysicalMaterial::kBaseColor, 0, Colour{1, 0, 0});
  auto* picture = new BitmapMap;
  painted->GetParamBlock()->SetValue(PhysicalMaterial::kBaseColorMap, 0, static_cast<ReferenceTarget*>(picture));
  picture->GetParamBlock()->SetValue(BitmapMap::kFileName, 0, L"skin.png");
  return f;
}

}  // namespace corvanta::mesh_samples
