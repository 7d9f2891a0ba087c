// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/scene.h"

#include <gtest/gtest.h>

#include "plugin/fbx_format/scene_samples.h"

namespace tavrilon::fbx {
namespace {

TEST(FbxNode, Children) {
  const auto scene = FbxScene::Create("s");
  FbxNode* root = scene->GetRootNode();
  FbxNode* a = FbxNode::Create(*scene, "a");
  FbxNode* b = FbxNode::Create(*scene, "b");
  FbxNode* c = FbxNode::Create(*scene, "c");
  EXPECT_EQ(root->GetParent(), nullptr);
  EXPECT_EQ(root->GetChildCount(), 3);
  ASSERT_TRUE(a->AddChild(b) && b->AddChild(c));
  EXPECT_EQ(root->GetChildCount(), 1);
  EXPECT_EQ(c->GetParent(), b);
  // Loops, the root and nothing are refused and change nothing.
  EXPECT_FALSE(c->AddChild(a));
  EXPECT_FALSE(a->AddChild(a));
  EXPECT_FALSE(a->AddChild(root));
  EXPECT_FALSE(a->AddChild(nullptr));
  EXPECT_EQ(a->GetParent(), root);
  EXPECT_EQ(b->GetChildCount(), 1);
  EXPECT_EQ(scene->Nodes(), (std::vector<FbxNode*>{a, b, c}));
}

// Nothing that is left knows what went.
TEST(FbxObject, DestroyTakesEveryLinkOut) {
  SmallScene s;
  EXPECT_EQ(s.node->SetNodeAttribute(s.mesh), s.mesh);

  s.bone->Destroy();
  EXPECT_EQ(s.tip->GetParent(), s.node);
  EXPECT_EQ(s.node->GetChildCount(), 1);
  EXPECT_EQ(s.skin->clusters[0].link, nullptr);
  EXPECT_EQ(s.pose->entries.size(), 1u);
  EXPECT_EQ(s.curves->target, nullptr);
  EXPECT_EQ(s.scene->Nodes(), (std::vector<FbxNode*>{s.node, s.tip}));
  s.texture->Destroy();
  EXPECT_TRUE(s.material->textures.empty());
  s.material->Destroy();
  EXPECT_TRUE(s.node->materials.empty() && s.scene->Materials().empty());
  s.skin->Destroy();
  s.channel->Destroy();
  EXPECT_TRUE(s.mesh->skins.empty() && s.blend->channels.empty());
  s.blend->Destroy();
  EXPECT_TRUE(s.mesh->blendShapes.empty());
  s.mesh->Destroy();
  EXPECT_EQ(s.node->GetNodeAttribute(), nullptr);
  s.curves->Destroy();
  EXPECT_TRUE(s.layer->curveNodes.empty());
  s.layer->Destroy();
  EXPECT_TRUE(s.stack->layers.empty());
  s.stack->Destroy();
  s.pose->Destroy();
  EXPECT_TRUE(s.scene->Stacks().empty() && s.scene->Poses().empty());
  EXPECT_EQ(s.scene->Objects().size(), 2u);
}

TEST(FbxScene, CurrentStack) {
  const auto scene = FbxScene::Create("s");
  EXPECT_EQ(scene->CurrentStack(), nullptr);
  FbxAnimStack* walk = FbxAnimStack::Create(*scene, "walk");
  FbxAnimStack* run = FbxAnimStack::Create(*scene, "run");
  EXPECT_EQ(scene->CurrentStack(), walk);
  scene->currentStack = "run";
  EXPECT_EQ(scene->CurrentStack(), run);
  scene->currentStack = "gone";
  EXPECT_EQ(scene->CurrentStack(), walk);
}

TEST(FbxAxisSystem, Conversions) {
  // What stands up, in front and to the side goes where the other system has it.
  struct Row {
    const char* name;
    FbxAxisSystem from, to;
    Vector3 x, y, z;
  };
  const FbxAxisSystem leftHanded{1, 1, 2, -1, 0, 1};
  const Row rows[] = {
      {"Y up to Z up", FbxAxisSystem::YUp(), FbxAxisSystem::ZUp(), {1, 0, 0}, {0, 0, 1}, {0, -1, 0}},
      {"Z up to Y up", FbxAxisSystem::ZUp(), FbxAxisSystem::YUp(), {1, 0, 0}, {0, 0, -1}, {0, 1, 0}},
      {"the same", FbxAxisSystem::ZUp(), FbxAxisSystem::ZUp(), {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
      {"mirrored", leftHanded, FbxAxisSystem::YUp(), {1, 0, 0}, {0, 1, 0}, {0, 0, -1}},
      {"X up", {0, 1, 2, 1, 1, -1}, FbxAxisSystem::YUp(), {0, 1, 0}, {-1, 0, 0}, {0, 0, 1}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(row.from.ConversionTo(row.to), (Affine{{row.x, row.y, row.z, {}}}));
  }
  const FbxAxisSystem unsound[] = {{1, 1, 1, 1, 0, 1}, {1, 1, 3, 1, 0, 1}, {-1, 1, 2, 1, 0, 1},
                                   {1, 0, 2, 1, 0, 1}, {1, 1, 2, 2, 0, 1}, {1, 1, 2, 1, 2, 1}};
  for (const FbxAxisSystem& axes : unsound) {
    EXPECT_FALSE(axes.IsSound());
    const auto scene = FbxScene::Create("s");
    EXPECT_FALSE(axes.ConvertScene(*scene));
    EXPECT_EQ(scene->topConversion, Affine());
    scene->GetGlobalSettings().SetAxisSystem(axes);
    EXPECT_FALSE(FbxAxisSystem::ZUp().ConvertScene(*scene));
  }
}

// Every world point of a scene lands where axes and unit take it, at every time, and binds go along.
TEST(FbxScene, ConvertedScenesMoveEveryPointAlike) {
  const FbxSystemUnit metres{100, 1};
  const auto moved = [](const Vector3& p) { return Vector3{p.x, -p.z, p.y} * 0.01; };
  for (const char* file : {"mixamo_walk.fbx", "character_skinned.fbx"}) {
    SCOPED_TRACE(file);
    const auto before = ReadFile(file), after = ReadFile(file);
    ASSERT_TRUE(FbxAxisSystem::ZUp().ConvertScene(*after->scene) && metres.ConvertScene(*after->scene));
    EXPECT_EQ(after->scene->GetGlobalSettings().GetAxisSystem(), FbxAxisSystem::ZUp());
    EXPECT_EQ(after->scene->GetGlobalSettings().GetSystemUnit(), metres);
    SceneEvaluator one(*before->scene, before->scene->CurrentStack());
    SceneEvaluator other(*after->scene, after->scene->CurrentStack());
    for (size_t i = 0; i < before->scene->Nodes().size(); ++i) {
      for (const double t : {0.0, 0.41, 1.7}) {
        const Affine was = one.World(before->scene->Nodes()[i], Seconds(t));
        const Affine is = other.World(after->scene->Nodes()[i], Seconds(t));
        // Curves are floats: about 7 digits of some 2 metres.
        ExpectNear(is.row[3], moved(was.row[3]), 1e-6);
        ExpectNear(Vector3{0.1, 0.2, 0.3} * is, moved(Vector3{10, 20, 30} * was), 1e-6);
      }
    }
    const FbxMesh &meshBefore = *before->All<FbxMesh>().at(0), &meshAfter = *after->All<FbxMesh>().at(0);
    ExpectNear(meshAfter.controlPoints[7], meshBefore.controlPoints[7] * 0.01);
    for (size_t k = 0; k < meshBefore.skins.at(0)->clusters.size(); ++k) {
      const FbxCluster &was = meshBefore.skins[0]->clusters[k], &is = meshAfter.skins[0]->clusters[k];
      ExpectNear(is.transformLink.row[3], moved(was.transformLink.row[3]), 1e-9);
      // Mesh to world at bind.
      ExpectNear((is.transform * is.transformLink).row[3], moved((was.transform * was.transformLink).row[3]), 1e-9);
    }
    for (size_t i = 0; i < before->scene->Poses().size(); ++i) {
      const auto &was = before->scene->Poses()[i]->entries, &is = after->scene->Poses()[i]->entries;
      for (size_t k = 0; k < was.size(); ++k) ExpectNear(is[k].matrix.row[3], moved(was[k].matrix.row[3]), 1e-9);
    }
  }
}

TEST(FbxSystemUnit, PivotsSlopesAndShapes) {
  SmallScene s;
  NodeTransform& t = s.node->transform;
  t.rotationOffset = t.rotationPivot = t.scalingOffset = t.scalingPivot = t.geometricTranslation = {1, 2, 3};
  t.preRotation = {10, 20, 30};
  s.curves->curves[0] = {{0}, {4}, {{Interpolation::Cubic, 5, 6}}};
  FbxAnimCurveNode* turn = FbxAnimCurveNode::Create(*s.scene, "R");
  turn->property = "Lcl Rotation";
  turn->curves = s.curves->curves;
  s.channel->shapes = {{"s", {0}, {{1, 1, 1}}, {{0, 0, 1}}}};
  const FbxSystemUnit inches{2.5, 1}, none{0, 1}, broken{NAN, 1};
  EXPECT_FALSE(none.ConvertScene(*s.scene));
  EXPECT_FALSE(broken.ConvertScene(*s.scene));
  ASSERT_TRUE(inches.ConvertScene(*s.scene));
  for (const Vector3& v :
       {t.rotationOffset, t.rotationPivot, t.scalingOffset, t.scalingPivot, t.geometricTranslation}) {
    ExpectNear(v, {0.4, 0.8, 1.2});
  }
  ExpectNear(t.preRotation, {10, 20, 30});
  EXPECT_FLOAT_EQ(s.curves->curves[0].values[0], 1.6f);
  EXPECT_FLOAT_EQ(s.curves->curves[0].shapes[0].rightSlope, 2);
  EXPECT_FLOAT_EQ(s.curves->curves[0].shapes[0].nextLeftSlope, 2.4f);
  EXPECT_FLOAT_EQ(turn->curves[0].values[0], 4);
  ExpectNear(s.channel->shapes[0].offsets[0], {0.4, 0.4, 0.4});
  ExpectNear(s.channel->shapes[0].normals[0], {0, 0, 1});
}

}  // namespace
}  // namespace tavrilon::fbx
