// SPDX-License-Identifier: MIT
#include "plugin/controllers/static_controls.h"

#include "host/core/remap.h"
#include "plugin/controllers/control_values_test.h"
#include "plugin/frame/rig_nodes_test.h"

namespace tavrilon {
namespace {

using namespace corvanta;

class StaticControls : public RigNodesTest {};

template <class T>
T Read(Control& control, T value = {}, GetSetMethod method = CTRL_ABSOLUTE, TimeValue t = 777) {
  Interval valid{10, 20};
  control.GetValue(t, value, valid, method);
  EXPECT_TRUE(valid == (Interval{10, 20}));  // whatever the controller, it holds for ever
  return value;
}

TEST_F(StaticControls, AbsoluteWritesHoldAtAllTimes) {
  StaticFloat f;
  float one = 1.5f;
  f.SetValue(100, one, true, CTRL_ABSOLUTE);
  EXPECT_EQ(Read<float>(f), 1.5f);
  StaticRotation r;
  Quat q = EulerToQuat({1, 2, 3});
  r.SetValue(100, q, true, CTRL_ABSOLUTE);
  EXPECT_TRUE(Read<Quat>(r) == q);
}

TEST_F(StaticControls, RelativeReadsGoOntoWhatComesIn) {
  const Quat q = EulerToQuat({0.3f, 0.2f, 0.1f});
  Matrix3 parent = EulerToMatrix({1, 0, 0});
  parent.SetTrans({5, 6, 7});

  StaticFloat f;
  f.Set(2);
  EXPECT_EQ(Read<float>(f, 3, CTRL_RELATIVE), 5);
  StaticPosition p;
  p.Set({1, 2, 3});
  EXPECT_TRUE(Read<Point3>(p, {1, 1, 1}, CTRL_RELATIVE) == (Point3{2, 3, 4}));
  EXPECT_TRUE(IsNear(Read<Matrix3>(p, parent, CTRL_RELATIVE), TransMatrix({1, 2, 3}) * parent, 1e-6f));
  StaticRotation r;
  r.Set(q);
  EXPECT_TRUE(IsNear(Read<Matrix3>(r, parent, CTRL_RELATIVE), MakeMatrix(q) * parent, 1e-6f));
  StaticScale s;
  s.Set({{1, 2, 3}, q});
  EXPECT_TRUE(IsNear(Read<Matrix3>(s, parent, CTRL_RELATIVE), MakeMatrix(ScaleValue{{1, 2, 3}, q}) * parent, 1e-5f));
  StaticTransform tm;
  tm.Set(parent);
  EXPECT_TRUE(IsNear(Read<Matrix3>(tm, parent, CTRL_RELATIVE), parent * parent, 1e-5f));
  EXPECT_TRUE(Read<Matrix3>(tm, TransMatrix({9, 9, 9}), CTRL_ABSOLUTE) == parent);
}

TEST_F(StaticControls, RelativeWritesAddUp) {
  StaticPosition p;
  p.Set({1, 2, 3});
  Point3 delta{1, 0, -1};
  p.SetValue(0, delta, true, CTRL_RELATIVE);
  EXPECT_TRUE(p.Get() == (Point3{2, 2, 2}));
  StaticRotation r;
  const Quat before = EulerToQuat({0.5f, 0, 0});
  r.Set(before);
  AngAxis turn{{0, 0, 1}, 0.25f};
  r.SetValue(0, turn, true, CTRL_RELATIVE);
  EXPECT_TRUE(IsNear(r.Get(), before * QuatFromAngAxis(turn), 1e-6f));
  StaticScale s;
  s.Set({{2, 3, 4}, {}});
  ScaleValue twice{{2, 1, 0.5f}, {}};
  s.SetValue(0, twice, true, CTRL_RELATIVE);
  EXPECT_TRUE(s.Get().s == (Point3{4, 3, 2}));
}

struct KnownPacket {
  const char* name;
  SetXFormPacket packet;
  Point3 place;
};
TEST_F(StaticControls, PacketsOnATransformAtFiveZeroZero) {
  const Matrix3 turned = RotateZMatrix(kHalfPi);
  const AngAxis quarter{{0, 0, 1}, kHalfPi};
  const KnownPacket kPackets[] = {
      {"turn about the origin", SetXFormPacket::Rotate(quarter), {0, -5, 0}},
      {"turn about its own place", SetXFormPacket::Rotate(quarter, true), {5, 0, 0}},
      {"move along a turned axis", SetXFormPacket::Move({1, 0, 0}, {}, turned), {5, 1, 0}},
      {"move under a turned parent", SetXFormPacket::Move({1, 0, 0}, turned), {5, -1, 0}},
      {"scale about the origin", SetXFormPacket::Scale({2, 2, 2}), {10, 0, 0}},
      {"set under a parent", SetXFormPacket::Set(TransMatrix({3, 0, 0}), TransMatrix({1, 0, 0})), {2, 0, 0}},
  };
  for (KnownPacket known : kPackets) {
    SCOPED_TRACE(known.name);
    StaticTransform tm;
    tm.Set(TransMatrix({5, 0, 0}));
    tm.SetValue(0, known.packet, true, CTRL_ABSOLUTE);
    EXPECT_TRUE(IsNear(tm.Get().GetTrans(), known.place, 1e-5f));
  }
}

TEST_F(StaticControls, LockDropsWritesButNotReparenting) {
  StaticPosition p;
  static_cast<ILockedTrack*>(p.GetInterface(I_LOCKED))->SetLocked(true);
  Point3 to{1, 1, 1};
  p.SetValue(0, to, true, CTRL_ABSOLUTE);
  EXPECT_TRUE(p.Get() == Point3());
  EXPECT_FALSE(p.IsReplaceable() || p.CanOverwrite());

  StaticTransform tm;
  tm.SetLocked(true);
  SetXFormPacket packet = SetXFormPacket::Set(TransMatrix({1, 0, 0}));
  tm.SetValue(0, packet, true, CTRL_ABSOLUTE);
  EXPECT_TRUE(tm.Get() == Matrix3());
  EXPECT_TRUE(tm.ChangeParents(0, TransMatrix({4, 0, 0}), TransMatrix({1, 0, 0}), Matrix3()));
  EXPECT_TRUE(tm.Get() == TransMatrix({3, 0, 0}));
}

TEST_F(StaticControls, UndoTakesBackTheFirstOfTwoWrites) {
  const Ref<StaticFloat> f(new StaticFloat);
  theHold.Begin();
  f->Set(1);
  f->Set(2);
  theHold.Accept(L"Edit");
  theHold.Undo();
  EXPECT_EQ(f->Get(), 0);
  theHold.Redo();
  EXPECT_EQ(f->Get(), 2);
  theHold.Flush();
}

TEST_F(StaticControls, CopyTakesValueAndLock) {
  const Ref<StaticTransform> from(new StaticTransform), to(new StaticTransform);
  from->Set(TransMatrix({1, 2, 3}));
  from->SetLocked(true);
  to->Copy(from.Get());
  EXPECT_TRUE(to->Get() == from->Get());
  EXPECT_TRUE(to->GetLocked());
  const Ref<StaticTransform> clone(static_cast<StaticTransform*>(CloneRefHierarchy(to.Get())));
  EXPECT_TRUE(clone->Get() == from->Get());
  EXPECT_TRUE(clone->GetLocked());
}

// Bytes of chunk 0: ID and length take six bytes, and the lock is a chunk of one byte.
TEST_F(StaticControls, ChunksAreRawValues) {
  struct Size {
    TavrilonClass row;
    size_t bytes;
  };
  for (const Size& size : {Size{TavrilonClass::StaticFloat, 4}, Size{TavrilonClass::StaticPosition, 12},
                           Size{TavrilonClass::StaticRotation, 16}, Size{TavrilonClass::StaticScale, 28},
                           Size{TavrilonClass::StaticTransform, 52}}) {
    const Ref<ReferenceTarget> object(DescOf(size.row).Create());
    ISave save;
    ASSERT_EQ(object->Save(save), IOResult::OK);
    ILoad load(save.Bytes());
    ASSERT_EQ(load.OpenChunk(), IOResult::OK);
    EXPECT_EQ(load.CurChunkID(), 0);
    EXPECT_EQ(load.CurChunkLength(), size.bytes);
    load.CloseChunk();
    ASSERT_EQ(load.OpenChunk(), IOResult::OK);
    EXPECT_EQ(load.CurChunkID(), 1);
    EXPECT_EQ(load.CurChunkLength(), 1u);
  }
}

TEST_F(StaticControls, SaveAndLoad) {
  StaticScale scale, loaded;
  scale.Set({{1, 2, 3}, EulerToQuat({0.1f, 0.2f, 0.3f})});
  scale.SetLocked(true);
  ISave save;
  scale.Save(save);
  ILoad load(save.Bytes());
  EXPECT_EQ(loaded.Load(load), IOResult::OK);
  EXPECT_TRUE(loaded.Get() == scale.Get());
  EXPECT_TRUE(loaded.GetLocked());

  ISave short_;
  short_.BeginChunk(0);
  short_.Write(1.0f);
  short_.EndChunk();
  ILoad truncated(short_.Bytes());
  StaticScale broken;
  EXPECT_EQ(broken.Load(truncated), IOResult::Error);
}

}  // namespace
}  // namespace tavrilon
