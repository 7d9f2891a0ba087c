// SPDX-License-Identifier: MIT
// A limb in a scene: main, clavicle, joints, goal with a foot above it, pole, and the chain.
#pragma once

#include <random>
#include <vector>

#include "host/core/hold.h"
#include "plugin/controllers/rig_control.h"
#include "plugin/frame/find.h"
#include "plugin/frame/guard.h"
#include "plugin/frame/rig_maths.h"
#include "plugin/frame/rig_nodes_test.h"
#include "plugin/solvers/ikfk_chain.h"
#include "plugin/solvers/ikfk_control.h"
#include "plugin/solvers/ikfk_link.h"

namespace tavrilon {

struct LimbRig {
  corvanta::INode *main = nullptr, *clavicle = nullptr, *foot = nullptr, *goal = nullptr, *pole = nullptr,
                  *chainNode = nullptr;
  std::vector<corvanta::INode*> joints;
  IKFKChain* chain = nullptr;

  corvanta::ParamBlock2& Block() const { return *chain->GetParamBlock(); }
  corvanta::INode* End() const { return joints.back(); }
  std::vector<corvanta::INode*> All() const {
    std::vector<corvanta::INode*> all{main, clavicle, foot, goal, pole, chainNode};
    all.insert(all.end(), joints.begin(), joints.end());
    return all;
  }
  float Length(corvanta::TimeValue t = 0) const {
    float length = 0;
    for (size_t i = 1; i < joints.size(); ++i)
      length += corvanta::Length(joints[i]->GetNodeTM(t).GetTrans() - joints[i - 1]->GetNodeTM(t).GetTrans());
    return length;
  }
  /// How far the end lies off the goal, as a part of the limb's length.
  float Gap(corvanta::TimeValue t = 0) const {
    return corvanta::Length(End()->GetNodeTM(t).GetTrans() - goal->GetNodeTM(t).GetTrans()) / Length(t);
  }
};

struct LimbRigOptions {
  int joints = 3;
  bool target = true;
  bool goalParent = false;
  /// Of main, so of the whole rig.
  float scale = 1;
  unsigned seed = 1;
};

class IKFKTest : public RigNodesTest {
 protected:
  void TearDown() override {
    if (corvanta::Animating()) corvanta::AnimateOff();
    EXPECT_EQ(GuardCount(), guards_) << "something asked for a value that it was computing";
    EXPECT_EQ(corvanta::INode::ReentryCount(), reentries_);
    corvanta::theHold.Flush();
    RigNodesTest::TearDown();
  }

  static corvanta::INode* AddControl(const wchar_t* name, corvanta::INode* parent, const corvanta::Matrix3& tm) {
    corvanta::INode* node = AddNode(name, parent);
    node->SetTMController(new RigControl);
    node->SetNodeTM(0, tm);
    return node;
  }
  static corvanta::Matrix3 At(const corvanta::Point3& place, const corvanta::Quat& turn = {}) {
    corvanta::Matrix3 tm = QuatMatrix(turn);
    tm.SetTrans(place);
    return tm;
  }
  corvanta::Quat Turn() { return Normalize(corvanta::Quat{unit(rng), unit(rng), unit(rng), unit(rng) + 0.1f}); }
  corvanta::Point3 Place(float size) { return corvanta::Point3{unit(rng), unit(rng), unit(rng)} * size; }

