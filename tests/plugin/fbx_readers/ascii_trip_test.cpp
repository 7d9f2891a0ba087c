// SPDX-License-Identifier: MIT
// An ASCII file with layers and keys of each kind, as it comes out of the host, against values worked out by hand.
// (What comes of an ASCII file with a mesh is compared with the others in round_trip_test.cpp.)
#include <gtest/gtest.h>

#include <cmath>

#include "plugin/fbx_readers/assimp_scene.h"
#include "plugin/fbx_readers/host_trip.h"

namespace tavrilon::fbx {
namespace {

// Keys are floats, fitted within some 1e-4, and a weight in the file is a whole number of 9999ths.
constexpr double kNear = 5e-4;
constexpr double kNotAsked = NAN;

struct HandRow {
  int frame;
  Vector3 at;
};
// x: cubic of Hermite, slopes 20 and 0 for a segment from 0 to 10, at quarters of it; 2 more by half of the layer
// above. y: steps at frame 10. z: cubic of Bezier whose tangents reach half-way; at parameter 1/4 it is 19/64 of the
// way in time and 5/32 in value.
const HandRow kByHand[] = {
    {0, {2, 1, 0}},
    {5, {4.375 + 2, 1, kNotAsked}},
    {9, {kNotAsked, 1, kNotAsked}},
    {10, {7.5 + 2, 3, kNotAsked}},
    {15, {9.375 + 2, 3, kNotAsked}},
    {19, {kNotAsked, 3, 10 * 5 / 32.0}},
    {20, {12, 3, kNotAsked}},
    {32, {12, 3, 5}},
    {45, {12, 3, 10 * 27 / 32.0}},
    {64, {12, 3, 10}},
};

TEST(AsciiTrip, LayersAndKeys) {
  HostTrip trip;
  ASSERT_TRUE(trip.Run(FileBytes(TAVRILON_SOURCE_DIR "/tests/data/fbx/ascii_layers.fbx")));
  AssimpFile file;
  ASSERT_TRUE(file.Read(trip.bytes)) << file.error;
  const int arm = file.Find("rig:Arm"), hand = file.Find("rig:Hand");
  ASSERT_GE(arm, 0);
  ASSERT_GE(hand, 0);
  EXPECT_EQ(file.nodes[static_cast<size_t>(hand)].parent, arm);
  // 30 degrees, and half of 40 above them.
  const double turn = 50 * kDegreesToRadians;
  for (const HandRow& row : kByHand) {
    SCOPED_TRACE(row.frame);
    const Vector3 at = file.World(arm, row.frame / 30.0).row[3];
    for (size_t axis = 0; axis < 3; ++axis) {
      if (std::isnan(row.at[axis])) continue;
      EXPECT_NEAR(at[axis], row.at[axis], kNear) << "axis " << axis;
    }
    const Vector3 reach = file.World(hand, row.frame / 30.0).row[3] - at;
    EXPECT_LT(Length(reach - Vector3{10 * std::cos(turn), 10 * std::sin(turn), 0}), kNear);
  }
}

}  // namespace
}  // namespace tavrilon::fbx
