// SPDX-License-Identifier: MIT
#include "plugin/connections/vector_connection.h"

#include "host/maths/euler.h"
#include "plugin/connections/connection_params.h"
#include "plugin/connections/wires_test.h"
#include "plugin/controllers/rotation_xyz.h"
#include "plugin/controllers/static_controls.h"
#include "plugin/frame/guard.h"

namespace tavrilon {
namespace {

using namespace corvanta;
using namespace vector_connection;
using source_attrib::kPlace;

/// The tracks that a connection can follow are those of a controller that stays in the scene.
class Holder final : public ReferenceTarget {
 public:
  explicit Holder(Control* control) { BindReference(0, control); }
  SClass_ID SuperClassID() const override { return kReferenceTargetSuper; }
  Class_ID ClassID() const override { return {0x7E570002, 3}; }
  int NumRefs() const override { return 1; }
  ReferenceTarget* GetReference(int) const override { return control; }
  int NumSubs() const override { return 1; }
  Animatable* SubAnim(int) override { return control; }
  Control* control = nullptr;

 protected:
  void SetReference(int, ReferenceTarget* target) override { control = target ? target->AsControl() : nullptr; }
};

class VectorConnectionTest : public WiresTest {
 protected:
  template <class T>
  static T ReadAs(Control& control, TimeValue t = 0) {
    T value{};
    Interval valid = FOREVER;
    control.GetValue(t, value, valid, CTRL_ABSOLUTE);
    return value;
  }
  static void Weigh(ConnectionControl& made, const Point3& w) {
    ParamBlock2& block = *made.GetParamBlock();
    block.SetValue(kTwoWay, 0, true);
    block.SetValue(kUseWeight, 0, true);
    for (int i = 0; i < 3; ++i) block.SetValue(static_cast<ParamID>(kWeightX + i), 0, w[i]);
  }
  static Point3 AnyPoint(std::mt19937& rng, float size) {
    std::uniform_real_distribution<float> any(-size, size);
    return {any(rng), any(rng), any(rng)};
  }
};

Matrix3 SomeMatrix() {
  Matrix3 m = EulerToMatrix({0.3f, 0.6f, -0.2f});
  m.SetTrans({1, 2, 3});
  return m;
}

void ExpectNear(const Matrix3& a, const Matrix3& b, float tolerance) {
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 3; ++c) EXPECT_NEAR(a.row[r][c], b.row[r][c], tolerance) << r << ' ' << c;
}

TEST_F(VectorConnectionTest, PositionReadsWritesAndMoves) {
  const Ref<Holder> holder(new Holder(new StaticPosition));
  const Ref<PositionConnection> made(new PositionConnection);
  ASSERT_TRUE(made->SetSubAnimTarget(*holder, 0));
  static_cast<StaticPosition*>(holder->control)->Set({1, 2, 3});
  EXPECT_EQ(ReadAs<Point3>(*made), (Point3{1, 2, 3}));
  Weigh(*made, {2, 0, -1});
  EXPECT_EQ(ReadAs<Point3>(*made), (Point3{2, 0, -3}));
  Matrix3 m = SomeMatrix();
  Interval valid = FOREVER;
  made->GetValue(0, m, valid, CTRL_RELATIVE);
  ExpectNear(m, TransMatrix({2, 0, -3}) * SomeMatrix(), 1e-6f);
  Point3 wanted{8, 8, 8};
  made->SetValue(0, wanted, true, CTRL_ABSOLUTE);
  EXPECT_EQ(static_cast<StaticPosition*>(holder->control)->Get(), (Point3{4, 2, -8})) << "no weight: y stays";
  Point3 more{2, 0, 1};
  made->SetValue(0, more, true, CTRL_RELATIVE);
  EXPECT_EQ(ReadAs<Point3>(*made), (Point3{10, 0, 9}));
}

TEST_F(VectorConnectionTest, FollowsAPointParameter) {
  INode* slider = AddNode(L"slider");
  ParamBlock2& source = AddSource(slider);
  source.SetValue(kPlace, 0, Point3{0.1f, 0.2f, 4});
  const Ref<PositionConnection> place(new PositionConnection);
  const Ref<RotationConnection> turn(new RotationConnection);
  const Ref<ScaleConnection> size(new ScaleConnection);
  for (ConnectionControl* made :
       {static_cast<ConnectionControl*>(place.Get()), static_cast<ConnectionControl*>(turn.Get()),
        static_cast<ConnectionControl*>(size.Get())}) {
    EXPECT_FALSE(made->SetParamTarget(source, source_attrib::kValue)) << "a float";
    ASSERT_TRUE(made->SetParamTarget(source, kPlace));
  }
  EXPECT_EQ(ReadAs<Point3>(*place), (Point3{0.1f, 0.2f, 4}));
  EXPECT_EQ(ReadAs<Quat>(*turn), EulerToQuat({0.1f, 0.2f, 4}));
  EXPECT_EQ(ReadAs<ScaleValue>(*size).s, (Point3{0.1f, 0.2f, 4}));
  // Angles of a parameter go beyond a half turn; half of 4 is 2.
  Weigh(*turn, {1, 1, 0.5f});
  EXPECT_NEAR(Dot(ReadAs<Quat>(*turn), EulerToQuat({0.1f, 0.2f, 2})), 1, 1e-6f);
  slider->GetCustAttribContainer()->RemoveCustAttrib(0);
  EXPECT_EQ(ReadAs<Point3>(*place), Point3());
  EXPECT_EQ(ReadAs<Quat>(*turn), Quat());
  EXPECT_EQ(ReadAs<ScaleValue>(*size), ScaleValue());
}

TEST_F(VectorConnectionTest, RotationReadsBackWhatIsWritten) {
  std::mt19937 rng(6);
  const Ref<Holder> holder(new Holder(new RotationXYZ));
  const Ref<RotationConnection> made(new RotationConnection);
  ASSERT_TRUE(made->SetSubAnimTarget(*holder, 0));
  for (int i = 0; i < 300; ++i) {
    Point3 w = AnyPoint(rng, 2);
    for (int k = 0; k < 3; ++k)
      if (std::abs(w[k]) < 0.2f) w[k] = 0.2f;
    Weigh(*made, w);
    made->GetParamBlock()->SetValue(kUseWeight, 0, i % 3 != 0);
    // Within a quarter turn of Y there is one triple of angles only, and weights of 0.2 keep the target's within too.
    Quat wanted = EulerToQuat(AnyPoint(rng, 0.3f));
    made->SetValue(0, wanted, true, CTRL_ABSOLUTE);
    ASSERT_NEAR(std::abs(Dot(ReadAs<Quat>(*made), wanted)), 1, 1e-5f) << i;
    AngAxis turn{Normalize(AnyPoint(rng, 1)), 0.1f};
    made->SetValue(0, turn, true, CTRL_RELATIVE);
    ASSERT_NEAR(std::abs(Dot(ReadAs<Quat>(*made), wanted * QuatFromAngAxis(turn))), 1, 1e-5f) << i;
    Matrix3 m = SomeMatrix();
    Interval valid = FOREVER;
    made->GetValue(0, m, valid, CTRL_RELATIVE);
    ExpectNear(m, MakeMatrix(ReadAs<Quat>(*made)) * SomeMatrix(), 1e-6f);
  }
}

// Half of a turn and a half is three quarters of a turn, which no quaternion of the target could tell.
TEST_F(VectorConnectionTest, AnglesOfTracksAreNotFolded) {
  auto* rotation = new RotationXYZ;
  const Ref<Holder> holder(new Holder(rotation));
  float angle = 5;
  rotation->GetAxisController(0)->SetValue(0, angle);
  const Ref<RotationConnection> made(new RotationConnection);
  ASSERT_TRUE(made->SetSubAnimTarget(*holder, 0));
  Weigh(*made, {0.5f, 1, 1});
  EXPECT_NEAR(std::abs(Dot(ReadAs<Quat>(*made), EulerToQuat({2.5f, 0, 0}))), 1, 1e-6f);
}

TEST_F(VectorConnectionTest, ScaleIsWeighedFromOne) {
  const Ref<Holder> holder(new Holder(new StaticScale));
  const Ref<ScaleConnection> made(new ScaleConnection);
  ASSERT_TRUE(made->SetSubAnimTarget(*holder, 0));
  static_cast<StaticScale*>(holder->control)->Set({{3, 2, 1}, {}});
  Weigh(*made, {0.5f, 0, 2});
  EXPECT_EQ(ReadAs<ScaleValue>(*made).s, (Point3{2, 1, 1}));
  ScaleValue wanted{{4, 4, 5}, {}};
  made->SetValue(0, wanted, true, CTRL_ABSOLUTE);
  EXPECT_EQ(static_cast<StaticScale*>(holder->control)->Get().s, (Point3{7, 2, 3}));
  ScaleValue twice{{2, 1, 1}, {}};
  made->SetValue(0, twice, true, CTRL_RELATIVE);
  EXPECT_EQ(ReadAs<ScaleValue>(*made).s, (Point3{8, 1, 5}));
  Matrix3 m = SomeMatrix();
  Interval valid = FOREVER;
  made->GetValue(0, m, valid, CTRL_RELATIVE);
  ExpectNear(m, ScaleMatrix({8, 1, 5}) * SomeMatrix(), 1e-5f);
}

TEST_F(VectorConnectionTest, AConstantStandsIn) {
  const Ref<PositionConnection> made(new PositionConnection);
  EXPECT_FALSE(made->SetConstant(WStr(L"here")));
  ASSERT_TRUE(made->SetConstant(Point3{1, 2, 3}));
  EXPECT_EQ(ReadAs<Point3>(*made), (Point3{1, 2, 3}));
  EXPECT_EQ(made->TargetText(), L"Assigned to: Constant: [1,2,3]");
  made->ClearTarget();
  EXPECT_EQ(ReadAs<Point3>(*made), Point3());
}

TEST_F(VectorConnectionTest, ARingAnswersAndIsCounted) {
  const Ref<PositionConnection> a(new PositionConnection);
  const Ref<Holder> holder(new Holder(a.Get()));
  ASSERT_TRUE(a->SetSubAnimTarget(*holder, 0));
  Weigh(*a, {1, 1, 1});
  const int before = GuardCount();
  EXPECT_EQ(ReadAs<Point3>(*a), Point3());
  EXPECT_GT(GuardCount(), before);
  Point3 p{1, 1, 1};
  a->SetValue(0, p, true, CTRL_ABSOLUTE);
}

}  // namespace
}  // namespace tavrilon
