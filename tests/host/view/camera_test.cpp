// SPDX-License-Identifier: MIT
#include "host/view/camera.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

using namespace corvanta;

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr ViewKind kViews[] = {ViewKind::Front, ViewKind::Side, ViewKind::Top, ViewKind::Perspective};

// 200 x 100 pixels and a span of 10 units: a unit is ten pixels, the middle is (100, 50).
struct KnownPoint {
  const char* name;
  ViewKind kind;
  Point3 world;
  ScreenPoint screen;
};
const KnownPoint kPoints[] = {
    {"front: right is +X", ViewKind::Front, {2, 0, 0}, {120, 50, 0}},
    {"front: up is +Z", ViewKind::Front, {0, 0, 3}, {100, 20, 0}},
    {"front: the face is nearer than the back", ViewKind::Front, {0, -4, 0}, {100, 50, -4}},
    {"side: the face looks to the left", ViewKind::Side, {0, -1, 0}, {90, 50, 0}},
    {"side: the left hand is nearer", ViewKind::Side, {2, 0, 0}, {100, 50, -2}},
    {"top: right is +X, the face looks down", ViewKind::Top, {1, -2, 0}, {110, 70, 0}},
    {"top: the head is nearer", ViewKind::Top, {0, 0, 5}, {100, 50, -5}},
};

TEST(Camera, KnownPoints) {
  for (const KnownPoint& p : kPoints) {
    SCOPED_TRACE(p.name);
    Camera camera(p.kind, 200, 100);
    camera.LookAt({}, 10);
    ScreenPoint s;
    ASSERT_TRUE(camera.WorldToScreen(p.world, s));
    // A thousandth of a pixel: float arithmetic on numbers up to 200.
    EXPECT_NEAR(s.x, p.screen.x, 1e-3f);
    EXPECT_NEAR(s.y, p.screen.y, 1e-3f);
    EXPECT_NEAR(s.depth, p.screen.depth, 1e-3f);
  }
}

TEST(Camera, PerspectiveShrinksWithDistance) {
  Camera camera(ViewKind::Perspective, 400, 400);
  camera.LookAt({}, 8);
  const Point3 up = camera.Up(), away = camera.Forward();
  const float distance = Length(camera.Eye());
  ScreenPoint near, far;
  ASSERT_TRUE(camera.WorldToScreen(up, near));                   // at the target: 8 units are 400 pixels
  ASSERT_TRUE(camera.WorldToScreen(up + away * distance, far));  // twice as far: half the size
  EXPECT_NEAR(200 - near.y, 50, 0.01f);
  EXPECT_NEAR(200 - far.y, 25, 0.01f);
  EXPECT_NEAR(near.depth, distance, 1e-3f);
  ScreenPoint unseen{1, 2, 3};
  EXPECT_FALSE(camera.WorldToScreen(camera.Eye() - away, unseen));
  EXPECT_EQ(unseen.x, 1);
}

TEST(Camera, PerspectiveLooksAtTheFaceFromAbove) {
  const Camera camera;
  EXPECT_LT(camera.Eye().y, 0);
  EXPECT_GT(camera.Eye().z, 0);
  EXPECT_GT(camera.Up().z, 0.5f);
  EXPECT_NEAR(Length(Cross(camera.Right(), camera.Up()) + camera.Forward()), 0, 1e-6f);
}

TEST(Camera, ViewTMAgreesWithTheAxes) {
  for (ViewKind kind : kViews) {
    Camera camera(kind);
    camera.LookAt({1, 2, 3}, 4);
    const Point3 v = (camera.Eye() + camera.Right() * 2 + camera.Up() * 3 + camera.Forward() * 4) * camera.ViewTM();
    // Sums of a dozen numbers of up to ten in float.
    EXPECT_NEAR(Length(v - Point3{2, 3, 4}), 0, 1e-4f);
  }
}

// Whatever the box, the framed view shows all its corners, and the box fills the picture at least in one direction.
TEST(Camera, FrameBoxShowsTheWholeBoxInTheMiddle) {
  std::mt19937 rng(11);
  std::uniform_real_distribution<float> at(-20, 20), size(0.01f, 10);
  for (int round = 0; round < 400; ++round) {
    Camera camera(kViews[round % 4], 300 + round % 7 * 50, 250);
    Box3 box;
    const Point3 corner{at(rng), at(rng), at(rng)};
    box += corner;
    box += corner + Point3{size(rng), size(rng), size(rng)};
    camera.FrameBox(box, 1.25f);
    float reach = 0;
    float left = 1, right = 0, top = 1, bottom = 0;
    for (int i = 0; i < 8; ++i) {
      ScreenPoint s;
      ASSERT_TRUE(camera.WorldToScreen(box.Corner(i), s));
      const float w = static_cast<float>(camera.Width()), h = static_cast<float>(camera.Height());
      reach = std::max({reach, std::fabs(s.x / w * 2 - 1), std::fabs(s.y / h * 2 - 1)});
      left = std::min(left, s.x / w), right = std::max(right, s.x / w);
      top = std::min(top, s.y / h), bottom = std::max(bottom, s.y / h);
    }
    EXPECT_NEAR(left + right, 1, 0.01f) << round;  // in the middle; a perspective view comes near by steps
    EXPECT_NEAR(top + bottom, 1, 0.01f) << round;
    EXPECT_LE(reach, 0.805f) << round;  // 1 / margin, and float rounding far from the origin
    EXPECT_GE(reach, 0.795f) << round;
  }
}

