// SPDX-License-Identifier: MIT
#include "plugin/controllers/gimbal_proxy.h"

#include <stdexcept>

#include "host/anim/list_control.h"
#include "plugin/controllers/euler_write.h"
#include "plugin/controllers/rig_control_fixture_test.h"
#include "plugin/controllers/rotation_xyz.h"
#include "plugin/controllers/static_controls.h"

namespace tavrilon {
namespace {

using namespace corvanta;

class GimbalProxyTest : public RigControlTest {
 protected:
  void SetUp() override {
    RigControlTest::SetUp();
    made = AddControl(L"a");
    made.control->SetOffsetRot(EulerToQuat({0, 0, 1}));
    Quat q = EulerToQuat({0.1f, 0.2f, 0.3f});
    made.control->GetRotationController()->SetValue(0, q, true, CTRL_ABSOLUTE);
    GetCOREInterface()->SetRefCoordSys(RefCoordSys::Gimbal);
  }
  Control* Real() { return made.control->SubAnim(2) ? static_cast<Control*>(made.control->SubAnim(2)) : nullptr; }
  Made made;
};

// The proxy reads as the rotation of the control in its parent, and its tracks are the control's own.
TEST_F(GimbalProxyTest, ShowsTheOffsetInFrontOfTheTracks) {
  Control* proxy = made.control->GetRotationController();
  ASSERT_NE(proxy, Real());
  IListControl* list = GetListControl(proxy);
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->GetListCount(), 2);
  EXPECT_EQ(list->GetName(0), L"Parent Rot");
  EXPECT_EQ(list->GetName(1), L"Euler Rot");
  EXPECT_EQ(list->GetActive(), 1);
  Matrix3 m;
  Interval valid = FOREVER;
  proxy->GetValue(0, m, valid, CTRL_RELATIVE);
  EXPECT_TRUE(IsNear(m, made.node->GetNodeTM(0), 1e-5f));

  auto* euler = static_cast<IEulerControl*>(list->GetEntry(1)->GetInterface(I_EULERCTRL));
  float turned = 0.5f;
  euler->GetAxisController(0)->SetValue(0, turned, true, CTRL_ABSOLUTE);
  EXPECT_NEAR(Sub<float>(Real()->GetXController()), 0.5f, 1e-6f);
  // Asked for again it shows the new rotation, though nothing told it.
  m = Matrix3();
  made.control->GetRotationController()->GetValue(0, m, valid, CTRL_RELATIVE);
  EXPECT_TRUE(IsNear(m, made.node->GetNodeTM(0), 1e-5f));
}

TEST_F(GimbalProxyTest, RealControllerOtherwise) {
  const auto isReal = [&] { return made.control->GetRotationController() == Real(); };
  EXPECT_FALSE(isReal());
  EXPECT_EQ(GetRealRotationController(made.control), Real());
  EXPECT_FALSE(isReal());
  try {
    const GimbalProxyOff off;
    EXPECT_TRUE(isReal());
    throw std::runtime_error("while off");
  } catch (const std::runtime_error&) {
  }
  EXPECT_FALSE(isReal());
  made.Set(RigControl::kFigureMode, true);
  EXPECT_TRUE(isReal());
  made.Set(RigControl::kFigureMode, false);
  GetCOREInterface()->SetRefCoordSys(RefCoordSys::Local);
  EXPECT_TRUE(isReal());
  GetCOREInterface()->SetRefCoordSys(RefCoordSys::Gimbal);
  made.control->SetRotationController(new StaticRotation);
  EXPECT_TRUE(isReal());  // no Euler angles to show
}

TEST_F(GimbalProxyTest, GoesDownAListToItsActiveEntry) {
  const Ref<Control> made_(CreateInstance(kRotationControlSuper, kRotationListId)->AsControl());
  IListControl* list = GetListControl(made_.Get());
  auto* first = new StaticRotation;
  auto* second = new RotationXYZ;
  list->ReplaceEntry(0, first);
  list->Append(second);
  list->SetActive(1);
  first->Set(EulerToQuat({0.4f, 0, 0}));
  second->SetOrder(kZYX);
  Quat q = EulerToQuat({0.3f, 0.2f, 0.1f}, kZYX);
  second->SetValue(0, q, true, CTRL_ABSOLUTE);
  made.control->SetRotationController(made_.Get());

  const int steps = theHold.NumUndo();
  theHold.Begin();
  Control* proxy = made.control->GetRotationController();
  theHold.Accept(L"Nothing");
  ASSERT_NE(proxy, made_.Get());
  auto* euler = static_cast<IEulerControl*>(GetListControl(proxy)->GetEntry(1)->GetInterface(I_EULERCTRL));
  EXPECT_EQ(euler->GetOrder(), kZYX);
  EXPECT_NEAR(Sub<float>(euler->GetAxisController(2)), 0.3f, 1e-5f);
  Matrix3 m;
  Interval valid = FOREVER;
  proxy->GetValue(0, m, valid, CTRL_RELATIVE);
  EXPECT_TRUE(IsNear(m, made.node->GetNodeTM(0), 1e-5f));
  // Showing is no change: undoing the step changes nothing.
  EXPECT_EQ(theHold.NumUndo(), steps + 1);
  theHold.Undo();
  EXPECT_EQ(euler->GetOrder(), kZYX);
}

// The mark goes through a turned offset untouched, to the one track that it names.
TEST_F(GimbalProxyTest, MarkedTurnReachesItsTrack) {
  const float before = Sub<float>(Real()->GetYController());
  made.Rotate({GimbalMark(1), 0.25f});
  EXPECT_NEAR(Sub<float>(Real()->GetYController()), before - 0.25f, 1e-6f);
  EXPECT_NEAR(Sub<float>(Real()->GetXController()), 0.1f, 1e-6f);
  EXPECT_NEAR(Sub<float>(Real()->GetZController()), 0.3f, 1e-6f);
}

}  // namespace
}  // namespace tavrilon