  /// A bent limb of bones of 20 to 40 units that stands anywhere; goal and end agree, the pole stands on the side of
  /// the bend.
  LimbRig Build(const LimbRigOptions& options = {}) {
    using namespace corvanta;
    rng.seed(options.seed);
    LimbRig rig;
    rig.main = AddControl(L"main", nullptr, ScaleMatrix(Point3{1, 1, 1} * options.scale) * At(Place(50), Turn()));
    rig.clavicle = AddControl(L"clavicle", rig.main, At(Place(20), Turn()) * rig.main->GetNodeTM(0));
    Matrix3 tm = At(Place(10), Turn()) * rig.clavicle->GetNodeTM(0);
    INode* parent = rig.clavicle;
    for (int i = 0; i < options.joints; ++i) {
      if (i > 0) tm = At({30 + unit(rng) * 10, 0, 0}, QuatFromMatrix(RotateZMatrix(-0.6f - 0.3f * unit(rng)))) * tm;
      rig.joints.push_back(parent = AddControl(L"joint", parent, tm));
    }
    rig.foot = AddControl(L"foot", rig.main, At(Place(20), Turn()) * rig.End()->GetNodeTM(0));
    rig.goal = AddControl(L"goal", rig.foot, rig.End()->GetNodeTM(0));
    const auto middle = rig.joints[rig.joints.size() / 2]->GetNodeTM(0);
    rig.pole = AddControl(L"pole", rig.main, At(middle.GetTrans() + middle.GetRow(1) * 50));
    rig.chainNode = AddNode(L"chain", rig.main);
    rig.chain = new IKFKChain;
    rig.chainNode->SetTMController(rig.chain);
    for (INode* joint : rig.joints) rig.Block().Append(ikfk_chain::kJoints, joint);
    rig.Block().SetValue(ikfk_chain::kGoal, 0, rig.goal);
    if (options.goalParent) rig.Block().SetValue(ikfk_chain::kGoalParent, 0, rig.foot);
    if (options.target) rig.Block().SetValue(ikfk_chain::kTarget, 0, rig.pole);
    return rig;
  }

  /// Puts the goal somewhere in reach; that of a single bone, which can only grow, out of reach.
  void MoveGoal(const LimbRig& rig, corvanta::TimeValue t = 0) {
    const corvanta::Point3 root = rig.joints[0]->GetNodeTM(t).GetTrans();
    const float part = rig.joints.size() == 2 ? 1.3f : 0.7f;
    const float reach = rig.Length(t) * (part + 0.2f * unit(rng));
    corvanta::Matrix3 tm = rig.goal->GetNodeTM(t);
    tm.SetTrans(root + Normalize(Place(1)) * reach);
    rig.goal->SetNodeTM(t, tm);
  }

  static std::vector<corvanta::Matrix3> Poses(const std::vector<corvanta::INode*>& nodes, corvanta::TimeValue t = 0) {
    std::vector<corvanta::Matrix3> poses;
    for (corvanta::INode* node : nodes) poses.push_back(node->GetNodeTM(t));
    return poses;
  }
  /// Degrees between the rotations of two matrices.
  static float Turned(const corvanta::Matrix3& a, const corvanta::Matrix3& b) {
    const corvanta::Quat d = OrthoQuat(a) * Conjugate(OrthoQuat(b));
    return 2 * std::atan2(corvanta::Length(corvanta::Point3{d.x, d.y, d.z}), std::abs(d.w)) * 57.29578f;
  }
  /// Within 1e-4 of `length`, and 0.01 degrees: the accuracy that an animator cannot see. `slack` multiplies both.
  static void ExpectSamePoses(const std::vector<corvanta::Matrix3>& a, const std::vector<corvanta::Matrix3>& b,
                              float length, float slack = 1) {
    ASSERT_EQ(a.size(), b.size());
    for (size_t i = 0; i < a.size(); ++i) {
      EXPECT_LE(corvanta::Length(a[i].GetTrans() - b[i].GetTrans()), 1e-4f * slack * length) << "joint " << i;
      EXPECT_LE(Turned(a[i], b[i]), 0.01f * slack) << "joint " << i;
    }
  }
  /// The bend of a nearly straight limb goes by the square root of its distance from straight, so that the rounding of
  /// a place, some 1e-7 of it, shows as an angle of some 5e-4.
  static float StraightSlack(const LimbRig& rig, corvanta::TimeValue t) {
    const float reach = corvanta::Length(rig.End()->GetNodeTM(t).GetTrans() - rig.joints[0]->GetNodeTM(t).GetTrans());
    return reach > 0.99999f * rig.Length(t) ? 10 : 1;
  }

  std::mt19937 rng{1};
  std::uniform_real_distribution<float> unit{-1, 1};

 private:
  int guards_ = GuardCount();
  int reentries_ = corvanta::INode::ReentryCount();
};

}  // namespace tavrilon
