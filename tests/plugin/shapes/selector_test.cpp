// SPDX-License-Identifier: MIT
#include "plugin/shapes/selector.h"

#include "control_test.h"
#include "host/core/class_desc.h"
#include "host/scene/skin_modifier.h"
#include "host/view/hit_test.h"

namespace tavrilon {
namespace {

class SelectorTest : public ControlTest<ControlShape> {
 protected:
  SelectorTest() { SetType(ShapeType::None); }
  ~SelectorTest() override { theHold.Flush(); }
  BitArray Bits(std::initializer_list<bool> bits) {
    BitArray all(static_cast<int>(bits.size()));
    int i = 0;
    for (const bool bit : bits) all.Set(i++, bit);
    return all;
  }
  // Clicks on a place of the square from above.
  std::vector<HitRecord> Click(float x, float y) {
    Camera camera(ViewKind::Top, 400, 400);
    camera.LookAt({0.5f, 0.5f, 0}, 2);
    ScreenPoint at;
    camera.WorldToScreen({x, y, 0}, at);
    HitTestWindow view(camera, MakeHitRegion({at.x, at.y}), {true, false});
    control->Display(0, node, view);
    return view.Hits();
  }
};

TEST_F(SelectorTest, PolygonLevelNeedsAMesh) {
  EXPECT_EQ(control->NumSubObjTypes(), 1);
  block().SetValue(kSelectorActive, 0, true);
  EXPECT_EQ(control->NumSubObjTypes(), 1);
  control->ActivateSubobjSel(kPolygonLevel);
  EXPECT_EQ(control->SubObjLevel(), kObjectLevel);
  EXPECT_TRUE(Draw().empty());
  EXPECT_EQ(core().SelectorStatus(), L"Pick a mesh as the selector node");

  INode* noMesh = GetScene().CreateObjectNode(new ControlHelper);
  noMesh->SetName(L"Empty");
  block().SetValue(kSelectorNode, 0, noMesh);
  EXPECT_EQ(control->NumSubObjTypes(), 1);
  EXPECT_NE(core().SelectorStatus().find(L"\"Empty\" has no mesh"), WStr::npos);

  AddSelector();
  ASSERT_EQ(control->NumSubObjTypes(), 2);
  EXPECT_EQ(control->GetSubObjType(0), L"Gizmo");
  EXPECT_EQ(control->GetSubObjType(1), L"Polygon");
  control->ActivateSubobjSel(kPolygonLevel);
  EXPECT_EQ(control->SubObjLevel(), kPolygonLevel);
  EXPECT_EQ(core().SelectorStatus(), L"0 Polygons Selected");
}

TEST_F(SelectorTest, FacesAreDrawnWhereTheMeshIs) {
  AddSelector();
  selector->SetObjOffsetPos({10, 0, 0});
  node->SetWireColor(0x336699);
  core().SetFaceSel(Bits({false, true}));
  const std::vector<Primitive>& drawn = Draw();
  ASSERT_EQ(drawn.size(), 2u);
  EXPECT_EQ(drawn[0].state.opacity, 0.25f);
  EXPECT_EQ(drawn[1].state.opacity, 0.5f);
  EXPECT_EQ(PackColour(drawn[0].state.colour), 0x336699u);
  EXPECT_LT(Length(window->Bounds().min - Point3{10, 0, 0.1f}), 1e-5f) << "pushed out along the normals";
  block().SetValue(kSelectorUseWireColor, 0, false);
  block().SetValue(kSelectorColor, 0, Colour{1, 0, 0});
  block().SetValue(kSelectorPushValue, 0, 0.5f);
  EXPECT_EQ(PackColour(Draw()[0].state.colour), 0xFF0000u);
  EXPECT_NEAR(window->Bounds().min.z, 0.5f, 1e-5f);
}

TEST_F(SelectorTest, MeshIsReadOnceUntilSomethingChanges) {
  SquareMesh* mesh = AddSelector();
  Draw(), Draw();
  EXPECT_EQ(mesh->reads, 1);
  mesh->mesh.faces.pop_back();
  mesh->NotifyDependents(FOREVER, PART_TOPO);
  EXPECT_EQ(Draw()[0].triangles.size(), 1u);
  EXPECT_EQ(mesh->reads, 2);
}

// A skinned triangle: the faces are those that the mesh shows, and follow its bone.
TEST_F(SelectorTest, EvaluatedMeshesAnswer) {
  RegisterHostClasses();
  auto mesh = std::make_shared<Mesh>();
  mesh->points = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
  mesh->AddPolygon(std::array{0, 1, 2, 3});
  auto* object = new MeshObject;
  object->SetMesh(mesh);
  selector = GetScene().CreateObjectNode(object);
  INode* bone = GetScene().CreateObjectNode(new ControlHelper);
  auto* skin = new SkinModifier;
  selector->AddModifier(skin);
  skin->AddBone(bone, Matrix3());
  auto weights = std::make_shared<SkinWeights>();
  const SkinWeight all{0, 1};
  for (int i = 0; i < 4; ++i) weights->Add({&all, 1});
  skin->SetWeights(weights);
  block().SetValue(kSelectorNode, 0, selector);
  block().SetValue(kSelectorActive, 0, true);
  block().SetValue(kSelectorPushValue, 0, 0.0f);
  ASSERT_EQ(control->NumSubObjTypes(), 2);
  control->ActivateSubobjSel(kPolygonLevel);
  const std::vector<HitRecord> hits = Click(0.8f, 0.3f);
  ASSERT_FALSE(hits.empty());
  control->SelectSubComponent(hits, true, false, false);
  EXPECT_EQ(core().SelectorStatus(), L"1 Polygons Selected");
  EXPECT_EQ(core().FaceSel().Count(), 1) << "the first of two triangles";

  control->ActivateSubobjSel(kObjectLevel);
  const auto drawnAt = [&] { return Draw()[0].points[0]; };
  EXPECT_EQ(drawnAt(), (Point3{0, 0, 0}));
  bone->SetNodeTM(0, TransMatrix({0, 0, 5}));
  EXPECT_EQ(drawnAt(), (Point3{0, 0, 5}));
  // The node moves, and its bone does not: neither do the points in the world.
  selector->SetNodeTM(0, TransMatrix({3, 0, 0}));
  EXPECT_EQ(drawnAt(), (Point3{0, 0, 5}));
  GetScene().DeleteNode(selector);
  EXPECT_TRUE(Draw().empty());
}

TEST_F(SelectorTest, ClicksSelectFaces) {
  AddSelector();
  control->ActivateSubobjSel(kPolygonLevel);
  const auto hits = [&](float x, float y) {
    std::vector<HitRecord> found = Click(x, y);
    EXPECT_FALSE(found.empty());
    return found;
  };
  control->SelectSubComponent(hits(0.3f, 0.7f), true, false, false);  // the upper triangle
  EXPECT_EQ(core().FaceSel(), Bits({false, true}));
  control->SelectSubComponent(hits(0.7f, 0.3f), true, false, false);
  EXPECT_EQ(core().FaceSel(), Bits({true, true}));
  control->SelectSubComponent(hits(0.3f, 0.7f), false, false, true);
  EXPECT_EQ(core().FaceSel(), Bits({true, false}));
  control->SelectSubComponent(hits(0.7f, 0.3f), false, false, false);
  EXPECT_EQ(core().FaceSel(), Bits({false, false}));
  control->SelectAll(kPolygonLevel);
  EXPECT_EQ(core().SelectorStatus(), L"2 Polygons Selected");
  control->ClearSelection(kPolygonLevel);
  control->InvertSelection(kPolygonLevel);
  EXPECT_EQ(core().FaceSel(), Bits({true, true}));
}

TEST_F(SelectorTest, AllWalksTheWholeList) {
  AddSelector();
  Draw();
  control->ActivateSubobjSel(kPolygonLevel);
  std::vector<HitRecord> hits(3);
  for (int i = 0; i < 3; ++i) hits[static_cast<size_t>(i)].subIndex = kUnselectedFacePart;
  hits[0].face = 1, hits[1].face = 0, hits[2].face = 77;  // the last is of no face
  control->SelectSubComponent(hits, true, false, false);
  EXPECT_EQ(core().FaceSel(), Bits({false, true}));
  core().SetFaceSel(BitArray());
  control->SelectSubComponent(hits, true, true, false);
  EXPECT_EQ(core().FaceSel(), Bits({true, true}));
}

TEST_F(SelectorTest, UndoBringsBackTheSelectionWhateverTheMeshBecame) {
  SquareMesh* mesh = AddSelector();
  control->ActivateSubobjSel(kPolygonLevel);
  core().SetFaceSel(Bits({true, false}));
  theHold.Begin();
  control->SelectAll(kPolygonLevel);
  theHold.Accept(L"Select");
  mesh->mesh = {};
  mesh->NotifyDependents(FOREVER, PART_TOPO);
  ASSERT_TRUE(theHold.Undo());
  EXPECT_EQ(core().FaceSel(), Bits({true, false}));
  ASSERT_TRUE(theHold.Redo());
  EXPECT_EQ(core().FaceSel(), Bits({true, true}));
}

TEST_F(SelectorTest, DeletingTheNodeEmptiesTheSelector) {
  AddSelector();
  control->ActivateSubobjSel(kPolygonLevel);
  EXPECT_FALSE(Draw().empty());
  GetScene().DeleteNode(selector);
  EXPECT_EQ(control->SubObjLevel(), kObjectLevel);
  EXPECT_EQ(control->NumSubObjTypes(), 1);
  EXPECT_TRUE(Draw().empty());
}

TEST_F(SelectorTest, ItsOwnNodeIsRefused) {
  AddSelector();
  PBValidator* validator = block().GetParamDef(kSelectorNode)->validator;
  ASSERT_TRUE(validator);
  EXPECT_FALSE(validator->Validate(control, kSelectorNode, nullptr));
  EXPECT_FALSE(validator->Validate(control, kSelectorNode, node));
  EXPECT_FALSE(validator->Validate(control, kSelectorNode, control));
  EXPECT_TRUE(validator->Validate(control, kSelectorNode, selector));
}

TEST(SelectorMeshTest, BadIndicesAreLeftOut) {
  SelectorMesh mesh{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}, {0, 1, 9}, {-1, 0, 1}}};
  PushAlongNormals(mesh, 2);
  for (const Point3& p : mesh.points) EXPECT_NEAR(p.z, 2, 1e-6f);
}

}  // namespace
}  // namespace tavrilon
