// SPDX-License-Identifier: MIT
// Stable parameter numbers of the solver classes, for their tables and for those who wire them.
#pragma once

#include <cstdint>

namespace tavrilon {

namespace ikfk_chain {
enum Param : int16_t {
  kJoints = 0,
  kGoal = 1,
  kGoalParent = 2,
  kGoalInbetweenParents = 3,
  kTarget = 4,
  kRotationSpaceNode = 5,
  kIkfkBlend = 6,
  kManualStretch = 7,
  kAutoStretch = 8,
  kRotationSpace = 9,
  kFlexionBias = 10,
  kUseTarget = 11,
  kSwivelAngle = 12,
  kUseGoalParent = 13,
  kUseRotationSpace = 14,
  kAutoIkfkMatch = 15,
  kLastJointIkRotation = 16,
  kKeepInitialRotSpace = 17,
  kInitialRotSpaceOffset = 18,
  kTargetDistPercent = 19,
  kParentSpace = 20,
  kIterations = 21,
  kDisplayGoal = 22,
  kDisplayTarget = 23,
  kAffectHelpersDisplay = 24,
  kSoftIk = 25,
};
}  // namespace ikfk_chain

namespace ikfk_control {
enum Param : int16_t { kChainNode = 0, kType = 1, kIndex = 2 };
/// What a wrapped node is to its chain.
enum Type : int { kJoint = 0, kGoal = 1, kGoalParent = 2, kTarget = 3 };
}  // namespace ikfk_control

namespace ikfk_link {
enum Param : int16_t { kTargetList = 0, kStartTime = 1, kKeySelection = 2 };
}  // namespace ikfk_link

namespace curve_ik_chain {
enum Param : int16_t {
  kJoints = 0,
  kPoints = 1,
  kPointsTypes = 2,
  kInTangents = 3,
  kOutTangents = 4,
  kPercent = 5,
  kRotation = 6,
  kTwist = 7,
  kPointsTwist = 8,
  kManualStretch = 9,
  kAutoStretch = 10,
  kSquash = 11,
  kBackwards = 12,
  kSlideJoints = 13,
  kUseWave = 14,
  kWaveAmplitude = 15,
  kPointsWaveAmplitude = 16,
  kWaveLength = 17,
  kWaveOrientation = 18,
  kWavePhase = 19,
  kSteps = 20,
  kChainLength = 21,
  kUsePointsRotation = 22,
  kUsePointsScale = 23,
  kAdditiveTwist = 24,
  kClosedLoop = 25,
  kFollowType = 26,
  kAimAxis = 27,
  kAimAxisFlip = 28,
  kAlignAxis = 29,
  kAlignAxisFlip = 30,
  kParentSpace = 31,
  kParentSpaceNode = 32,
  kDisplayCurve = 33,
  kDisplayTangents = 34,
  kInnerInTangents = 35,
  kInnerOutTangents = 36,
  kUseTangentNodes = 37,
};
enum PointType : int { kBezierCorner = 0, kBezier = 1, kCorner = 2, kSmooth = 3 };
enum FollowType : int { kFollowNone = 0, kFollowTangent = 1, kFollowChild = 2 };
enum ParentSpace : int { kWorldSpace = 0, kChainParentSpace = 1, kNodeSpace = 2 };
}  // namespace curve_ik_chain

namespace curve_ik_control {
enum Param : int16_t { kChainNode = 0, kIndex = 1, kPercent = 2, kSquash = 3 };
}  // namespace curve_ik_control

}  // namespace tavrilon
