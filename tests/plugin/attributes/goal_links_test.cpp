// SPDX-License-Identifier: MIT
// Links of controls that belong to a chain.
#include "host/scene/core_interface.h"
#include "plugin/attributes/link_attrib.h"
#include "plugin/solvers/ikfk_rig_test.h"

namespace tavrilon {
namespace {

using namespace corvanta;

class GoalLinksTest : public IKFKTest {
 protected:
  static TimeValue Frame(int frame) { return frame * GetCOREInterface()->GetTicksPerFrame(); }
  static LinkAttrib* AddLinks(INode* control, INode* first, INode* second) {
    AddAttrib(control, TavrilonClass::LinkAttrib);
    LinkAttrib* links = FindLinkAttrib(control);
    links->SetSpace(0, first, L"First");
    links->SetSpace(1, second, L"Second");
    return links;
  }
  static float Distance(const Matrix3& a, const Matrix3& b) {
    float most = 0;
    for (int r = 0; r < 4; ++r) most = std::max(most, Length(a.row[r] - b.row[r]));
    return most;
  }
};

// Products of a few single-precision matrices with places up to 100.
constexpr float kTolerance = 2e-3f;

TEST_F(GoalLinksTest, GoalUsesItsLinkTrack) {
  LimbRig rig = Build();
  INode* prop = AddControl(L"prop", nullptr, At(Place(40), Turn()));
  {
    const AnimateScope animate;
    for (int frame = 0; frame <= 60; frame += 20) prop->SetNodeTM(Frame(frame), At(Place(40), Turn()));
  }
  LinkAttrib* links = AddLinks(rig.goal, rig.main, prop);
  const Matrix3 rest = rig.goal->GetNodeTM(0);
  GetCOREInterface()->SetTime(0);
  ASSERT_TRUE(links->AddLink(0));
  EXPECT_LT(Distance(rig.goal->GetNodeTM(0), rest), kTolerance);
  GetCOREInterface()->SetTime(Frame(20));
  const Matrix3 atSwitch = rig.goal->GetNodeTM(Frame(20));
  ASSERT_TRUE(links->AddLink(1));
  EXPECT_LT(Distance(rig.goal->GetNodeTM(Frame(20)), atSwitch), kTolerance);
  const Matrix3 held = atSwitch * Inverse(prop->GetNodeTM(Frame(20)));
  EXPECT_LT(Distance(rig.goal->GetNodeTM(Frame(50)), held * prop->GetNodeTM(Frame(50))), kTolerance);
  GetCOREInterface()->SetTime(Frame(45));
  const Matrix3 released = rig.goal->GetNodeTM(Frame(45));
  ASSERT_TRUE(links->AddWorld());
  EXPECT_LT(Distance(rig.goal->GetNodeTM(Frame(60)), released), kTolerance);
  ASSERT_EQ(links->NumLinks(), 3);
  EXPECT_EQ(links->GetLink(0), rig.main);
  EXPECT_EQ(links->GetLink(1), prop);
  EXPECT_EQ(links->GetLink(2), nullptr);
  EXPECT_EQ(links->GetLinkTime(1), Frame(20));
  IKFKControl* control = FindIKFKControl(rig.goal);
  EXPECT_EQ(control->GetLink()->GetNumTargets(), 3) << "the track itself";
  EXPECT_FALSE(IsOfClass(control->GetFK(), TavrilonClass::ParentConstraint));
  EXPECT_FALSE(links->DeleteLink(3));
  ASSERT_TRUE(links->DeleteLink(1));
  EXPECT_EQ(links->NumLinks(), 2);
  EXPECT_EQ(links->GetLink(1), nullptr);
}

// A goal whose parent the chain moves has no link of its own to act: the weights of a constraint below do.
TEST_F(GoalLinksTest, GoalUnderAFootUsesWeightsBelowTheChainsControl) {
  LimbRig rig = Build({.goalParent = true});
  INode* prop = AddControl(L"prop", nullptr, At(Place(40), Turn()));
  LinkAttrib* links = AddLinks(rig.goal, prop, rig.main);
  const Matrix3 rest = rig.goal->GetNodeTM(0);
  GetCOREInterface()->SetTime(Frame(10));
  ASSERT_TRUE(links->AddLink(0));
  IKFKControl* control = FindIKFKControl(rig.goal);
  ASSERT_NE(control, nullptr);
  EXPECT_TRUE(IsOfClass(control->GetFK(), TavrilonClass::ParentConstraint));
  EXPECT_LT(Distance(rig.goal->GetNodeTM(Frame(10)), rest), kTolerance);
  prop->SetNodeTM(Frame(10), prop->GetNodeTM(Frame(10)) * TransMatrix({3, 0, 0}));
  EXPECT_LT(Distance(rig.goal->GetNodeTM(Frame(10)), rest * TransMatrix({3, 0, 0})), kTolerance);
}

TEST_F(GoalLinksTest, JointsTakeNoLinks) {
  LimbRig rig = Build();
  LinkAttrib* links = AddLinks(rig.joints[1], rig.main, rig.clavicle);
  EXPECT_FALSE(links->AddLink(0));
  EXPECT_FALSE(links->AddWorld());
  EXPECT_EQ(links->NumLinks(), 0);
}

}  // namespace
}  // namespace tavrilon
