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
  const auto scene = FbxScene::Create("s");
  FbxNode* parent = FbxNode::Create(*scene, "parent");
  FbxNode* node = FbxNode::Create(*scene, "node");
  FbxNode* child = FbxNode::Create(*scene, "child");
  ASSERT_TRUE(parent->AddChild(node) && node->AddChild(child));
  FbxMesh* mesh = FbxMesh::Create(*scene, "mesh");
  EXPECT_EQ(parent->SetNodeAttribute(mesh), nullptr);
  EXPECT_EQ(parent->SetNodeAttribute(mesh), mesh);
  FbxSurfaceMaterial* material = FbxSurfaceMaterial::Create(*scene, "material");
  FbxTexture* texture = FbxTexture::Create(*scene, "texture");
  material->textures.push_back({"DiffuseColor", texture});
  parent->materials = {material, material};
  FbxSkin* skin = FbxSkin::Create(*scene, "skin");
  skin->clusters.resize(1);
  skin->clusters[0].link = node;
  mesh->skins = {skin};
  FbxBlendShape* blend = FbxBlendShape::Create(*scene, "blend");
  FbxBlendShapeChannel* channel = FbxBlendShapeChannel::Create(*scene, "channel");
  blend->channels = {channel};
  mesh->blendShapes = {blend};
  FbxPose* pose = FbxPose::Create(*scene, "pose");
  pose->entries = {{node, {}}, {parent, {}}};
  FbxAnimStack* stack = FbxAnimStack::Create(*scene, "stack");
  FbxAnimLayer* layer = FbxAnimLayer::Create(*scene, "layer");
  FbxAnimCurveNode* curves = FbxAnimCurveNode::Create(*scene, "T");
  stack->layers = {layer};
  layer->curveNodes = {curves};
  curves->target = node;

  node->Destroy();
  EXPECT_EQ(child->GetParent(), parent);
  EXPECT_EQ(parent->GetChildCount(), 1);
  EXPECT_EQ(skin->clusters[0].link, nullptr);
  EXPECT_EQ(pose->entries.size(), 1u);
  EXPECT_EQ(curves->target, nullptr);
  EXPECT_EQ(scene->Nodes(), (std::vector<FbxNode*>{parent, child}));
  texture->Destroy();
  EXPECT_TRUE(material->textures.empty());
  material->Destroy();
  EXPECT_TRUE(parent->materials.empty() && scene->Materials().empty());
  skin->Destroy();
  channel->Destroy();
  EXPECT_TRUE(mesh->skins.empty() && blend->channels.empty());
  blend->Destroy();
  EXPECT_TRUE(mesh->blendShapes.empty());
  mesh->Destroy();
  EXPECT_EQ(parent->GetNodeAttribute(), nullptr);
  curves->Destroy();
  EXPECT_TRUE(layer->curveNodes.empty());
  layer->Destroy();
  EXPECT_TRUE(stack->layers.empty());
  stack->Destroy();
  pose->Destroy();
  EXPECT_TRUE(scene->Stacks().empty() && scene->Poses().empty());
  EXPECT_EQ(scene->Objects().size(), 2u);
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
  const char* const kFiles[] = {"mixamo_walk.fbx", "character_skinned.fbx"};
  for (const char* file : kFiles) {
    SCOPED_TRACE(file);
    Imported before, after;
    for (Imported* read : {&before, &after}) {
      ASSERT_TRUE(read->importer->Initialize(DataFile(file)) && read->importer->Import(*read->scene)) << read->Error();
    }
    const FbxSystemUnit metres{100, 1};
    ASSERT_TRUE(FbxAxisSystem::ZUp().ConvertScene(*after.scene));
    ASSERT_TRUE(metres.ConvertScene(*after.scene));
    EXPECT_EQ(after.scene->GetGlobalSettings().GetAxisSystem(), FbxAxisSystem::ZUp());
    EXPECT_EQ(after.scene->GetGlobalSettings().GetSystemUnit(), metres);
    const auto moved = [](const Vector3& p) { return Vector3{p.x, -p.z, p.y} * 0.01; };
    SceneEvaluator one(*before.scene, before.scene->CurrentStack()), other(*after.scene, after.scene->CurrentStack());
    for (size_t i = 0; i < before.scene->Nodes().size(); ++i) {
      for (const double t : {0.0, 0.41, 1.7}) {
        const Affine was = one.World(before.scene->Nodes()[i], Seconds(t));
        const Affine is = other.World(after.scene->Nodes()[i], Seconds(t));
        // Curves are floats: about 7 digits of some 2 metres.
        ExpectNear(is.row[3], moved(was.row[3]), 1e-6);
        ExpectNear(Vector3{0.1, 0.2, 0.3} * is, moved(Vector3{10, 20, 30} * was), 1e-6);
      }
    }
    const auto skinsBefore = before.All<FbxSkin>(), skinsAfter = after.All<FbxSkin>();
    for (size_t i = 0; i < skinsBefore.size(); ++i) {
      for (size_t k = 0; k < skinsBefore[i]->clusters.size(); ++k) {
        const FbxCluster &was = skinsBefore[i]->clusters[k], &is = skinsAfter[i]->clusters[k];
        ExpectNear(is.transformLink.row[3], moved(was.transformLink.row[3]), 1e-9);
        // Mesh to world at bind.
        ExpectNear((is.transform * is.transformLink).row[3], moved((was.transform * was.transformLink).row[3]), 1e-9);
      }
    }
    const auto posesBefore = before.scene->Poses(), posesAfter = after.scene->Poses();
    for (size_t i = 0; i < posesBefore.size(); ++i) {
      for (size_t k = 0; k < posesBefore[i]->entries.size(); ++k) {
        ExpectNear(posesAfter[i]->entries[k].matrix.row[3], moved(posesBefore[i]->entries[k].matrix.row[3]), 1e-9);
      }
    }
    for (size_t i = 0; i < before.All<FbxMesh>().size(); ++i) {
      ExpectNear(after.All<FbxMesh>()[i]->controlPoints[7], before.All<FbxMesh>()[i]->controlPoints[7] * 0.01);
    }
  }
}

