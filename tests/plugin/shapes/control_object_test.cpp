// SPDX-License-Identifier: MIT
// Parameters, published properties, undo, files and clones of both control classes.
#include <cstdio>
#include <fstream>
#include <map>
#include <set>

#include "control_test.h"
#include "host/core/class_desc.h"
#include "host/core/remap.h"

namespace tavrilon {
namespace {

using Controls = testing::Types<ControlShape, ControlHelper>;
template <class T>
class ControlObjectTest : public ControlTest<T> {
 protected:
  FPValue Get(int getter) {
    FPValue result;
    EXPECT_EQ(this->core().Invoke(getter, 0, result, {}), FPStatus::OK);
    return result;
  }
  FPStatus Set(int getter, const FPValue& value) {
    FPValue ignored;
    return this->core().Invoke(getter + 1, 0, ignored, {&value, 1});
  }
};
TYPED_TEST_SUITE(ControlObjectTest, Controls);

TYPED_TEST(ControlObjectTest, TableIsSound) {
  const ParamBlockDesc2& desc = this->block().GetDesc();
  EXPECT_EQ(desc.Count(), (std::is_same_v<TypeParam, ControlShape> ? 26 : 25));
  std::set<WStr> names;
  for (int i = 0; i < desc.Count(); ++i) {
    const ParamRow& row = desc.rows[static_cast<size_t>(i)];
    EXPECT_EQ(row.id, i);
    EXPECT_TRUE(names.insert(row.name).second) << ToUtf8(row.name);
    const float shown = row.type == ParamType::Percent ? row.def.f[0] * 100 : row.def.f[0];
    const bool inRange = !row.range.IsGiven() || (shown >= row.range.min && shown <= row.range.max);
    EXPECT_TRUE(inRange) << ToUtf8(row.name);
  }
  EXPECT_EQ(this->block().GetInt(kControlType), static_cast<int>(ShapeType::Sphere));
  EXPECT_EQ(this->block().GetMatrix3(kControlGizmo), Matrix3());
}

TYPED_TEST(ControlObjectTest, IsMadeByTheClassTable) {
  const ClassDesc* desc = ClassDirectory::Get().Find(this->control->SuperClassID(), TypeParam::kClassId);
  if (!desc) RegisterTavrilonClasses();
  desc = ClassDirectory::Get().Find(this->control->SuperClassID(), TypeParam::kClassId);
  ASSERT_TRUE(desc);
  const Ref<ReferenceTarget> made = desc->Create();
  EXPECT_TRUE(dynamic_cast<TypeParam*>(made.Get()));
  EXPECT_EQ(made->GetClassName(), desc->className);
}

TYPED_TEST(ControlObjectTest, PublishesSixPropertiesAndTheLibrary) {
  FPInterface* published =
      this->control->GetInterface(std::is_same_v<TypeParam, ControlShape> ? kIControlShape : kIControlHelper);
  ASSERT_EQ(published, &this->core());
  const FPInterfaceDesc& desc = published->GetDesc();
  EXPECT_EQ(desc.properties.size(), 6u);
  for (const FPPropertyDesc& p : desc.properties) {
    FPValue value;
    EXPECT_EQ(published->Invoke(p.getId, 0, value, {}), FPStatus::OK);
    EXPECT_EQ(published->Invoke(p.setId, 0, value, {&value, 1}), FPStatus::OK) << "its own value goes back in";
  }
  ASSERT_TRUE(desc.FindProperty(L"type"));
  const FPEnumDesc* types = desc.FindEnum(desc.FindProperty(L"type")->enumId);
  ASSERT_TRUE(types);
  ASSERT_EQ(types->values.size(), size_t(kShapeTypeCount));
  EXPECT_EQ(WStr(types->values[31].first), L"Hand");
  FPValue value;
  EXPECT_EQ(published->Invoke(99, 0, value, {}), FPStatus::NoSuchFunction);
}

TYPED_TEST(ControlObjectTest, BadPropertyValuesChangeNothing) {
  EXPECT_EQ(this->Set(kGetType, 43), FPStatus::Failed);
  EXPECT_EQ(this->Set(kGetType, -1), FPStatus::Failed);
  EXPECT_EQ(this->Set(kGetGizmoPos, FPValue(WStr(L"here"))), FPStatus::Failed);
  EXPECT_EQ(this->Set(kGetGizmoTM, 1), FPStatus::Failed);
  EXPECT_EQ(this->block().GetInt(kControlType), 9);
  EXPECT_EQ(this->block().GetMatrix3(kControlGizmo), Matrix3());
}

TYPED_TEST(ControlObjectTest, GizmoPartsKeepTheOthers) {
  const Quat turn = QuatFromAngAxis({{0.6f, 0, 0.8f}, 1.1f});
  this->Set(kGetGizmoRot, turn);
  this->Set(kGetGizmoPos, Point3{1, 2, 3});
  this->Set(kGetGizmoScale, Point3{2, 3, 0.5f});
  this->Set(kGetGizmoPos, Point3{4, 5, 6});
  const Quat rot = MakeClosest(*this->Get(kGetGizmoRot).template As<Quat>(), turn);
  // The parts come back through an iterative decomposition of a matrix of order one.
  EXPECT_NEAR(Dot(rot, turn), 1, 1e-5f);
  EXPECT_LT(Length(this->Get(kGetGizmoScale).ToPoint3() - Point3{2, 3, 0.5f}), 1e-5f);
  EXPECT_EQ(this->Get(kGetGizmoPos).ToPoint3(), (Point3{4, 5, 6}));
  const Matrix3 expected = ScaleMatrix({2, 3, 0.5f}) * MakeMatrix(turn) * TransMatrix({4, 5, 6});
  const Matrix3 tm = *this->Get(kGetGizmoTM).template As<Matrix3>();
  for (int i = 0; i < 4; ++i) EXPECT_LT(Length(tm.GetRow(i) - expected.GetRow(i)), 1e-5f);
}

TYPED_TEST(ControlObjectTest, BoxFollowsParametersThroughUndoAndRedo) {
  const auto width = [this] {
    const Box3 box = this->control->GetLocalBoundBox(0, this->node);
    return box.max.x - box.min.x;
  };
  EXPECT_NEAR(width(), 20, 1e-3f);
  theHold.Begin();
  this->block().SetValue(kControlSize, 0, 8.0f);
  this->SetType(ShapeType::Rectangle);
  theHold.Accept(L"Change");
  EXPECT_NEAR(width(), 8, 1e-3f);
  ASSERT_TRUE(theHold.Undo());
  EXPECT_NEAR(width(), 20, 1e-3f);
  ASSERT_TRUE(theHold.Redo());
  EXPECT_NEAR(width(), 8, 1e-3f);
  theHold.Flush();
}

// Gives the time itself, and holds for that time alone.
class Ramp final : public Control {
 public:
  SClass_ID SuperClassID() const override { return kFloatControlSuper; }
  Class_ID ClassID() const override { return {0x7E57, 3}; }
  void GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod) override {
    value.Float() = static_cast<float>(t);
    valid &= Interval{t, t};
  }
  void SetValue(TimeValue, ValueRef, bool, GetSetMethod) override {}
};

TYPED_TEST(ControlObjectTest, AnimatedSizeIsRebuiltAtEachTime) {
  ASSERT_TRUE(this->block().SetController(kControlSize, new Ramp));
  for (const TimeValue t : {10, 40, 40, 10})
    EXPECT_NEAR(this->control->GetLocalBoundBox(t, this->node).max.x, 0.5f * static_cast<float>(t), 1e-3f);
}

TYPED_TEST(ControlObjectTest, CloneSharesNothing) {
  BitArray faces(70);
  faces.Set(69);
  this->core().SetFaceSel(faces);
  this->SetType(ShapeType::Hand);
  RegisterTavrilonClasses();
  const Ref<ReferenceTarget> clone = CloneRefHierarchy(this->control);
  auto* copy = dynamic_cast<TypeParam*>(clone.Get());
  ASSERT_TRUE(copy);
  EXPECT_EQ(copy->Core().FaceSel(), faces);
  EXPECT_EQ(copy->GetParamBlock()->GetInt(kControlType), static_cast<int>(ShapeType::Hand));
  copy->GetParamBlock()->SetValue(kControlType, 0, 5);
  copy->Core().SetFaceSel(BitArray(1));
  EXPECT_EQ(this->core().FaceSel(), faces);
  EXPECT_EQ(this->block().GetInt(kControlType), static_cast<int>(ShapeType::Hand));
}

TYPED_TEST(ControlObjectTest, FaceSelectionComesBackFromAFile) {
  for (const int count : {0, 1, 64, 130}) {
    BitArray faces(count);
    for (int i = 0; i < count; i += 3) faces.Set(i);
    this->core().SetFaceSel(faces);
    ISave save;
    this->control->Save(save);
    ASSERT_EQ(save.Status(), IOResult::OK);
    TypeParam loaded(true);
    ILoad load(save.Bytes());
    EXPECT_EQ(loaded.Load(load), IOResult::OK);
    EXPECT_EQ(loaded.Core().FaceSel(), faces);
    ISave again;
    loaded.Save(again);
    EXPECT_EQ(again.Bytes(), save.Bytes());
  }
}

TYPED_TEST(ControlObjectTest, DamagedFaceSelectionIsRefused) {
  ISave save;
  save.BeginChunk(0x0100);
  save.Write(uint32_t{1000});
  save.Write(uint64_t{1});
  save.EndChunk();
  ILoad load(save.Bytes());
  EXPECT_EQ(this->control->Load(load), IOResult::Error);
  EXPECT_FALSE(load.ErrorText().empty());
  EXPECT_EQ(this->core().FaceSel().Count(), 0);
}

TYPED_TEST(ControlObjectTest, WithoutABlockNothingHappens) {
  TypeParam bare(true);
  RecordingWindow window;
  bare.Display(0, nullptr, window);
  EXPECT_TRUE(window.Primitives().empty());
  EXPECT_TRUE(bare.GetLocalBoundBox(0, nullptr).IsEmpty());
  bare.ActivateSubobjSel(kGizmoLevel);
  bare.Move(0, {}, {}, {1, 0, 0}, false);
  FPValue value;
  EXPECT_EQ(bare.Core().Invoke(kGetType, 0, value, {}), FPStatus::Failed);
}

using ControlShapeTest = ControlTest<ControlShape>;

std::string Number(float value) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
  return text;
}

