// SPDX-License-Identifier: MIT
#include <random>

#include "host/anim/control_test.h"

namespace corvanta {
namespace {

struct ClassRow {
  const char* name;
  SClass_ID superClass;
  Class_ID id;
  int keySize;
};
const ClassRow kKeyframeClasses[] = {
    {"Bezier float", kFloatControlSuper, {0x2007, 0}, 28},
    {"Bezier position", kPositionControlSuper, {0x2008, 0}, 68},
    {"Bezier Point3", kPoint3ControlSuper, {0x200A, 0}, 68},
    {"Bezier scale", kScaleControlSuper, {0x2010, 0}, 84},
    {"Bezier colour", kPoint3ControlSuper, {0x2011, 0}, 68},
    {"Bezier Point4", kPoint4ControlSuper, {0x2012, 0}, 88},
    {"Bezier RGBA", kPoint4ControlSuper, {0x2013, 0}, 88},
    {"TCB float", kFloatControlSuper, {0x442311, 0}, 32},
    {"TCB position", kPositionControlSuper, {0x442312, 0}, 40},
    {"TCB rotation", kRotationControlSuper, {0x442313, 0}, 44},
    {"TCB scale", kScaleControlSuper, {0x442315, 0}, 56},
};

/// A write of whatever the controller takes.
void WriteSome(Control& c, TimeValue t, std::mt19937& rng) {
  std::uniform_real_distribution<float> u(-3, 3);
  Point3 p{u(rng), u(rng), u(rng)};
  switch (c.SuperClassID()) {
    case kFloatControlSuper:
      SetFloat(c, t, p.x);
      break;
    case kPoint4ControlSuper: {
      Point4 p4{p.x, p.y, p.z, u(rng)};
      c.SetValue(t, p4, true, CTRL_ABSOLUTE);
      break;
    }
    case kRotationControlSuper: {
      Quat q = EulerToQuat(p);
      c.SetValue(t, q, true, CTRL_ABSOLUTE);
      break;
    }
    case kScaleControlSuper: {
      ScaleValue s{{1 + std::abs(p.x), 2, 3}, EulerToQuat(p)};
      c.SetValue(t, s, true, CTRL_ABSOLUTE);
      break;
    }
    default:
      c.SetValue(t, p, true, CTRL_ABSOLUTE);
      break;
  }
}

class Shift : public TimeMap {
 public:
  explicit Shift(int by) : by_(by) {}
  TimeValue Map(TimeValue t) const override { return t + by_; }

