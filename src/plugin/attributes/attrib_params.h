// SPDX-License-Identifier: MIT
// Stable parameter numbers of the rig's attributes. Those of RootAttrib and LinkAttrib are not in the order of their
// rows; they stand in files.
#pragma once

#include <cstdint>

namespace tavrilon {

namespace limb_attrib {
enum Param : int16_t {
  kChainNode = 0,
  kIkfkBlend = 1,
  kManualStretch = 2,
  kAutoStretch = 3,
  kRotationSpace = 4,
  kFlexionBias = 5,
  kSquash = 6,
  kSquashActive = 7,
  kBendy = 8,
  kBendyActive = 9,
  kSoftness = 10,
  kIkfkBlendDefault = 11,
};
}  // namespace limb_attrib

namespace curve_attrib {
enum Param : int16_t { kManualStretch = 0, kAutoStretch = 1, kSquash = 2, kBackwards = 3, kSlideJoints = 4 };
}  // namespace curve_attrib

namespace foot_attrib {
enum Param : int16_t {
  kFootRoll = 0,
  kFootBreak = 1,
  kBanking = 2,
  kHeelPivot = 3,
  kBallPivot = 4,
  kToePivot = 5,
  kToeBend = 6,
};
}  // namespace foot_attrib

namespace head_attrib {
enum Param : int16_t { kRotationSpace = 0 };
}  // namespace head_attrib

namespace root_attrib {
enum Param : int16_t {
  kFollowHorizontal = 0,
  kFollowTurning = 1,
  kVerticalOffset = 2,
  kGroundOffset = 3,
  kFollowVertical = 4,
  kUseGround = 5,
};
}  // namespace root_attrib

namespace link_attrib {
enum Param : int16_t {
  kLinkNode = 0,
  kLink4 = 1,
  kLink3 = 2,
  kLink2 = 3,
  kLink1 = 4,
  kLink4Name = 5,
  kLink3Name = 6,
  kLink2Name = 7,
  kLink1Name = 8,
};
}  // namespace link_attrib

}  // namespace tavrilon