// The row of the reference page that tells a parameter.
std::string PageRow(const ParamRow& row) {
  static const std::map<ParamType, const char*> types = {
      {ParamType::Int, "int"},         {ParamType::Bool, "bool"},   {ParamType::World, "world"},
      {ParamType::Percent, "percent"}, {ParamType::Node, "node"},   {ParamType::Matrix3, "matrix"},
      {ParamType::Colour, "colour"},   {ParamType::Float, "float"},
  };
  const bool plain = row.type != ParamType::Bool && row.type != ParamType::Colour && row.type != ParamType::Node &&
                     row.type != ParamType::Matrix3;
  const float factor = row.type == ParamType::Percent ? 100 : 1;
  std::string range, value = plain ? Number(row.def.f[0] * factor) : "";
  if (row.type == ParamType::Bool) value = row.def.f[0] > 0 ? "on" : "off";
  if (row.range.IsGiven())
    range = Number(row.range.min) + (row.range.max < 1e29f ? " to " + Number(row.range.max) : " and up");
  return "| " + std::to_string(row.id) + " | `" + ToUtf8(row.name) + "` | " + types.at(row.type) + " | " +
         (row.Is(kAnimatable) ? "yes" : "") + " | " + value + " | " + range + " |";
}

TEST_F(ControlShapeTest, ReferencePageTellsEveryParameter) {
  std::ifstream file(TAVRILON_SOURCE_DIR "/docs/shapes.md");
  const std::string page{std::istreambuf_iterator<char>(file), {}};
  for (const ParamRow& row : block().GetDesc().rows)
    EXPECT_NE(page.find(PageRow(row)), std::string::npos) << "docs/shapes.md needs a row that begins\n" << PageRow(row);
  for (int i = 0; i < kShapeTypeCount; ++i)
    EXPECT_NE(page.find(ShapeTypeName(i)), std::string::npos) << ShapeTypeName(i);
}