 private:
  int by_;
};

class Gather : public TimeMap {
 public:
  TimeValue Map(TimeValue) const override { return 5; }
};

void EditSome(Control& c, std::mt19937& rng) {
  const auto number = [&](int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); };
  const TimeValue t = number(20) * 10;
  switch (number(12)) {
    case 0:
      c.AddNewKey(t);
      break;
    case 1:
      c.DeleteKeyAtTime(t);
      break;
    case 2:
      c.DeleteKeys(true);
      break;
    case 3:
      c.SelectKeys({t, t + 50}, number(2) != 0);
      break;
    case 4:
      c.MapKeys(Shift(number(5) * 10 - 20), number(2) ? uint32_t{KEYMAP_SELECTED} : uint32_t{KEYMAP_FROM_LAST});
      break;
    case 5:
      c.DeleteTime({t, t + 15}, number(2) ? uint32_t{TIME_NOSLIDE} : 0u);
      break;
    case 6:
      c.ReverseTime({t, t + 60}, 0);
      break;
    case 7:
      c.CopyKeysFromTime(t, number(20) * 10);
      break;
    case 8:
      c.SetORT(number(2) ? ORT::Cycle : ORT::RelativeRepeat, number(2) != 0);
      break;
    case 9:
      ReduceKeys(&c, 0.1f, 5, FOREVER);
      break;
    default: {
      if (number(3)) AnimateOn();
      WriteSome(c, t, rng);
      AnimateOff();
    }
  }
}

TEST(KeyframeControl, TableOfClasses) {
  for (const ClassRow& row : kKeyframeClasses) {
    SCOPED_TRACE(row.name);
    const Ref<Control> c = Make(row.superClass, row.id);
    ASSERT_TRUE(c);
    EXPECT_EQ(c->ClassID(), row.id);
    ASSERT_NE(GetKeyControl(c.Get()), nullptr);
    EXPECT_EQ(GetKeyControl(c.Get())->GetKeySize(), row.keySize);
    EXPECT_NE(GetEaseList(c.Get()), nullptr);
    EXPECT_NE(GetLockedTrack(c.Get()), nullptr);
    EXPECT_EQ(ValidAt(*c, 5), FOREVER);
  }
  EXPECT_EQ(FloatAt(*MakeFloat(), 0), 0);
  EXPECT_EQ(MatrixAt(*Make(kScaleControlSuper, kBezierScaleId), 0), Matrix3{});
}

// Whatever is done in a step: undo gives the saved bytes of before, redo those of after, and cancel those of before.
TEST(KeyframeControl, UndoRestoresSavedBytes) {
  std::mt19937 rng(21);
  for (const ClassRow& row : kKeyframeClasses) {
    SCOPED_TRACE(row.name);
    const Ref<Control> c = Make(row.superClass, row.id);
    std::vector<std::vector<uint8_t>> states{Bytes(c.Get())};
    for (int step = 0; step < 60; ++step) {
      theHold.Begin();
      for (int i = 0; i < 4; ++i) EditSome(*c, rng);
      if (step % 7 == 0) {
        theHold.Cancel();
        ASSERT_EQ(Bytes(c.Get()), states.back());
        continue;
      }
      if (step % 5 == 0) {
        theHold.Restore();
        ASSERT_EQ(Bytes(c.Get()), states.back());
        EditSome(*c, rng);
      }
      theHold.Accept(L"Edit");
      states.push_back(Bytes(c.Get()));
    }
    for (size_t i = states.size() - 1; i-- > 0;) {
      ASSERT_TRUE(theHold.Undo());
      ASSERT_EQ(Bytes(c.Get()), states[i]) << i;
    }
    for (size_t i = 1; i < states.size(); ++i) {
      ASSERT_TRUE(theHold.Redo());
      ASSERT_EQ(Bytes(c.Get()), states[i]) << i;
    }
    theHold.Flush();
  }
}

TEST(KeyframeControl, CloneAndFileAreEqual) {
  std::mt19937 rng(22);
  for (const ClassRow& row : kKeyframeClasses) {
    SCOPED_TRACE(row.name);
    const Ref<Control> c = Make(row.superClass, row.id);
    for (int i = 0; i < 40; ++i) EditSome(*c, rng);
    if (row.superClass == kFloatControlSuper) {
      GetEaseList(c.Get())->Append(NewEaseCurve({0, 100}));
      GetMultiplierList(c.Get())->Append(NewMultiplierCurve());
      GetMultiplierList(c.Get())->SetEnabled(0, false);
    }
    GetLockedTrack(c.Get())->SetLocked(true);
    const Ref<ReferenceTarget> clone(CloneRefHierarchy(c.Get()));
    EXPECT_EQ(Bytes(clone.Get()), Bytes(c.Get()));
    EXPECT_EQ(Bytes(Reloaded(c.Get()).Get()), Bytes(c.Get()));
    for (TimeValue t = -50; t < 300; t += 7) EXPECT_EQ(ValidAt(*clone->AsControl(), t), ValidAt(*c, t)) << t;
  }
}

// --- writing --------------------------------------------------------------------------------------------------------

TEST(KeyframeControl, WriteWithoutAnimate) {
  const Ref<Control> c = MakeFloat();
  SetFloat(*c, 50, 3);
  EXPECT_EQ(c->NumKeys(), 0);
  EXPECT_EQ(FloatAt(*c, -1000), 3);
  SetFloat(*c, 70, 2, CTRL_RELATIVE);
  EXPECT_EQ(FloatAt(*c, 0), 5);
  // With keys the whole curve moves, and makes no key.
  {
    const Animate on;
    SetFloat(*c, 100, 10);
  }
  const float middle = FloatAt(*c, 50);
  SetFloat(*c, 100, 14);
  EXPECT_EQ(c->NumKeys(), 2);
  EXPECT_EQ(FloatAt(*c, 0), 9);
  EXPECT_EQ(FloatAt(*c, 100), 14);
  EXPECT_FLOAT_EQ(FloatAt(*c, 50), middle + 4);
}

TEST(KeyframeControl, WriteWithAnimate) {
  const Animate on;
  const Ref<Control> c = MakeFloat();
  SetFloat(*c, 100, 10);  // the old value gets a key at 0
  ASSERT_EQ(c->NumKeys(), 2);
  EXPECT_EQ(c->GetKeyTime(0), 0);
  EXPECT_EQ(FloatAt(*c, 0), 0);
  EXPECT_EQ(FloatAt(*c, 100), 10);
  SetFloat(*c, 50, 1, CTRL_RELATIVE);
  EXPECT_EQ(FloatAt(*c, 50), 6);
  EXPECT_EQ(c->NumKeys(), 3);
  const Ref<Control> atZero = MakeFloat();
  SetFloat(*atZero, 0, 4);
  EXPECT_EQ(atZero->NumKeys(), 1);
  SuspendAnimate();
  SetFloat(*atZero, 30, 8);
  ResumeAnimate();
  EXPECT_EQ(atZero->NumKeys(), 1);
  EXPECT_EQ(FloatAt(*atZero, 0), 8);
}

// Written with animate on, every class reads back what was written, and other keys keep their values.
TEST(KeyframeControl, WhatWasWrittenReadsBack) {
  std::mt19937 rng(23);
  const Animate on;
  const Ref<Control> position = Make(kPositionControlSuper, kTcbPositionId),
                     scale = Make(kScaleControlSuper, kBezierScaleId),
                     rotation = Make(kRotationControlSuper, kTcbRotationId);
  std::uniform_real_distribution<float> u(-5, 5);
  std::vector<Point3> points;
  for (int i = 0; i < 20; ++i) {
    points.push_back({u(rng), u(rng), u(rng)});
    Quat q = EulerToQuat(points.back());
    ScaleValue s{points.back(), q};
    position->SetValue(i * 77, points.back(), true, CTRL_ABSOLUTE);
    rotation->SetValue(i * 77, q, true, CTRL_ABSOLUTE);
    scale->SetValue(i * 77, s, true, CTRL_ABSOLUTE);
  }
  for (int i = 0; i < 20; ++i) {
    const Point3& p = points[static_cast<size_t>(i)];
    EXPECT_EQ(PointAt(*position, i * 77), p);
    EXPECT_LT(Distance(QuatAt(*rotation, i * 77), EulerToQuat(p)), 1e-6f);
    EXPECT_LT(Distance(MatrixAt(*scale, i * 77), MakeMatrix(ScaleValue{p, EulerToQuat(p)})), 1e-6f);
  }
}

TEST(KeyframeControl, RotationsShiftAboutOneAxis) {
  const Ref<Control> c = Make(kRotationControlSuper, kTcbRotationId);
  {
    const Animate on;
    for (int i = 0; i < 3; ++i) {
      Quat q = EulerToQuat(Deg(20.0f * i, 10, 30));
      c->SetValue(i * 100, q, true, CTRL_ABSOLUTE);
    }
  }
  const Matrix3 before = MatrixAt(*c, 130);
  AngAxis aa{{0, 1, 0}, 0.6f};
  c->SetValue(100, aa, true, CTRL_RELATIVE);
  EXPECT_EQ(c->NumKeys(), 3);
  EXPECT_LT(Distance(MatrixAt(*c, 130), before * MakeMatrix(QuatFromAngAxis(aa))), 1e-5f);
}

TEST(KeyframeControl, RelativeReads) {
  const Matrix3 parent = EulerToMatrix(Deg(10, 20, 30)) * TransMatrix({1, 2, 3});
  const Ref<Control> p = Make(kPositionControlSuper, kBezierPositionId),
                     r = Make(kRotationControlSuper, kTcbRotationId), s = Make(kScaleControlSuper, kBezierScaleId);
  Point3 point{4, 5, 6};
  Quat q = EulerToQuat(Deg(40, 0, 0));
  ScaleValue scale{{1, 2, 3}, EulerToQuat(Deg(0, 0, 45))};
  p->SetValue(0, point, true, CTRL_ABSOLUTE);
  r->SetValue(0, q, true, CTRL_ABSOLUTE);
  s->SetValue(0, scale, true, CTRL_ABSOLUTE);
  EXPECT_LT(Distance(MatrixAt(*p, 0, parent), TransMatrix(point) * parent), 1e-5f);
  EXPECT_LT(Distance(MatrixAt(*r, 0, parent), MakeMatrix(q) * parent), 1e-5f);
  EXPECT_LT(Distance(MatrixAt(*s, 0, parent), MakeMatrix(scale) * parent), 1e-5f);
  // The tag of the value decides: a Point3 is added to.
  Point3 sum{1, 1, 1};
  Interval valid = FOREVER;
  p->GetValue(0, sum, valid, CTRL_RELATIVE);
  EXPECT_EQ(sum, (Point3{5, 6, 7}));
  // Factors multiply along common axes.
  ScaleValue twice{{2, 1, 1}, scale.q};
  s->SetValue(0, twice, true, CTRL_RELATIVE);
  EXPECT_LT(Distance(MatrixAt(*s, 0), MakeMatrix(ScaleValue{{2, 2, 3}, scale.q})), 1e-5f);
}

TEST(KeyframeControl, LockedTracksTakeNothing) {
  std::mt19937 rng(24);
  for (const ClassRow& row : kKeyframeClasses) {
    SCOPED_TRACE(row.name);
    const Ref<Control> c = Make(row.superClass, row.id);
    {
      const Animate on;
      WriteSome(*c, 100, rng);
    }
    GetLockedTrack(c.Get())->SetLocked(true);
    const auto before = Bytes(c.Get());
    for (int i = 0; i < 60; ++i) EditSome(*c, rng);
    GetKeyControl(c.Get())->SetNumKeys(0);
    const Ref<Control> curve(NewEaseCurve({0, 1}));
    EXPECT_FALSE(GetEaseList(c.Get())->Append(curve.Get()));
    EXPECT_EQ(Bytes(c.Get()), before);
    EXPECT_FALSE(c->IsReplaceable());
  }
}

// --- keys -----------------------------------------------------------------------------------------------------------

/// A float track with a key of value i at each of the times, linear.
Ref<Control> Track(std::initializer_list<TimeValue> times) {
  const Ref<Control> c = MakeFloat();
  float v = 0;
  for (const TimeValue t : times) {
    IBezFloatKey key;
    key.time = t;
    key.flags = TangentFlags(Tangent::Linear, Tangent::Linear);
    key.value = v++;
    GetKeyControl(c.Get())->AppendKey(&key);
  }
  return c;
}
using Keys = std::vector<std::pair<TimeValue, float>>;
Keys KeysOf(const Ref<Control>& c) {
  Keys keys;
  for (int i = 0; i < c->NumKeys(); ++i) keys.emplace_back(c->GetKeyTime(i), FloatAt(*c, c->GetKeyTime(i)));
  return keys;
}

TEST(KeyframeControl, KeyEdits) {
  const struct {
    const char* name;
    void (*edit)(Control&);
    Keys expected;
  } rows[] = {
      {"new key on the curve", [](Control& c) { c.AddNewKey(15); }, {{0, 0}, {10, 1}, {15, 1.5f}, {20, 2}, {30, 3}}},
      {"new key on a key", [](Control& c) { c.AddNewKey(10); }, {{0, 0}, {10, 1}, {20, 2}, {30, 3}}},
      {"delete one", [](Control& c) { c.DeleteKeyAtTime(20); }, {{0, 0}, {10, 1}, {30, 3}}},
      {"delete selected",
       [](Control& c) {
         c.SelectKeys({5, 20}, true);
         c.DeleteKeys(true);
       },
       {{0, 0}, {30, 3}}},
      {"shift all", [](Control& c) { c.MapKeys(Shift(7), 0); }, {{7, 0}, {17, 1}, {27, 2}, {37, 3}}},
      {"a moved key takes the place of one that stays",
       [](Control& c) {
         c.SelectKeys({10, 10}, true);
         c.MapKeys(Shift(10), KEYMAP_SELECTED | KEYMAP_FROM_LAST);
       },
       {{0, 0}, {20, 1}, {30, 3}}},
      {"of keys that move together the walk's last stays",
       [](Control& c) {
         c.SelectKeys({10, 20}, true);
         c.MapKeys(Gather(), KEYMAP_SELECTED);
       },
       {{0, 0}, {5, 2}, {30, 3}}},
      {"walked from the other end",
       [](Control& c) {
         c.SelectKeys({10, 20}, true);
         c.MapKeys(Gather(), KEYMAP_SELECTED | KEYMAP_FROM_LAST);
       },
       {{0, 0}, {5, 1}, {30, 3}}},
      {"delete time",
       [](Control& c) {
         c.DeleteTime({5, 15}, 0);
       },
       {{0, 0}, {10, 2}, {20, 3}}},
      {"without sliding",
       [](Control& c) {
         c.DeleteTime({5, 15}, TIME_NOSLIDE);
       },
       {{0, 0}, {20, 2}, {30, 3}}},
      {"reverse",
       [](Control& c) {
         c.ReverseTime({0, 20}, 0);
       },
       {{0, 2}, {10, 1}, {20, 0}, {30, 3}}},
      {"copy a key over another", [](Control& c) { c.CopyKeysFromTime(10, 30); }, {{0, 0}, {10, 1}, {20, 2}, {30, 1}}},
      {"copy a value", [](Control& c) { c.CopyKeysFromTime(25, 40); }, {{0, 0}, {10, 1}, {20, 2}, {30, 3}, {40, 2.5f}}},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.name);
    const Ref<Control> c = Track({0, 10, 20, 30});
    r.edit(*c);
    EXPECT_EQ(KeysOf(c), r.expected);
  }
}

