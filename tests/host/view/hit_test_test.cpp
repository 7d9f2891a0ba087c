// SPDX-License-Identifier: MIT
#include "host/view/hit_test.h"

#include <gtest/gtest.h>

#include <limits>

using namespace corvanta;

namespace {

// 100 x 100 pixels over ten units: a front view where a unit is ten pixels and the middle is (50, 50).
Camera SmallCamera() {
  Camera camera(ViewKind::Front, 100, 100);
  camera.LookAt({}, 10);
  return camera;
}

// Nodes are only compared here, never looked into.
char nodeBytes[4];
INode* Node(int i) { return reinterpret_cast<INode*>(&nodeBytes[i]); }

void Square(GraphicsWindow& window, float y, float half = 2, bool turned = false) {
  const Point3 p[] = {{-half, y, -half}, {half, y, -half}, {half, y, half}, {-half, y, half}};
  const std::array<int, 3> front[] = {{0, 1, 2}, {0, 2, 3}}, back[] = {{0, 2, 1}, {0, 3, 2}};
  window.Triangles({p, turned ? back : front});
}

struct NearLine {
  const char* name;
  Point2 mouse;
  bool hit;
  float distance, depth;
};
// A line from (-2, -1, 0) to (2, 3, 0): at y = 50 from x = 30 to 70, running away from the viewer.
const NearLine kNearLine[] = {
    {"on it", {50, 50}, true, 0, 1},          {"3 pixels above", {40, 47}, true, 3, 0},
    {"just within", {50, 54}, true, 4, 1},    {"just out", {50, 54.1f}, false, 0, 0},
    {"beyond its end", {73, 50}, true, 3, 3}, {"beside its end", {73, 53}, false, 0, 0},
    {"far away", {10, 10}, false, 0, 0},
};
TEST(HitTest, LinesByDistanceInPixels) {
  for (const NearLine& row : kNearLine) {
    SCOPED_TRACE(row.name);
    HitTestWindow window(SmallCamera(), MakeHitRegion(row.mouse, 4));
    window.SetHitTag(Node(1), 7);
    window.Segment({-2, -1, 0}, {2, 3, 0});
    const auto hits = window.Hits();
    ASSERT_EQ(hits.size(), row.hit ? 1u : 0u);
    if (!row.hit) continue;
    EXPECT_NEAR(hits[0].distance, row.distance, 1e-4f);
    EXPECT_NEAR(hits[0].depth, row.depth, 1e-4f);
    EXPECT_EQ(hits[0].node, Node(1));
    EXPECT_EQ(hits[0].subIndex, 7);
  }
}

TEST(HitTest, OneRecordForEachNodeAndPart) {
  HitTestWindow window(SmallCamera(), MakeHitRegion({50, 50}, 6));
  for (int part = 0; part < 2; ++part)
    for (float z : {0.5f, 0.1f, 0.3f}) {
      window.SetHitTag(Node(0), part);
      window.Segment({-1, 0, z}, {1, 0, z});
    }
  const auto hits = window.Hits();
  ASSERT_EQ(hits.size(), 2u);
  for (const HitRecord& hit : hits) EXPECT_NEAR(hit.distance, 1, 1e-4f);
}

TEST(HitTest, ClosedPolylineHasItsLastSide) {
  const Point3 p[] = {{-2, 0, -2}, {2, 0, -2}, {2, 0, 2}, {-2, 0, 2}};
  for (bool closed : {false, true}) {
    HitTestWindow window(SmallCamera(), MakeHitRegion({30, 50}, 3));
    window.Polyline(p, closed);
    EXPECT_EQ(window.Hits().size(), closed ? 1u : 0u);
  }
}

// What a user means by a click: what is drawn on top, then lines in sight, then faces, then what a face hides.
TEST(HitTest, OrderOfWhatIsMeant) {
  HitTestWindow window(SmallCamera(), MakeHitRegion({50, 50}, 5));
  window.SetHitTag(Node(0));
  Square(window, 1);  // a body
  window.SetHitTag(Node(1));
  window.Segment({-1, 3, 0}, {1, 3, 0});  // behind it, right under the mouse
  window.SetHitTag(Node(2));
  window.Segment({-1, -1, 0.3f}, {1, -1, 0.3f});  // before it, three pixels off
  window.SetHitTag(Node(3));
  window.SetDepthTest(false);
  window.Segment({-1, 5, 0.4f}, {1, 5, 0.4f});
  const auto hits = window.Hits();
  ASSERT_EQ(hits.size(), 4u);
  const int wanted[] = {3, 2, 0, 1};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(hits[static_cast<size_t>(i)].node, Node(wanted[i])) << i;
}

TEST(HitTest, SeeThroughFacesHideNothing) {
  HitTestWindow window(SmallCamera(), MakeHitRegion({50, 50}));
  window.SetHitTag(Node(0)), window.SetOpacity(0.4f);
  Square(window, 0);
  window.SetHitTag(Node(1)), window.SetOpacity(1);
  window.Segment({-1, 3, 0}, {1, 3, 0});
  ASSERT_EQ(window.Hits().size(), 2u);
  EXPECT_EQ(window.Hits()[0].node, Node(1));
}

TEST(HitTest, FacesByIndexAndSide) {
  struct Case {
    const char* name;
    bool turned, ignoreBack;
    std::vector<int> faces;
  };
  // The mouse is in the lower right triangle only.
  const Case cases[] = {
      {"front", false, true, {0}}, {"back counts", true, false, {0}}, {"back ignored", true, true, {}}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    HitTestWindow window(SmallCamera(), MakeHitRegion({60, 55}, 2), {true, c.ignoreBack});
    Square(window, 0, 2, c.turned);
    std::vector<int> faces;
    for (const HitRecord& hit : window.Hits()) faces.push_back(hit.face);
    EXPECT_EQ(faces, c.faces);
  }
  HitTestWindow all(SmallCamera(), MakeHitRegion({20, 20}, {80, 80}), {true, false});
  Square(all, 0);
  EXPECT_EQ(all.Hits().size(), 2u);
}

TEST(HitTest, DepthInsideAFaceIsItsPlane) {
  HitTestWindow window(SmallCamera(), MakeHitRegion({55, 45}, 2));
  const Point3 p[] = {{-2, -2, -2}, {2, 2, -2}, {2, 2, 2}, {-2, -2, 2}};  // y = x
  const std::array<int, 3> t[] = {{0, 1, 2}, {0, 2, 3}};
  window.Triangles({p, t});
  ASSERT_EQ(window.Hits().size(), 1u);
  EXPECT_NEAR(window.Hits()[0].depth, 0.5f, 1e-4f);
  EXPECT_EQ(window.Hits()[0].distance, 0);
}

struct RectangleCase {
  const char* name;
  Point2 a, b;
  bool crossing, window;
};
// Against a line from (30, 50) to (70, 50) with a square marker of 6 pixels at its end.
const RectangleCase kRectangles[] = {
    {"around all", {20, 40}, {80, 60}, true, true},
    {"corners in another order", {80, 60}, {20, 40}, true, true},
    {"through the middle", {45, 40}, {55, 60}, true, false},
    {"around one end", {20, 40}, {35, 60}, true, false},
    {"beside", {20, 55}, {60, 90}, false, false},
    {"as thin as a line", {50, 0}, {50, 99}, true, false},
};
TEST(HitTest, RectanglesCrossOrEnclose) {
  for (const RectangleCase& row : kRectangles) {
    SCOPED_TRACE(row.name);
    for (bool window : {false, true}) {
      HitTestWindow hits(SmallCamera(), MakeHitRegion(row.a, row.b, window));
      hits.SetHitTag(Node(2));
      hits.Segment({-2, 0, 0}, {2, 0, 0});
      hits.Marker({2, 0, 0}, MarkerKind::Box, 6);
      EXPECT_EQ(!hits.Hits().empty(), window ? row.window : row.crossing) << window;
    }
  }
}

TEST(HitTest, MarkersCountWithTheirSize) {
  for (float x : {50.0f, 53.0f, 56.9f, 57.1f}) {
    HitTestWindow window(SmallCamera(), MakeHitRegion({x, 50}, 4));
    window.Marker({}, MarkerKind::Dot, 6);
    EXPECT_EQ(window.Hits().size(), x < 57 ? 1u : 0u) << x;
    if (x < 57) {
      EXPECT_NEAR(window.Hits()[0].distance, std::max(0.0f, x - 53), 1e-4f);
    }
  }
}

TEST(HitTest, HostileNumbersHitNothing) {
  const float inf = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
  for (float bad : {inf, -inf, nan}) {
    HitTestWindow window(SmallCamera(), MakeHitRegion({50, 50}, 5));
    window.Segment({bad, 0, 0}, {0, 0, 0});
    window.Marker({0, bad, 0}, MarkerKind::Cross, 4);
    const Point3 p[] = {{bad, 0, 0}, {1, 0, 0}, {0, 0, 1}};
    const std::array<int, 3> t[] = {{0, 1, 2}, {0, 1, 3}};
    window.Triangles({p, t});
    EXPECT_TRUE(window.Hits().empty());
    HitTestWindow nowhere(SmallCamera(), MakeHitRegion({nan, bad}, 5));
    nowhere.Segment({-1, 0, 0}, {1, 0, 0});
    Square(nowhere, 0);
    EXPECT_TRUE(nowhere.Hits().empty());
  }
}

// Behind the eye there is nothing to pick, and what passes the eye is picked by its part in front.
TEST(HitTest, BehindTheEye) {
  Camera camera(ViewKind::Perspective, 100, 100);
  const Point3 behind = camera.Eye() - camera.Forward() * 3;
  HitTestWindow window(camera, MakeHitRegion({50, 50}, 5));
  window.SetHitTag(Node(0));
  window.Segment(behind - camera.Right(), behind + camera.Right());
  EXPECT_TRUE(window.Hits().empty());
  window.Segment(behind, camera.Target());
  ASSERT_EQ(window.Hits().size(), 1u);
  EXPECT_GE(window.Hits()[0].depth, camera.NearDepth() * 0.99f);
}

}  // namespace
