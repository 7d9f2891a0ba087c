// SPDX-License-Identifier: MIT
#include "plugin/controllers/rig_offset.h"

#include <gtest/gtest.h>

#include <random>

#include "plugin/controllers/control_values_test.h"

namespace tavrilon {
namespace {

using namespace corvanta;

TEST(RigOffset, PartsMakeTheOffsetAgain) {
  std::mt19937 rng(3);
  for (int i = 0; i < 500; ++i) {
    Matrix3 offset = RandomRigid(rng, 10);
    offset.PreScale(RandomPoint(rng, 0.2f, 3));
    if (i % 3 == 0) offset = offset * MakeMatrix(ScaleValue{RandomPoint(rng, 0.5f, 2), RandomQuat(rng)});
    if (i % 5 == 0) offset.PreScale({-1, 1, 1});
    const SplitOffset split = Split(offset);
    Matrix3 m;
    m.PreTranslate(split.translation);
    PreMultiplyLinear(m, split.rotation);
    PreMultiplyLinear(m, split.stretch);
    // Scales reach 6 and translations 10: some float steps of those.
    ASSERT_TRUE(IsNear(m, offset, 2e-5f)) << i;
  }
}

TEST(RigOffset, RigidOffsetsHaveNoStretchAndPlainOnesNoTurn) {
  std::mt19937 rng(4);
  EXPECT_TRUE(Split(Matrix3()).isIdentity);
  for (int i = 0; i < 200; ++i) EXPECT_FALSE(Split(RandomRigid(rng, 100)).stretches);
  const SplitOffset place = Split(TransMatrix({1, 2, 3}));
  EXPECT_FALSE(place.rotates || place.stretches || place.isIdentity);
}

TEST(RigOffset, MirroredOffsetReadsAsRotationAndNegativeScale) {
  const Quat rotation = EulerToQuat({0.3f, -0.5f, 1.0f});
  const Matrix3 mirrored = OffsetFromParts({1, 2, 3}, rotation, {2, 3, -4});
  EXPECT_TRUE(IsNear(OffsetRotation(mirrored), rotation, 1e-5f));
  EXPECT_TRUE(IsNear(OffsetScale(mirrored), {2, 3, -4}, 1e-5f));
}

TEST(RigOffset, ZeroScaleHasNoRotation) {
  const Matrix3 flat = OffsetFromParts({}, EulerToQuat({1, 0, 0}), {1, 0, 1});
  EXPECT_TRUE(OffsetRotation(flat) == Quat());
  EXPECT_EQ(OffsetScale(flat).y, 0);
}

TEST(RigOffset, NewRotationKeepsPlaceMirrorAndStretch) {
  Matrix3 offset = OffsetFromParts({1, 2, 3}, EulerToQuat({0.2f, 0.4f, 0.6f}), {-1, 2, 3});
  const Quat rotation = EulerToQuat({-1, 0.5f, 0.1f});
  const AffineParts before = decomp_affine(offset), after = decomp_affine(WithRotation(offset, rotation));
  EXPECT_TRUE(IsNear(after.q, rotation, 1e-5f));
  EXPECT_EQ(after.f, -1);
  EXPECT_TRUE(IsNear(after.t, before.t, 1e-5f));
  EXPECT_TRUE(IsNear(MakeMatrix(ScaleValue{after.k, after.u}), MakeMatrix(ScaleValue{before.k, before.u}), 1e-5f));
}

// The reflected rotation is the rotation seen in a mirror: reflect, rotate, reflect back.
TEST(RigOffset, MirrorChangeIsAReflection) {
  std::mt19937 rng(5);
  for (int axis = 0; axis < 3; ++axis) {
    Point3 sign{1, 1, 1};
    sign[axis] = -1;
    const Matrix3 mirror = ScaleMatrix(sign);
    for (int i = 0; i < 50; ++i) {
      const Matrix3 change = RandomRigid(rng, 5);
      const Matrix3 mirrored = MirrorChange(change, axis, axis);
      EXPECT_TRUE(IsNear(mirrored, mirror * change * mirror, 1e-5f));
      EXPECT_TRUE(IsNear(MirrorChange(mirrored, axis, axis), change, 1e-5f));
    }
  }
}

// Euler XYZ (10, 20, 30) at (1, 2, 3): about X the signs of Y and Z turn; each switch alone leaves the other part.
TEST(RigOffset, MirrorChangeByParts) {
  const Point3 degrees = Point3{10, 20, 30} * kDegToRad;
  Matrix3 change = EulerToMatrix(degrees);
  change.SetTrans({1, 2, 3});
  Matrix3 expected = EulerToMatrix({degrees.x, -degrees.y, -degrees.z});
  expected.SetTrans({1, 2, 3});
  EXPECT_TRUE(IsNear(MirrorChange(change, -1, 0), expected, 1e-5f));
  Matrix3 moved = change;
  moved.SetTrans({1, -2, 3});
  EXPECT_TRUE(IsNear(MirrorChange(change, 1, -1), moved, 1e-6f));
  EXPECT_TRUE(MirrorChange(change, -1, -1) == change);
}

}  // namespace
}  // namespace tavrilon