TEST(KeyframeControl, LastKeyLeavesItsValue) {
  const Ref<Control> c = Track({10, 20});
  c->DeleteKeyAtTime(10);
  c->DeleteKeys(false);
  EXPECT_EQ(c->NumKeys(), 0);
  EXPECT_EQ(FloatAt(*c, 0), 1);
}

TEST(KeyframeControl, KeyQueries) {
  const Ref<Control> c = Track({10, 20, 40});
  EXPECT_EQ(c->GetKeyIndex(20), 1);
  EXPECT_EQ(c->GetKeyIndex(21), -1);
  EXPECT_EQ(c->GetKeyRange(), (Interval{10, 40}));
  TimeValue next = 0;
  EXPECT_TRUE(c->GetNextKeyTime(20, true, next));
  EXPECT_EQ(next, 40);
  EXPECT_TRUE(c->GetNextKeyTime(20, false, next));
  EXPECT_EQ(next, 10);
  EXPECT_FALSE(c->GetNextKeyTime(10, false, next));
  EXPECT_FALSE(c->GetNextKeyTime(40, true, next));
}

// Reversed twice is as before, and reversed once is the mirrored curve, of both families. Stepped segments are left
// out: they hold the value of their first key, which is another key when time runs backwards.
TEST(KeyframeControl, ReverseMirrorsTheCurve) {
  std::mt19937 rng(25);
  std::uniform_real_distribution<float> u(-1, 1);
  for (const Class_ID id : {kBezierFloatId, kTcbFloatId}) {
    const Ref<Control> c = Make(kFloatControlSuper, id);
    IKeyControl* keys = GetKeyControl(c.Get());
    for (int i = 0; i <= 5; ++i) {
      IBezFloatKey bezier;
      bezier.time = i * i * 20;
      constexpr Tangent kTypes[] = {Tangent::Smooth, Tangent::Linear, Tangent::Fast,
                                    Tangent::Slow,   Tangent::User,   Tangent::Auto};
      const Tangent in = kTypes[rng() % 6], out = kTypes[rng() % 6];
      bezier.flags = TangentFlags(in, out);
      bezier.value = u(rng), bezier.inTan = u(rng) * 0.1f, bezier.outTan = u(rng) * 0.1f;
      bezier.inLength = 0.5f + u(rng) / 3, bezier.outLength = 0.5f;
      ITCBFloatKey tcb;
      tcb.time = bezier.time, tcb.flags = 0, tcb.value = bezier.value;
      tcb.shape = {u(rng), u(rng), u(rng), std::abs(u(rng)) / 2, std::abs(u(rng)) / 2};
      id == kBezierFloatId ? keys->AppendKey(&bezier) : keys->AppendKey(&tcb);
    }
    std::vector<float> before;
    for (TimeValue t = 0; t <= 500; ++t) before.push_back(FloatAt(*c, t));
    const auto bytes = Bytes(c.Get());
    c->ReverseTime({0, 500}, 0);
    for (TimeValue t = 0; t <= 500; ++t) {
      const bool atKey = c->IsKeyAtTime(t);  // where a step may stand on either side
      if (!atKey && !c->IsKeyAtTime(t + 1)) {
        EXPECT_NEAR(FloatAt(*c, t), before[static_cast<size_t>(500 - t)], 2e-5f) << t;
      }
    }
    c->ReverseTime({0, 500}, 0);
    EXPECT_EQ(Bytes(c.Get()), bytes);
  }
}

