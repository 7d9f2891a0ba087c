// SPDX-License-Identifier: MIT
#include "host/maths/box3.h"
#include "host/maths/colour.h"
#include "host/maths/interval.h"
#include "host/maths/maths_test.h"

namespace corvanta {
namespace {

TEST(Interval, IntersectionAndEmptiness) {
  const struct {
    Interval a, b, expected;
  } rows[] = {
      {FOREVER, {3, 9}, {3, 9}}, {{0, 5}, {5, 9}, {5, 5}},    {{0, 4}, {5, 9}, NEVER},
      {NEVER, FOREVER, NEVER},   {FOREVER, FOREVER, FOREVER}, {{0, 9}, NEVER, NEVER},
  };
  for (const auto& r : rows) {
    EXPECT_EQ(r.a & r.b, r.expected);
    EXPECT_EQ(r.b & r.a, r.expected);
  }
  EXPECT_TRUE(FOREVER.Contains(kTimeMin) && FOREVER.Contains(kTimeMax));
  for (const TimeValue t : {kTimeMin, -1, 0, kTimeMax}) EXPECT_FALSE(NEVER.Contains(t));
}

TEST(Points, NormalizeOfNothing) {
  EXPECT_EQ(Normalize(Point3{}), Point3{});
  EXPECT_NEAR(Length(Normalize(Point3{3, -4, 12})), 1, 1e-6f);
}

TEST(Box, TransformedBoxHoldsTheCorners) {
  Random random;
  Box3 box;
  EXPECT_TRUE((box * Matrix3{}).IsEmpty());
  EXPECT_EQ(box.Diagonal(), 0);
  for (int i = 0; i < 5; ++i) box += random.Point(4);
  const Matrix3 m = random.Affine();
  const Box3 moved = box * m;
  for (int i = 0; i < 8; ++i) {
    Box3 grown = moved;
    grown += box.Corner(i) * m;
    EXPECT_EQ(grown.min, moved.min);
    EXPECT_EQ(grown.max, moved.max);
  }
}

TEST(Colour, PackingIsLossless) {
  for (const uint32_t rgb : {0x000000u, 0xCAB9ADu, 0xFF8001u, 0xFFFFFFu}) EXPECT_EQ(PackColour(UnpackColour(rgb)), rgb);
  EXPECT_EQ(PackColour({1, 0.5f, 0}), 0xFF8000u);
}

}  // namespace
}  // namespace corvanta