TEST_F(ControlShapeTest, SplinesAreTheOutline) {
  block().SetValue(kControlSteps, 0, 5);
  for (int type = 0; type < kShapeTypeCount; ++type) {
    SCOPED_TRACE(ShapeTypeName(type));
    SetType(static_cast<ShapeType>(type));
    const std::vector<Spline3D>& splines = control->GetSplines(0);
    const Outline& outline = core().GetOutline(0);
    ASSERT_EQ(splines.size(), outline.size());
    for (size_t s = 0; s < splines.size(); ++s) {
      EXPECT_EQ(splines[s].closed, outline[s].closed);
      ASSERT_EQ(splines[s].knots.size(), outline[s].knots.size());
      // The host also divides lines beside a curve, so its points are more.
      std::vector<Point3> ours, hosts;
      splines[s].Interpolate(5, hosts);
      Interpolate(outline[s], 5, ours);
      for (const Point3& p : ours) {
        float nearest = 100;
        for (const Point3& q : hosts) nearest = std::min(nearest, Length(p - q));
        EXPECT_LT(nearest, 1e-5f);  // of a shape of size 20: the same formula in another order
      }
    }
  }
}

TEST_F(ControlShapeTest, ScaleIsOfTheShapeAlone) {
  block().SetValue(kControlScale, 0, 0.25f);
  EXPECT_NEAR(control->GetLocalBoundBox(0, node).max.x, 2.5f, 1e-4f);
  const Ref<ControlHelper> helper(new ControlHelper);
  EXPECT_FALSE(helper->GetParamBlock()->SetValue(kControlScale, 0, 0.25f));
}

}  // namespace
}  // namespace tavrilon