TEST(KeyControl, RecordsKeepTheirBitsAndPlaces) {
  const Ref<Control> c = MakeFloat();
  IKeyControl* keys = GetKeyControl(c.Get());
  IBezFloatKey key;
  key.time = 50, key.value = 1, key.inTan = 0.25f, key.outTan = -0.5f, key.inLength = 0.9f, key.outLength = 0.1f;
  key.flags = TangentFlags(Tangent::User, Tangent::User) | kKeySelectedY | kKeyBrokenX | 0x80000000u;
  EXPECT_EQ(keys->AppendKey(&key), 0);
  IBezFloatKey early = key;
  early.time = 10;
  EXPECT_EQ(keys->AppendKey(&early), 1);
  IBezFloatKey got;
  keys->GetKey(1, &got);
  EXPECT_EQ(got, early);  // unsorted still
  EXPECT_EQ(keys->NumKeys(), 2);
  keys->SortKeys();
  keys->GetKey(1, &got);
  EXPECT_EQ(got, key);
  keys->GetKey(7, &got);
  EXPECT_EQ(got, key);
  // A write is seen at once.
  EXPECT_EQ(FloatAt(*c, 50), 1);
  got.value = 8;
  keys->SetKey(1, &got);
  EXPECT_EQ(FloatAt(*c, 50), 8);
}

