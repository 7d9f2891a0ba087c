// SPDX-License-Identifier: MIT
#include "plugin/controllers/rotation_xyz.h"

#include "host/core/remap.h"
#include "plugin/controllers/control_values_test.h"
#include "plugin/controllers/euler_write.h"
#include "plugin/controllers/static_controls.h"
#include "plugin/frame/rig_nodes_test.h"
#include "support/alloc_counter.h"

namespace tavrilon {
namespace {

using namespace corvanta;

constexpr TimeValue kFrame = 200;

class RotationXYZTest : public RigNodesTest {
 protected:
  void SetUp() override {
    RigNodesTest::SetUp();
    rotation = new RotationXYZ;
  }
  void TearDown() override {
    if (Animating()) AnimateOff();
    rotation = {};
    theHold.Flush();
    RigNodesTest::TearDown();
  }
  Quat Value(TimeValue t = 0) {
    Quat q;
    Interval valid = FOREVER;
    rotation->GetValue(t, q, valid, CTRL_ABSOLUTE);
    return q;
  }
  Point3 Degrees(TimeValue t = 0) { return rotation->GetTrackValues(t) * kRadToDeg; }
  void SetTracks(float x, float y, float z, TimeValue t = 0) {
    float values[] = {x * kDegToRad, y * kDegToRad, z * kDegToRad};
    for (int i = 0; i < 3; ++i) rotation->GetAxisController(i)->SetValue(t, values[i], true, CTRL_ABSOLUTE);
  }
  void Turn(Point3 axis, float degrees, TimeValue t = 0) {
    AngAxis turn{axis, degrees * kDegToRad};
    rotation->SetValue(t, turn, true, CTRL_RELATIVE);
  }
  Ref<RotationXYZ> rotation;
};

TEST_F(RotationXYZTest, MatrixIsTheProductInEveryOrder) {
  for (int order = 0; order < 9; ++order) {
    rotation->SetOrder(order);
    SetTracks(10, 20, 30);
    const Matrix3 expected = EulerToMatrix(TracksToAngles(Point3{10, 20, 30} * kDegToRad, order), order);
    Matrix3 m = TransMatrix({1, 2, 3});
    Interval valid = FOREVER;
    rotation->GetValue(0, m, valid, CTRL_RELATIVE);
    EXPECT_TRUE(IsNear(m, expected * TransMatrix({1, 2, 3}), 1e-6f)) << order;
    EXPECT_TRUE(IsNear(Value(), QuatFromMatrix(expected), 1e-6f)) << order;
    EXPECT_TRUE(valid == FOREVER);
  }
}

TEST_F(RotationXYZTest, WritesArriveInEveryOrder) {
  std::mt19937 rng(21);
  for (int order = 0; order < 9; ++order) {
    rotation->SetOrder(order);
    for (int i = 0; i < 20; ++i) {
      Quat q = RandomQuat(rng);
      rotation->SetValue(0, q, true, CTRL_ABSOLUTE);
      ASSERT_TRUE(IsNear(Value(), q, 2e-4f)) << order;
    }
  }
}

TEST_F(RotationXYZTest, GimbalTurnAddsToFourHundredDegrees) {
  SetTracks(30, 400, 50);
  GetCOREInterface()->SetRefCoordSys(RefCoordSys::Gimbal);
  Turn(GimbalMark(1), -5);
  EXPECT_TRUE(IsNear(Degrees(), {30, 405, 50}, 1e-3f));
}

TEST_F(RotationXYZTest, DependentsHearOnceAndSeeAllThreeAngles) {
  struct Observer final : ReferenceTarget {
    explicit Observer(RotationXYZ* r) { BindReference(0, r); }
    SClass_ID SuperClassID() const override { return kReferenceTargetSuper; }
    Class_ID ClassID() const override { return {1, 6}; }
    int NumRefs() const override { return 1; }
    ReferenceTarget* GetReference(int) const override { return heard; }
    void SetReference(int, ReferenceTarget* t) override { heard = t; }
    RefResult NotifyRefChanged(const Interval&, ReferenceTarget*, PartID&, RefMessage, bool) override {
      ++count;
      return REF_SUCCEED;
    }
    ReferenceTarget* heard = nullptr;
    int count = 0;
  };
  const Ref<Observer> observer(new Observer(rotation.Get()));
  Quat q = EulerToQuat({1, 0.5f, 0.2f});
  rotation->SetValue(0, q, true, CTRL_ABSOLUTE);
  EXPECT_EQ(observer->count, 1);
  float x = 0;
  rotation->GetXController()->SetValue(0, x, true, CTRL_ABSOLUTE);
  EXPECT_EQ(observer->count, 2);
  EXPECT_NEAR(rotation->GetTrackValues(0).x, 0, 1e-6f);
  EXPECT_TRUE(IsNear(Value(), EulerToQuat({0, 0.5f, 0.2f}), 1e-5f));
}

TEST_F(RotationXYZTest, MissingTracksCountAsZero) {
  rotation->ReplaceReference(1, nullptr);
  Quat q = EulerToQuat({0.5f, 0, 0});
  rotation->SetValue(0, q, true, CTRL_ABSOLUTE);
  EXPECT_TRUE(IsNear(Value(), q, 1e-5f));
}

TEST_F(RotationXYZTest, OrderIsOneUndoStep) {
  const int steps = theHold.NumUndo();
  rotation->SetOrder(kZYX);
  EXPECT_EQ(theHold.NumUndo(), steps + 1);
  EXPECT_EQ(theHold.UndoName(), L"Change Euler Order");
  theHold.Undo();
  EXPECT_EQ(rotation->GetOrder(), kXYZ);
  theHold.Redo();
  EXPECT_EQ(rotation->GetOrder(), kZYX);
  rotation->SetOrder(9);
  EXPECT_EQ(rotation->GetOrder(), kZYX);
}

TEST_F(RotationXYZTest, UndoTakesTheAnglesBack) {
  SetTracks(10, 20, 30);
  theHold.Begin();
  Turn({1, 1, 1}, 40);
  theHold.Accept(L"Rotate");
  const Quat turned = Value();
  theHold.Undo();
  EXPECT_TRUE(IsNear(Degrees(), {10, 20, 30}, 1e-4f));
  EXPECT_TRUE(IsNear(Value(), EulerToQuat(Point3{10, 20, 30} * kDegToRad), 1e-6f));
  theHold.Redo();
  EXPECT_TRUE(IsNear(Value(), turned, 1e-6f));
}

TEST_F(RotationXYZTest, LockRefusesEverything) {
  SetTracks(10, 20, 30);
  rotation->SetLocked(true);
  Turn({1, 0, 0}, 90);
  rotation->SetOrder(kZYX);
  EXPECT_FALSE(rotation->AssignController(nullptr, 0));
  EXPECT_TRUE(IsNear(Degrees(), {10, 20, 30}, 1e-4f));
  EXPECT_EQ(rotation->GetOrder(), kXYZ);
  EXPECT_EQ(GetLockedTrack(rotation.Get())->GetLocked(), true);
}

TEST_F(RotationXYZTest, AssignRefusesLockedTracksAndOtherKinds) {
  auto* locked = new StaticFloat;
  ASSERT_TRUE(rotation->AssignController(locked, 2));
  locked->SetLocked(true);
  EXPECT_FALSE(rotation->AssignController(nullptr, 2));
  const Ref<Control> position(new StaticPosition);
  EXPECT_FALSE(rotation->AssignController(position.Get(), 0));
  EXPECT_FALSE(rotation->AssignController(nullptr, 3));
}

TEST_F(RotationXYZTest, StoredOrders) {
  struct Case {
    int order;
    int32_t stored;
  };
  for (const Case& c : {Case{0, 0}, Case{1, 101}, Case{5, 105}, Case{6, 106}, Case{8, 108}}) {
    rotation->SetOrder(c.order);
    ISave save;
    ASSERT_EQ(rotation->Save(save), IOResult::OK);
    ILoad read(save.Bytes());
    int32_t stored = -1;
    while (read.OpenChunk() == IOResult::OK) {
      if (read.CurChunkID() == 4099) read.Read(stored);
      read.CloseChunk();
    }
    EXPECT_EQ(stored, c.stored);
    ILoad load(save.Bytes());
    const Ref<RotationXYZ> loaded(new RotationXYZ(true));
    EXPECT_EQ(loaded->Load(load), IOResult::OK);
    EXPECT_EQ(loaded->GetOrder(), c.order);
    EXPECT_FALSE(loaded->HasLegacyOrder());
  }
}

TEST_F(RotationXYZTest, OrdersOfOlderScenesAndDamagedOnes) {
  for (const int32_t stored : {3, 77, -4, 109}) {
    ISave save;
    save.BeginChunk(4099);
    save.Write(stored);
    save.EndChunk();
    ILoad load(save.Bytes());
    const Ref<RotationXYZ> loaded(new RotationXYZ(true));
    const bool good = stored == 3;
    EXPECT_EQ(loaded->Load(load), good ? IOResult::OK : IOResult::Error) << stored;
    EXPECT_EQ(loaded->HasLegacyOrder(), good);
  }
}

TEST_F(RotationXYZTest, CloneAndSaveKeepOrderLockAndJoints) {
  SetTracks(10, 20, 30);
  rotation->SetOrder(kYZX);
  rotation->Joints() = JointParams{{1, 0, 1}, {{-1, 1, 0.5f}, {-2, 2, 0}, {-3, 3, 0}}};
  rotation->SetLocked(true);
  const Ref<RotationXYZ> clone(static_cast<RotationXYZ*>(CloneRefHierarchy(rotation.Get())));
  EXPECT_NE(clone->GetXController(), rotation->GetXController());
  EXPECT_EQ(clone->GetOrder(), kYZX);
  EXPECT_TRUE(clone->GetLocked());
  EXPECT_TRUE(IsNear(clone->GetTrackValues(0) * kRadToDeg, {10, 20, 30}, 1e-4f));
  ISave save;
  clone->Save(save);
  ILoad load(save.Bytes());
  const Ref<RotationXYZ> loaded(new RotationXYZ(true));
  ASSERT_EQ(loaded->Load(load), IOResult::OK);
  ASSERT_TRUE(loaded->Joints().has_value());
  EXPECT_EQ(loaded->Joints()->axis[1].max, 2);
  EXPECT_EQ(loaded->Joints()->flags[2], 1);
  EXPECT_TRUE(loaded->GetLocked());
}

TEST_F(RotationXYZTest, CopyConvertsAConstant) {
  const Ref<StaticRotation> from(new StaticRotation);
  from->Set(EulerToQuat({0.1f, 0.2f, 0.3f}));
  from->SetLocked(true);
  rotation->Copy(from.Get());
  EXPECT_TRUE(IsNear(Value(), from->Get(), 1e-5f));
  EXPECT_TRUE(rotation->GetLocked());
  EXPECT_EQ(rotation->NumKeys(), 0);
}

// --- with keys

class RotationXYZKeys : public RotationXYZTest {
 protected:
  void KeyTracks(float x, float y, float z, TimeValue t) {
    AnimateOn();
    SetTracks(x, y, z, t);
    AnimateOff();
  }
};

// 30 at frame 0 and 390 at frame 10: at frame 5 the curve shows 210, but a new key follows on from the key at 0.
TEST_F(RotationXYZKeys, NewKeyIsContinuousWithTheKeyBefore) {
  KeyTracks(30, 0, 0, 0);
  KeyTracks(750, 0, 0, 10 * kFrame);
  AnimateOn();
  Quat q = EulerToQuat(Point3{50, 0, 0} * kDegToRad);
  rotation->SetValue(5 * kFrame, q, true, CTRL_ABSOLUTE);
  AnimateOff();
  EXPECT_NEAR(Degrees(5 * kFrame).x, 50, 1e-3f);
}

TEST_F(RotationXYZKeys, MergedKeyTable) {
  AnimateOn();
  float one = 1;
  rotation->GetXController()->SetValue(10, one, true, CTRL_ABSOLUTE);
  rotation->GetYController()->SetValue(20, one, true, CTRL_ABSOLUTE);
  AnimateOff();
  ASSERT_EQ(rotation->NumKeys(), 3);  // 0, 10, 20
  EXPECT_EQ(rotation->GetKeyTime(1), 10);
  EXPECT_EQ(rotation->GetKeyIndex(20), 2);
  EXPECT_EQ(rotation->GetKeyIndex(15), -1);
  TimeValue next = 0;
  EXPECT_TRUE(rotation->GetNextKeyTime(10, true, next));
  EXPECT_EQ(next, 20);
  rotation->SelectKeys({20, 20}, true);
  EXPECT_TRUE(rotation->IsKeySelected(2));
  EXPECT_FALSE(rotation->IsKeySelected(1));
  rotation->DeleteKeyAtTime(10);
  EXPECT_EQ(rotation->NumKeys(), 2);
  rotation->SetLocked(true);
  rotation->DeleteKeys(false);
  EXPECT_EQ(rotation->NumKeys(), 2);
}

TEST_F(RotationXYZKeys, CopyTakesEveryKeyContinuously) {
  const Ref<Control> from(NewDefaultRotationController());
  ASSERT_TRUE(from);
  auto* euler = static_cast<IEulerControl*>(from->GetInterface(I_EULERCTRL));
  AnimateOn();
  for (int frame = 0; frame <= 6; ++frame) {
    float angle = static_cast<float>(frame) * 100 * kDegToRad;
    euler->GetAxisController(2)->SetValue(frame * kFrame, angle, true, CTRL_ABSOLUTE);
  }
  AnimateOff();
  rotation->Copy(from.Get());
  EXPECT_FALSE(Animating());
  ASSERT_EQ(rotation->NumKeys(), 7);
  EXPECT_NEAR(Degrees(6 * kFrame).z, 600, 0.01f);
}

TEST_F(RotationXYZKeys, EvaluationAllocatesNothing) {
  KeyTracks(10, 20, 30, 0);
  KeyTracks(50, 60, 70, 100);
  Matrix3 m;
  Interval valid = FOREVER;
  rotation->GetValue(0, m, valid, CTRL_RELATIVE);
  const tests::AllocCounter counter;
  for (TimeValue t = 1; t < 50; ++t) rotation->GetValue(t, m, valid, CTRL_RELATIVE);
  EXPECT_EQ(counter.Count(), 0u);
}

}  // namespace
}  // namespace tavrilon