TEST(FbxSystemUnit, PivotsSlopesAndShapes) {
  const auto scene = FbxScene::Create("s");
  FbxNode* node = FbxNode::Create(*scene, "n");
  NodeTransform& t = node->transform;
  t.rotationOffset = t.rotationPivot = t.scalingOffset = t.scalingPivot = t.geometricTranslation = {1, 2, 3};
  t.preRotation = {10, 20, 30};
  FbxAnimCurveNode* move = FbxAnimCurveNode::Create(*scene, "T");
  move->property = "Lcl Translation";
  move->curves[0].times = {0};
  move->curves[0].values = {4};
  move->curves[0].shapes = {{Interpolation::Cubic, 5, 6}};
  FbxAnimCurveNode* turn = FbxAnimCurveNode::Create(*scene, "R");
  turn->property = "Lcl Rotation";
  turn->curves = move->curves;
  FbxBlendShapeChannel* channel = FbxBlendShapeChannel::Create(*scene, "c");
  channel->shapes = {{"s", {0}, {{1, 1, 1}}, {{0, 0, 1}}}};
  const FbxSystemUnit inches{2.5, 1}, none{0, 1}, broken{NAN, 1};
  EXPECT_FALSE(none.ConvertScene(*scene));
  EXPECT_FALSE(broken.ConvertScene(*scene));
  ASSERT_TRUE(inches.ConvertScene(*scene));
  for (const Vector3& v :
       {t.rotationOffset, t.rotationPivot, t.scalingOffset, t.scalingPivot, t.geometricTranslation}) {
    ExpectNear(v, {0.4, 0.8, 1.2});
  }
  ExpectNear(t.preRotation, {10, 20, 30});
  EXPECT_FLOAT_EQ(move->curves[0].values[0], 1.6f);
  EXPECT_FLOAT_EQ(move->curves[0].shapes[0].rightSlope, 2);
  EXPECT_FLOAT_EQ(move->curves[0].shapes[0].nextLeftSlope, 2.4f);
  EXPECT_FLOAT_EQ(turn->curves[0].values[0], 4);
  ExpectNear(channel->shapes[0].offsets[0], {0.4, 0.4, 0.4});
  ExpectNear(channel->shapes[0].normals[0], {0, 0, 1});
}

}  // namespace
}  // namespace tavrilon::fbx
