// SPDX-License-Identifier: MIT
#include "plugin/shapes/gizmo.h"

#include <random>

#include "control_test.h"

namespace tavrilon {
namespace {

using GizmoTest = ControlTest<ControlShape>;

Matrix3 RandomPlace(std::mt19937& rng) {
  std::uniform_real_distribution<float> any(-3, 3), size(0.5f, 2);
  Matrix3 m = MakeMatrix(Normalize(Quat{any(rng), any(rng), any(rng), any(rng)}));
  m.PreScale({size(rng), size(rng), size(rng)});
  m.SetTrans({any(rng), any(rng), any(rng)});
  return m;
}

// What a tool does to the world, it does to every point of the control.
TEST_F(GizmoTest, DragsMoveDrawnPointsByTheWorldChange) {
  std::mt19937 rng(11);
  SetType(ShapeType::Shoe);
  block().SetValue(kControlSize, 0, 2.0f);
  block().SetValue(kControlScale, 0, 1.5f);
  control->ActivateSubobjSel(kGizmoLevel);
  const Quat turn = QuatFromAngAxis({{0, 0.6f, 0.8f}, 0.7f});
  const Point3 factors{1.5f, 0.5f, 2};
  for (int run = 0; run < 60; ++run) {
    SCOPED_TRACE(run);
    block().SetValue(kControlGizmo, 0, RandomPlace(rng));
    const Matrix3 place = RandomPlace(rng);
    Matrix3 axis = Orthogonalize(RandomPlace(rng));
    const bool own = run % 2;
    const auto points = [&] {
      RecordingWindow view;
      view.SetTransform(place);
      control->Display(0, nullptr, view);
      std::vector<Point3> all;
      for (const Primitive& p : view.Primitives())
        if (p.state.subIndex < 0) all.insert(all.end(), p.points.begin(), p.points.end());
      return all;
    };
    const std::vector<Point3> before = points();
    Matrix3 about = axis;
    if (own) about.SetTrans(core().DrawnGizmo(0).GetTrans() * place);
    Matrix3 change;
    switch (run % 3) {
      case 0:
        control->Move(0, place, axis, {1, 2, 3}, own), change = TransMatrix(VectorTransform(axis, {1, 2, 3}));
        break;
      case 1:
        control->Rotate(0, place, axis, turn, own), change = Inverse(about) * MakeMatrix(turn) * about;
        break;
      case 2:
        control->Scale(0, place, axis, factors, own), change = Inverse(about) * ScaleMatrix(factors) * about;
        break;
    }
    const std::vector<Point3> after = points();
    ASSERT_EQ(before.size(), after.size());
    // Points up to some 30 units away go through two inverses whose scales span a factor of 4.
    for (size_t i = 0; i < before.size(); ++i) EXPECT_LT(Length(before[i] * change - after[i]), 1e-3f);
  }
}

TEST_F(GizmoTest, OneDragIsOneStep) {
  control->ActivateSubobjSel(kGizmoLevel);
  control->Move(0, {}, {}, {1, 0, 0}, false);
  EXPECT_EQ(theHold.UndoName(), L"Gizmo Change");
  EXPECT_EQ(core().GetGizmo().GetTrans(), (Point3{1, 0, 0}));
  ASSERT_TRUE(theHold.Undo());
  EXPECT_EQ(core().GetGizmo(), Matrix3());
  theHold.Flush();
}

TEST_F(GizmoTest, StaysOutsideItsLevel) {
  control->Move(0, {}, {}, {1, 0, 0}, false);
  EXPECT_EQ(core().GetGizmo(), Matrix3());
  EXPECT_TRUE(control->GetSubObjectCenters(0, node).empty());
}

TEST(GizmoMaths, SquashKeepsTheVolume) {
  for (int axis = 0; axis < 3; ++axis)
    for (const float amount : {0.25f, 1.0f, 3.0f}) {
      const Point3 s = SquashFactors(axis, amount);
      EXPECT_EQ(s[axis], amount);
      EXPECT_NEAR(s.x * s.y * s.z, 1, 1e-5f);
    }
  EXPECT_EQ(SquashFactors(0, 0), (Point3{1, 1, 1}));
}

TEST(GizmoMaths, FlatPlacesLeaveTheGizmoAlone) {
  const Matrix3 gizmo = TransMatrix({1, 2, 3});
  EXPECT_EQ(TransformGizmo(gizmo, ScaleMatrix({1, 0, 1}), TransMatrix({5, 0, 0})), gizmo);
}

}  // namespace
}  // namespace tavrilon