TEST(KeyControl, CopyTakesOverValuesAndKeys) {
  const Ref<Control> bezier = Track({0, 10, 30}), tcb = Make(kFloatControlSuper, kTcbFloatId), same = MakeFloat();
  bezier->SetORT(ORT::PingPong, true);
  GetLockedTrack(bezier.Get())->SetLocked(true);
  same->Copy(bezier.Get());
  EXPECT_EQ(Bytes(same.Get()), Bytes(bezier.Get()));
  tcb->Copy(bezier.Get());
  EXPECT_EQ(KeysOf(tcb), KeysOf(bezier));
  EXPECT_EQ(tcb->GetORT(true), ORT::PingPong);
  EXPECT_TRUE(GetLockedTrack(tcb.Get())->GetLocked());
}

TEST(KeyControl, DamagedFilesAreRefused) {
  const auto loads = [](auto write) {
    ISave save;
    write(save);
    const Ref<Control> c = MakeFloat();
    ILoad load(save.Bytes());
    return c->Load(load);
  };
  EXPECT_EQ(loads([](ISave& s) {
              s.BeginChunk(kKeysChunk);
              s.Write(uint32_t{1000000});
              s.EndChunk();
            }),
            IOResult::Error);
  EXPECT_EQ(loads([](ISave& s) {
              s.BeginChunk(kOrtChunk);
              s.Write(int32_t{6});
              s.Write(int32_t{1});
              s.EndChunk();
            }),
            IOResult::Error);
}

