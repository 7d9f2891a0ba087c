// SPDX-License-Identifier: MIT
// Euler, list and position/rotation/scale controllers.
#include <random>

#include "host/anim/control_test.h"

namespace corvanta {
namespace {

constexpr float kRounding = 1e-5f;  // some twenty float operations on numbers up to 5

Ref<Control> MakeEuler() { return Make(kRotationControlSuper, kEulerXyzId); }
Ref<Control> MakePrs() { return Make(kMatrixControlSuper, kPrsId); }
IEulerControl* EulerOf(const Ref<Control>& c) { return static_cast<IEulerControl*>(c->GetInterface(I_EULERCTRL)); }
Point3 Tracks(Control& c, TimeValue t) {
  return Point3{FloatAt(*c.GetXController(), t), FloatAt(*c.GetYController(), t), FloatAt(*c.GetZController(), t)} *
         kRadToDeg;
}
void SetTracks(Control& c, TimeValue t, const Point3& degrees) {
  SetFloat(*c.GetXController(), t, degrees.x * kDegToRad);
  SetFloat(*c.GetYController(), t, degrees.y * kDegToRad);
  SetFloat(*c.GetZController(), t, degrees.z * kDegToRad);
}
struct Rng {
  std::mt19937 engine{31};
  float In(float lo, float hi) { return std::uniform_real_distribution<float>(lo, hi)(engine); }
  Point3 Point(float size) { return {In(-size, size), In(-size, size), In(-size, size)}; }
  Quat Rotation() { return EulerToQuat(Point(3)); }
  Matrix3 Rigid() { return MakeMatrix(Rotation()) * TransMatrix(Point(5)); }
};

// --- Euler ----------------------------------------------------------------------------------------------------------

TEST(EulerControl, RelativeTurns) {
  const struct {
    const char* name;
    Point3 axis, expected;
  } rows[] = {
      {"Z ring", {0, 0, 1}, {30, 40, 30}},
      {"Z ring from behind", {0, 0, -2}, {30, 40, 70}},
      {"Y ring", {-0.766044f, 0.642788f, 0}, {30, 20, 50}},
      {"X ring", {0.492404f, 0.586824f, -0.642788f}, {10, 40, 50}},
      {"no ring", {1, 1, 1}, {9.17235f, 37.8716f, 25.1953f}},
  };
  for (const auto& r : rows) {
    const Ref<Control> c = MakeEuler();
    SetTracks(*c, 0, {30, 40, 50});
    AngAxis aa{r.axis, 20 * kDegToRad};
    c->SetValue(0, aa, true, CTRL_RELATIVE);
    EXPECT_LT(Distance(Tracks(*c, 0), r.expected), 3e-4f) << r.name;  // given with six digits
  }
}

TEST(EulerControl, TurnsComposeInEveryOrder) {
  Rng rng;
  for (int order = 0; order < 9; ++order)
    for (int i = 0; i < 50; ++i) {
      const Ref<Control> c = MakeEuler();
      EulerOf(c)->SetOrder(order);
      Quat q = rng.Rotation();
      c->SetValue(0, q, true, CTRL_ABSOLUTE);
      ASSERT_LT(Distance(QuatAt(*c, 0), q), kRounding) << order;
      AngAxis aa{rng.Point(1), rng.In(-6, 6)};
      c->SetValue(0, aa, true, CTRL_RELATIVE);
      ASSERT_LT(Distance(QuatAt(*c, 0), q * QuatFromAngAxis(aa)), 3e-5f) << order;
    }
}

TEST(EulerControl, AnglesRunOnBeyondAFullTurn) {
  const Ref<Control> c = MakeEuler();
  SetTracks(*c, 0, {10, 400, 10});
  AngAxis aa{{0.1f, 0.9f, 0.2f}, 0.3f};
  c->SetValue(0, aa, true, CTRL_RELATIVE);
  EXPECT_GT(Tracks(*c, 0).y, 360);
  // With animate on a new key follows the key before it.
  const Animate on;
  const Ref<Control> keyed = MakeEuler();
  SetTracks(*keyed, 0, {0, 0, 720});
  Quat q = EulerToQuat(Deg(0, 0, 30));
  keyed->SetValue(100, q, true, CTRL_ABSOLUTE);
  EXPECT_NEAR(Tracks(*keyed, 100).z, 750, 1e-2f);
}

TEST(EulerControl, LargeTurnGoesInSteps) {
  const Ref<Control> c = MakeEuler();
  AngAxis aa{{0.02f, 1, 0.02f}, -350 * kDegToRad};
  c->SetValue(0, aa, true, CTRL_RELATIVE);
  EXPECT_NEAR(Tracks(*c, 0).y, 350, 8);
}

TEST(EulerControl, OrderTracksAndKeys) {
  const Ref<Control> c = MakeEuler();
  EXPECT_EQ(GetKeyControl(c.Get()), nullptr);
  EXPECT_EQ(c->SubAnimName(1), L"Y Rotation");
  SetTracks(*c, 0, {10, 20, 30});
  theHold.Begin();
  EulerOf(c)->SetOrder(kZYX);
  theHold.Accept(L"Order");
  EXPECT_LT(Distance(QuatAt(*c, 0), EulerToQuat(Deg(30, 20, 10), kZYX)), kRounding);  // tracks stay with their axes
  theHold.Undo();
  EXPECT_LT(Distance(QuatAt(*c, 0), EulerToQuat(Deg(10, 20, 30), kXYZ)), kRounding);
  theHold.Flush();
  {
    const Animate on;
    SetFloat(*c->GetXController(), 40, 1);
    SetFloat(*c->GetZController(), 20, 1);
  }
  EXPECT_EQ(c->NumKeys(), 3);
  EXPECT_EQ(c->GetKeyTime(1), 20);
  EXPECT_EQ(c->GetKeyIndex(40), 2);
  EXPECT_EQ(c->GetKeyRange(), (Interval{0, 40}));
  c->DeleteKeyAtTime(0);
  EXPECT_EQ(c->NumKeys(), 2);
}

// Between tracks that are written one by one nobody sees or hears of half a rotation.
TEST(EulerControl, OneMessageAWrite) {
  class Listener : public ReferenceTarget {
   public:
    explicit Listener(Control* c) { BindReference(0, c); }
    SClass_ID SuperClassID() const override { return kReferenceTargetSuper; }
    Class_ID ClassID() const override { return {1, 1}; }
    int NumRefs() const override { return 1; }
    ReferenceTarget* GetReference(int) const override { return control; }
    RefResult NotifyRefChanged(const Interval&, ReferenceTarget*, PartID&, RefMessage, bool) override {
      ++heard;
      return REF_SUCCEED;
    }
    Control* control = nullptr;
    int heard = 0;

   protected:
    void SetReference(int, ReferenceTarget* target) override { control = target ? target->AsControl() : nullptr; }
  };
  const Ref<Control> c = MakeEuler();
  const Ref<Listener> listener(new Listener(c.Get()));
  Quat q = EulerToQuat(Deg(10, 20, 30));
  c->SetValue(0, q, true, CTRL_ABSOLUTE);
  EXPECT_EQ(listener->heard, 1);
  SetFloat(*c->GetXController(), 0, 1);
  EXPECT_EQ(listener->heard, 2);
}

// --- position of three tracks
// -----------------------------------------------------------------------------------------

TEST(PositionXyzControl, TracksMakeThePosition) {
  const Ref<Control> c = Make(kPositionControlSuper, kPositionXyzId);
  Point3 p{1, 2, 3};
  c->SetValue(0, p, true, CTRL_ABSOLUTE);
  SetFloat(*c->GetYController(), 0, 7);
  EXPECT_EQ(PointAt(*c, 0), (Point3{1, 7, 3}));
  Point3 step{0, 1, -3};
  c->SetValue(0, step, true, CTRL_RELATIVE);
  EXPECT_EQ(PointAt(*c, 0), (Point3{1, 8, 0}));
  // A matrix moves along its own axes.
  const Matrix3 turned = RotateZMatrix(kHalfPi) * TransMatrix({10, 0, 0});
  EXPECT_LT(Distance(MatrixAt(*c, 0, turned).GetTrans(), Point3{1, 8, 0} * turned), kRounding);
  EXPECT_TRUE(c->AssignController(nullptr, 1));
  EXPECT_EQ(PointAt(*c, 0), (Point3{1, 0, 0})) << "a missing track counts as 0";
  EXPECT_FALSE(c->AssignController(Make(kPositionControlSuper, kPositionXyzId).Get(), 1));
}

TEST(PositionXyzControl, TakesOverAndComesBack) {
  const Ref<Control> from = Make(kPositionControlSuper, kBezierPositionId);
  {
    const Animate on;
    Point3 a{1, 2, 3}, b{4, 5, 6};
    from->SetValue(0, a, true, CTRL_ABSOLUTE);
    from->SetValue(100, b, true, CTRL_ABSOLUTE);
  }
  const Ref<Control> c = Make(kPositionControlSuper, kPositionXyzId);
  c->Copy(from.Get());
  EXPECT_EQ(c->NumKeys(), 2);
  EXPECT_EQ(PointAt(*c, 100), (Point3{4, 5, 6}));
  const auto before = Bytes(c.Get());
  theHold.Begin();
  Point3 far{9, 9, 9};
  c->SetValue(0, far, true, CTRL_ABSOLUTE);
  theHold.Accept(L"move");
  theHold.Undo();
  EXPECT_EQ(Bytes(c.Get()), before);
  RemapDir remap;
  const Ref<Control> copy = static_cast<Control*>(remap.CloneRef(c.Get()));
  EXPECT_EQ(Bytes(copy.Get()), before);
}

// --- position, rotation, scale ---------------------------------------------------------------------------------------

void Send(Control& c, SetXFormPacket packet, TimeValue t = 0) { c.SetValue(t, packet, true, CTRL_ABSOLUTE); }

TEST(PrsControl, SetThenGetIsTheSameMatrix) {
  Rng rng;
  for (int i = 0; i < 300; ++i) {
    const Ref<Control> c = MakePrs();
    const Matrix3 parent = i % 3 ? rng.Rigid() : ScaleMatrix({2, 2, 2}) * rng.Rigid();
    Matrix3 wanted = rng.Rigid();
    if (i % 4 == 1) wanted = ScaleMatrix(rng.Point(2)) * wanted;        // mirrored, too
    if (i % 4 == 2) wanted = wanted * ScaleMatrix({1, 2, 3}) * wanted;  // sheared
    Send(*c, SetXFormPacket::Set(wanted, parent));
    ASSERT_LT(Distance(MatrixAt(*c, 0, parent), wanted), 1e-4f) << i;  // entries up to 40
  }
}

// A packet does in the world what its matrix says, whatever the parent and the axes.
TEST(PrsControl, PacketsActInTheirAxes) {
  Rng rng;
  for (int i = 0; i < 200; ++i) {
    const Matrix3 parent = rng.Rigid(), axis = rng.Rigid(), start = rng.Rigid();
    const Point3 p = rng.Point(3);
    const AngAxis aa{rng.Point(1), rng.In(-3, 3)};
    const auto after = [&](const SetXFormPacket& packet) {
      const Ref<Control> c = MakePrs();
      Send(*c, SetXFormPacket::Set(start, parent));
      Send(*c, packet);
      return MatrixAt(*c, 0, parent);
    };
    const auto inAxis = [&](const Matrix3& m) { return Inverse(axis) * m * axis; };
    ASSERT_LT(Distance(after(SetXFormPacket::Move(p, parent, axis)), start * inAxis(TransMatrix(p))), 1e-4f);
    const Matrix3 turned = start * inAxis(MakeMatrix(QuatFromAngAxis(aa)));
    ASSERT_LT(Distance(after(SetXFormPacket::Rotate(aa, false, parent, axis)), turned), 1e-4f);
    const Matrix3 scaled = start * inAxis(ScaleMatrix({2, 2, 2}));
    ASSERT_LT(Distance(after(SetXFormPacket::Scale({2, 2, 2}, false, parent, axis)), scaled), 1e-4f);
    // With the local origin the place stays.
    Matrix3 local = turned;
    local.SetTrans(start.GetTrans());
    ASSERT_LT(Distance(after(SetXFormPacket::Rotate(aa, true, parent, axis)), local), 1e-4f);
    // A scale along the node's own axes is its scale.
    const Matrix3 own = after(SetXFormPacket::Scale({1, 2, 3}, true, parent, start));
    ASSERT_LT(Distance(own, ScaleMatrix({1, 2, 3}) * start), 1e-4f);
  }
}

TEST(PrsControl, KnownRotatePacket) {
  const Ref<Control> c = MakePrs();
  Send(*c, SetXFormPacket::Set(TransMatrix({5, 0, 0})));
  Send(*c, SetXFormPacket::Rotate(AngAxis{{0, 0, 1}, kHalfPi}));
  EXPECT_LT(Distance(MatrixAt(*c, 0).GetTrans(), {0, -5, 0}), kRounding);
}

TEST(PrsControl, PartsValidityAndAssigning) {
  const Ref<Control> c = MakePrs();
  EXPECT_EQ(c->SubAnimName(2), L"Scale");
  EXPECT_EQ(ValidAt(*c, 10), FOREVER);
  {
    const Animate on;
    Point3 p{1, 2, 3};
    c->GetPositionController()->SetValue(50, p, true, CTRL_ABSOLUTE);
  }
  EXPECT_EQ(ValidAt(*c, 10), Interval::Instant(10));
  EXPECT_EQ(ValidAt(*c, 60), (Interval{50, kTimeMax}));
  EXPECT_EQ(c->NumKeys(), 2);
  EXPECT_FALSE(c->SetPositionController(c->GetScaleController()));
  const Ref<Control> tcb = Make(kPositionControlSuper, kTcbPositionId);
  EXPECT_TRUE(AssignWithCopy(c.Get(), 0, tcb.Get()));
  EXPECT_EQ(c->GetPositionController(), tcb.Get());
  EXPECT_LT(Distance(PointAt(*tcb, 50), {1, 2, 3}), kRounding);
  GetLockedTrack(tcb.Get())->SetLocked(true);
  EXPECT_FALSE(c->SetPositionController(Make(kPositionControlSuper, kBezierPositionId).Get()));
}

TEST(PrsControl, CopyTakesOverAMovingMatrix) {
  const Ref<Control> from = MakePrs(), to = MakePrs();
  Rng rng;
  {
    const Animate on;
    for (int i = 0; i < 4; ++i) Send(*from, SetXFormPacket::Set(rng.Rigid()), i * 100);
  }
  to->Copy(from.Get());
  EXPECT_EQ(to->NumKeys(), 4);
  for (int i = 0; i < 4; ++i) EXPECT_LT(Distance(MatrixAt(*to, i * 100), MatrixAt(*from, i * 100)), 1e-4f);
}

// --- lists ----------------------------------------------------------------------------------------------------------

struct ListRow {
  const char* name;
  SClass_ID superClass;
  Class_ID id;
};
const ListRow kLists[] = {
    {"position", kPositionControlSuper, kPositionListId}, {"rotation", kRotationControlSuper, kRotationListId},
    {"scale", kScaleControlSuper, kScaleListId},          {"float", kFloatControlSuper, kFloatListId},
    {"transform", kMatrixControlSuper, kTransformListId},
};

void WriteMatrix(Control& c, const Matrix3& m) {
  switch (c.SuperClassID()) {
    case kFloatControlSuper:
      SetFloat(c, 0, m.GetTrans().x);
      break;
    case kMatrixControlSuper:
      Send(c, SetXFormPacket::Set(m));
      break;
    case kPositionControlSuper: {
      Point3 p = m.GetTrans();
      c.SetValue(0, p, true, CTRL_ABSOLUTE);
      break;
    }
    case kRotationControlSuper: {
      Quat q = QuatFromMatrix(m);
      c.SetValue(0, q, true, CTRL_ABSOLUTE);
      break;
    }
    default: {
      ScaleValue s{{2, 3, 4}, {}};
      c.SetValue(0, s, true, CTRL_ABSOLUTE);
      break;
    }
  }
}

// Entries are applied in their order, and a write makes the whole list take the value, whichever entry is active.
TEST(ListControl, WholeListTakesTheValue) {
  Rng rng;
  for (const ListRow& row : kLists)
    for (int active = 0; active < 3; ++active) {
      SCOPED_TRACE(row.name);
      const Ref<Control> c = Make(row.superClass, row.id);
      IListControl* list = GetListControl(c.Get());
      ASSERT_NE(list, nullptr);
      for (int i = 0; i < 2; ++i) {
        ReferenceTarget* entry = CloneRefHierarchy(list->GetEntry(0));
        ASSERT_TRUE(list->Append(entry->AsControl()));
      }
      Matrix3 product;
      float sum = 0;
      for (int i = 0; i < 3; ++i) {
        WriteMatrix(*list->GetEntry(i), rng.Rigid());
        if (row.superClass == kFloatControlSuper)
          sum += FloatAt(*list->GetEntry(i), 0);
        else
          product = MatrixAt(*list->GetEntry(i), 0) * product;
      }
      if (row.superClass == kFloatControlSuper) {
        EXPECT_FLOAT_EQ(FloatAt(*c, 0), sum);
      } else {
        EXPECT_LT(Distance(MatrixAt(*c, 0), product), 1e-5f * (1 + 64));  // three factors of up to 4
      }
      list->SetActive(active);
      const Ref<Control> plain(CloneRefHierarchy(list->GetEntry(0))->AsControl());
      const Matrix3 wanted = rng.Rigid();
      WriteMatrix(*c, wanted);
      WriteMatrix(*plain, wanted);
      if (row.superClass == kFloatControlSuper) {
        EXPECT_NEAR(FloatAt(*c, 0), FloatAt(*plain, 0), kRounding);
      } else {
        EXPECT_LT(Distance(MatrixAt(*c, 0), MatrixAt(*plain, 0)), 1e-4f);
      }
    }
}

TEST(ListControl, RelativeTurnOfAnyEntry) {
  Rng rng;
  for (int active = 0; active < 3; ++active) {
    const Ref<Control> c = Make(kRotationControlSuper, kRotationListId);
    IListControl* list = GetListControl(c.Get());
    for (int i = 0; i < 2; ++i) list->Append(NewDefaultRotationController());
    for (int i = 0; i < 3; ++i) {
      Quat q = rng.Rotation();
      list->GetEntry(i)->SetValue(0, q, true, CTRL_ABSOLUTE);
    }
    list->SetActive(active);
    const Quat before = QuatAt(*c, 0);
    AngAxis aa{rng.Point(1), 0.7f};
    const Quat expected = before * QuatFromAngAxis(aa);
    c->SetValue(0, aa, true, CTRL_RELATIVE);
    EXPECT_LT(Distance(QuatAt(*c, 0), expected), 2e-5f);
  }
}

TEST(ListControl, EntriesNamesAndUndo) {
  const Ref<Control> c = Make(kFloatControlSuper, kFloatListId);
  IListControl* list = GetListControl(c.Get());
  EXPECT_EQ(list->GetListCount(), 1);
  EXPECT_EQ(list->GetName(0), L"Bezier Float");
  EXPECT_FALSE(list->Append(Make(kPositionControlSuper, kBezierPositionId).Get()));
  EXPECT_FALSE(list->Append(c.Get()));
  EXPECT_FALSE(list->Delete(4));
  EXPECT_EQ(list->GetEntry(4), nullptr);
  std::vector<std::vector<uint8_t>> states{Bytes(c.Get())};
  void (*const edits[])(IListControl&) = {
      [](IListControl& l) { l.Append(NewDefaultFloatController()); },
      [](IListControl& l) { l.SetName(1, L"Wobble"); },
      [](IListControl& l) { l.SetActive(1); },
      [](IListControl& l) { l.ReplaceEntry(0, Make(kFloatControlSuper, kTcbFloatId).Get()); },
      [](IListControl& l) { l.Delete(0); },
      [](IListControl& l) { l.Delete(0); },
  };
  for (const auto& edit : edits) {
    theHold.Begin();
    edit(*list);
    theHold.Accept(L"List");
    states.push_back(Bytes(c.Get()));
    EXPECT_NE(states.back(), states[states.size() - 2]);
  }
  EXPECT_EQ(list->GetListCount(), 0);
  EXPECT_EQ(FloatAt(*c, 0), 0);
  SetFloat(*c, 0, 5);  // nothing to write to
  for (size_t i = states.size() - 1; i-- > 0;) {
    ASSERT_TRUE(theHold.Undo());
    EXPECT_EQ(Bytes(c.Get()), states[i]) << i;
  }
  for (size_t i = 1; i < states.size(); ++i) {
    ASSERT_TRUE(theHold.Redo());
    EXPECT_EQ(Bytes(c.Get()), states[i]) << i;
  }
  theHold.Flush();
}

TEST(ListControl, TheActiveEntryStaysActive) {
  const Ref<Control> c = Make(kFloatControlSuper, kFloatListId);
  IListControl* list = GetListControl(c.Get());
  for (int i = 0; i < 3; ++i) list->Append(NewDefaultFloatController());
  list->SetActive(1);
  const Control* active = list->GetEntry(1);
  list->Delete(3);
  list->Delete(0);
  EXPECT_EQ(list->GetEntry(list->GetActive()), active);
  list->Delete(0);
  EXPECT_EQ(list->GetActive(), 0);  // it has gone: the next takes over
}

TEST(ListControl, PublishedInterface) {
  const Ref<Control> c = Make(kFloatControlSuper, kFloatListId);
  FPInterface* list = c->GetInterface(kListControlInterface);
  ASSERT_NE(list, nullptr);
  const auto call = [&](const wchar_t* name, std::vector<FPValue> args) {
    FPValue result;
    const FPFunctionDesc* f = list->GetDesc().FindFunction(name);
    EXPECT_EQ(list->Invoke(f ? f->id : -1, 0, result, args), FPStatus::OK) << name;
    return result;
  };
  EXPECT_TRUE(call(L"append", {TargetValue(NewDefaultFloatController())}).ToBool());
  call(L"setName", {1, WStr(L"Second")});
  call(L"setActive", {1});
  EXPECT_EQ(call(L"getCount", {}).ToInt(), 2);
  EXPECT_EQ(call(L"getActive", {}).ToInt(), 1);
  EXPECT_EQ(call(L"getName", {1}).ToWStr(), L"Second");
  EXPECT_EQ(call(L"getSubCtrl", {1}).ToTarget(), GetListControl(c.Get())->GetEntry(1));
}

// An assigned list keeps what was there as its first entry.
TEST(ListControl, CopyKeepsTheOldController) {
  const Ref<Control> prs = MakePrs(), list = Make(kPositionControlSuper, kPositionListId);
  Send(*prs, SetXFormPacket::Set(TransMatrix({1, 2, 3})));
  EXPECT_TRUE(AssignWithCopy(prs.Get(), 0, list.Get()));
  EXPECT_EQ(GetListControl(list.Get())->GetListCount(), 2);
  EXPECT_LT(Distance(MatrixAt(*prs, 0).GetTrans(), {1, 2, 3}), kRounding);
}

TEST(CompositeControl, CloneFileAndLock) {
  const std::pair<SClass_ID, Class_ID> classes[] = {
      {kRotationControlSuper, kEulerXyzId}, {kMatrixControlSuper, kPrsId}, {kRotationControlSuper, kRotationListId}};
  for (const auto& [superClass, id] : classes) {
    const Ref<Control> c = Make(superClass, id);
    {
      const Animate on;
      WriteMatrix(*c, EulerToMatrix(Deg(10, 20, 30)) * TransMatrix({1, 2, 3}));
    }
    if (IEulerControl* euler = EulerOf(c)) euler->SetOrder(kYZX);
    GetLockedTrack(c.Get())->SetLocked(true);
    const Ref<ReferenceTarget> clone(CloneRefHierarchy(c.Get())), file = Reloaded(c.Get());
    EXPECT_EQ(Bytes(clone.Get()), Bytes(c.Get()));
    EXPECT_EQ(Bytes(file.Get()), Bytes(c.Get()));
    EXPECT_EQ(MatrixAt(*clone->AsControl(), 0), MatrixAt(*c, 0));
    EXPECT_EQ(MatrixAt(*file->AsControl(), 0), MatrixAt(*c, 0));
    const auto before = Bytes(c.Get());
    WriteMatrix(*c, TransMatrix({9, 9, 9}) * RotateXMatrix(1));
    c->DeleteKeys(false);
    EXPECT_EQ(Bytes(c.Get()), before);
  }
}

TEST(DefaultControllers, AreThere) {
  RegisterHostClasses();
  const Ref<Control> made[] = {NewDefaultFloatController(),    NewDefaultPoint3Controller(),
                               NewDefaultPositionController(), NewDefaultRotationController(),
                               NewDefaultScaleController(),    NewDefaultMatrix3Controller()};
  for (const Ref<Control>& c : made) ASSERT_TRUE(c);
  EXPECT_EQ(MatrixAt(*made[5], 0), Matrix3{});
  EXPECT_EQ(QuatAt(*made[3], 0), Quat{});
}

}  // namespace
}  // namespace corvanta
