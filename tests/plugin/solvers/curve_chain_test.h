// SPDX-License-Identifier: MIT
// A fresh scene with a curve chain on a helper, control nodes and joints.
#pragma once

#include <gtest/gtest.h>

#include "host/core/hold.h"
#include "host/maths/euler.h"
#include "host/scene/core_interface.h"
#include "host/scene/point_helper.h"
#include "plugin/frame/class_table.h"
#include "plugin/frame/guard.h"
#include "plugin/solvers/curve_ik_chain.h"
#include "plugin/solvers/curve_ik_control.h"

namespace tavrilon {

class CurveChainTest : public testing::Test {
 protected:
  void SetUp() override {
    corvanta::RegisterHostClasses();
    RegisterTavrilonClasses();
    corvanta::ReplaceScene(std::make_unique<corvanta::Scene>());
    guards_ = GuardCount() + corvanta::INode::ReentryCount();
    chainNode = AddNode({});
    chain = new CurveIKChain;
    chainNode->SetTMController(chain);
  }
  void TearDown() override {
    EXPECT_EQ(GuardCount() + corvanta::INode::ReentryCount(), guards_);
    corvanta::theHold.Flush();
    corvanta::ReplaceScene(std::make_unique<corvanta::Scene>());
  }

  static corvanta::INode* AddNode(const corvanta::Point3& pos, corvanta::INode* parent = nullptr) {
    corvanta::INode* node = corvanta::GetScene().CreateObjectNode(new corvanta::PointHelper);
    corvanta::Matrix3 tm;
    tm.SetTrans(pos);
    node->SetNodeTM(0, tm);
    if (parent) parent->AttachChild(node, true);
    return node;
  }
  corvanta::INode* AddPoint(const corvanta::Point3& pos, int type = curve_ik_chain::kSmooth) {
    corvanta::INode* node = AddNode(pos);
    CurvePointOptions options;
    options.type = type;
    EXPECT_TRUE(chain->AddPoint(node, options));
    points.push_back(node);
    return node;
  }
  void AddJoints(int count) {
    for (int i = 0; i < count; ++i) {
      joints.push_back(AddNode({}));
      Block().Append(curve_ik_chain::kJoints, joints.back());
    }
  }
  corvanta::ParamBlock2& Block() { return *chain->GetParamBlock(); }
  static corvanta::ParamBlock2& BlockOf(corvanta::INode* joint) { return *CurveIKControl::Of(joint)->GetParamBlock(); }
  static void Move(corvanta::INode* node, const corvanta::Point3& pos, corvanta::TimeValue t = 0) {
    corvanta::Matrix3 tm = node->GetNodeTM(t);
    tm.SetTrans(pos);
    node->SetNodeTM(t, tm);
  }
  corvanta::Point3 JointPos(int i, corvanta::TimeValue t = 0) {
    return joints[static_cast<size_t>(i)]->GetNodeTM(t).GetTrans();
  }

  corvanta::INode* chainNode = nullptr;
  CurveIKChain* chain = nullptr;
  std::vector<corvanta::INode*> points, joints;

 private:
  int guards_ = 0;
};

/// Single precision over scenes of some hundred units.
inline constexpr float kPlaceError = 1e-3f;

inline void ExpectNear(const corvanta::Point3& a, const corvanta::Point3& b, float error = kPlaceError) {
  EXPECT_LE(Length(a - b), error) << "(" << a.x << ", " << a.y << ", " << a.z << ") instead of (" << b.x << ", " << b.y
                                  << ", " << b.z << ")";
}

inline void ExpectNear(const corvanta::Matrix3& a, const corvanta::Matrix3& b, float error = kPlaceError) {
  for (int r = 0; r < 4; ++r) ExpectNear(a.row[r], b.row[r], error);
}

}  // namespace tavrilon