// --- ease and multiplier curves --------------------------------------------------------------------------------------

TEST(TrackCurves, EaseMapsTimeAndMultiplierScales) {
  const Ref<Control> c = Track({0, 100});
  ICurveList *ease = GetEaseList(c.Get()), *mult = GetMultiplierList(c.Get());
  ASSERT_TRUE(ease->Append(NewEaseCurve({0, 100})));
  EXPECT_FLOAT_EQ(FloatAt(*c, 30), 0.3f);
  SetFloat(*ease->Get(0), 0, 20);  // shifts time by 20
  EXPECT_FLOAT_EQ(FloatAt(*c, 30), 0.5f);
  ASSERT_TRUE(mult->Append(NewMultiplierCurve()));
  SetFloat(*mult->Get(0), 0, 4);
  EXPECT_FLOAT_EQ(FloatAt(*c, 30), 2);
  mult->SetEnabled(0, false);
  EXPECT_FLOAT_EQ(FloatAt(*c, 30), 0.5f);
  EXPECT_EQ(c->NumSubs(), 2);
  EXPECT_FALSE(ease->Append(c.Get())) << "a track may not ease itself";
  EXPECT_FALSE(ease->Append(Make(kPositionControlSuper, kBezierPositionId).Get()));
  ease->Delete(0);
  EXPECT_FLOAT_EQ(FloatAt(*c, 30), 0.3f);
}