TEST(Camera, UselessBoxesGiveTheFirstView) {
  const float inf = std::numeric_limits<float>::infinity();
  const Box3 boxes[] = {{}, {{kNaN, 0, 0}, {1, 1, 1}}, {{-inf, 0, 0}, {1, 1, 1}}, {{-3e38f, 0, 0}, {3e38f, 1, 1}}};
  for (ViewKind kind : kViews)
    for (const Box3& box : boxes) {
      Camera camera(kind);
      camera.FrameBox(box);
      EXPECT_EQ(camera.Span(), Camera(kind).Span());
      EXPECT_EQ(camera.Target(), Point3{});
    }
}

TEST(Camera, ScreenPointsGoBackToTheirPlane) {
  std::mt19937 rng(5);
  std::uniform_real_distribution<float> at(-1, 1);
  for (int round = 0; round < 200; ++round) {
    Camera camera(kViews[round % 4], 640, 480);
    camera.LookAt({at(rng), at(rng), at(rng)}, 6);
    camera.Orbit(at(rng) * 3, at(rng));
    const Point3 p{at(rng), at(rng), at(rng)};
    ScreenPoint s;
    ASSERT_TRUE(camera.WorldToScreen(p, s));
    Point3 hit;
    ASSERT_TRUE(camera.ScreenToPlane({s.x, s.y}, p, camera.Forward(), hit));
    EXPECT_NEAR(Length(hit - p), 0, 1e-4f);  // float rounding of pixels, each about 0.01 units
    const Ray ray = camera.ScreenRay({s.x, s.y});
    EXPECT_NEAR(Length(Cross(p - ray.origin, ray.direction)), 0, 1e-4f);
    ScreenPoint beside;
    ASSERT_TRUE(camera.WorldToScreen(p + camera.Right() * camera.PixelSize(p), beside));
    EXPECT_NEAR(beside.x - s.x, 1, 1e-2f);
  }
}

TEST(Camera, GridPlanes) {
  Camera top(ViewKind::Top, 200, 100), front(ViewKind::Front, 200, 100), persp;
  top.LookAt({5, 0, 9}, 10), front.LookAt({0, 7, 0}, 10);
  Point3 hit;
  ASSERT_TRUE(top.ScreenToGrid({110, 50}, hit));
  EXPECT_NEAR(Length(hit - Point3{6, 0, 0}), 0, 1e-5f);
  ASSERT_TRUE(front.ScreenToGrid({100, 40}, hit));
  EXPECT_NEAR(Length(hit - Point3{0, 0, 1}), 0, 1e-5f);
  ASSERT_TRUE(persp.ScreenToGrid({640, 700}, hit));
  EXPECT_NEAR(hit.z, 0, 1e-5f);
  EXPECT_FALSE(persp.ScreenToGrid({640, -4000}, hit)) << "the sky has no ground";
  EXPECT_FALSE(front.ScreenToPlane({0, 0}, {}, {1, 0, 0}, hit)) << "a plane seen from its edge";
}

TEST(Camera, DraggingFollowsTheMouse) {
  for (ViewKind kind : kViews) {
    Camera camera(kind, 640, 480);
    ScreenPoint before, after;
    ASSERT_TRUE(camera.WorldToScreen(camera.Target(), before));
    const Point3 p = camera.Target();
    camera.Pan(30, -20);
    ASSERT_TRUE(camera.WorldToScreen(p, after));
    EXPECT_NEAR(after.x - before.x, 30, 0.01f);
    EXPECT_NEAR(after.y - before.y, -20, 0.01f);
  }
}

TEST(Camera, HostileNumbersChangeNothing) {
  Camera camera(ViewKind::Perspective, -5, 1 << 30);
  EXPECT_EQ(camera.Width(), 1);
  EXPECT_EQ(camera.Height(), 16384);
  const Point3 eye = camera.Eye();
  camera.Zoom(kNaN), camera.Zoom(-1), camera.Pan(kNaN, 0), camera.Orbit(kNaN, 0), camera.LookAt({kNaN, 0, 0}, kNaN);
  EXPECT_EQ(camera.Eye(), eye);
  ScreenPoint s;
  EXPECT_FALSE(camera.WorldToScreen({kNaN, 0, 0}, s));
}

}  // namespace