TEST(TrackCurves, Undo) {
  const Ref<Control> c = Track({0, 100});
  const auto edit = [&](auto f) {
    theHold.Begin();
    f();
    theHold.Accept(L"Curves");
  };
  std::vector<std::vector<uint8_t>> states{Bytes(c.Get())};
  ICurveList *ease = GetEaseList(c.Get()), *mult = GetMultiplierList(c.Get());
  edit([&] { mult->Append(NewMultiplierCurve()); });
  states.push_back(Bytes(c.Get()));
  edit([&] { ease->Append(NewEaseCurve({0, 100})); });
  states.push_back(Bytes(c.Get()));
  edit([&] { mult->SetEnabled(0, false); });
  states.push_back(Bytes(c.Get()));
  edit([&] { mult->Delete(0); });
  states.push_back(Bytes(c.Get()));
  for (size_t i = 4; i-- > 0;) {
    ASSERT_TRUE(theHold.Undo());
    EXPECT_EQ(Bytes(c.Get()), states[i]) << i;
  }
  for (size_t i = 1; i <= 4; ++i) {
    ASSERT_TRUE(theHold.Redo());
    EXPECT_EQ(Bytes(c.Get()), states[i]) << i;
  }
  theHold.Flush();
}

}  // namespace
}  // namespace corvanta
