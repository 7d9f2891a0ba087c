// SPDX-License-Identifier: MIT
#include "host/view/recorder.h"

#include <gtest/gtest.h>

#include "host/view/backdrop.h"

using namespace corvanta;

namespace {

TEST(Recorder, KeepsCallsWithTheirState) {
  RecordingWindow window;
  window.SetTransform(TransMatrix({0, 0, 5}));
  window.SetColour(0xFF8000);
  {
    const DrawScope scope(window);
    window.SetDepthTest(false);
    window.SetLineWidth(3);
    window.Segment({1, 0, 0}, {2, 0, 0});
  }
  window.Text({10, 20}, L"FIGURE MODE ON", TextAnchor::Centre);
  ASSERT_EQ(window.Primitives().size(), 2u);
  const Primitive& line = window.Primitives()[0];
  EXPECT_EQ(line.points[1], (Point3{2, 0, 5}));
  EXPECT_FALSE(line.state.depthTest);
  EXPECT_EQ(line.state.lineWidth, 3);
  EXPECT_EQ(PackColour(line.state.colour), 0xFF8000u);
  EXPECT_TRUE(window.Primitives()[1].state.depthTest) << "a scope gives the state back";
  EXPECT_TRUE(window.HasText(L"FIGURE MODE ON"));
  EXPECT_FALSE(window.HasText(L"FIGURE"));
}

TEST(Recorder, BoxHasTwelveEdges) {
  RecordingWindow window;
  window.BoxEdges({{0, 0, 0}, {1, 2, 3}});
  EXPECT_EQ(window.Count(PrimitiveKind::Polyline), 12);
  float length = 0;
  for (const Primitive& p : window.Primitives()) length += Length(p.points[1] - p.points[0]);
  EXPECT_EQ(length, 4 * (1 + 2 + 3));
  window.Clear();
  window.BoxEdges({});
  EXPECT_TRUE(window.Primitives().empty());
}

// The axis mark points as the axes do: each line's direction on the screen is that of its world axis.
TEST(Backdrop, AxisMarkPointsAlongTheAxes) {
  for (ViewKind kind : {ViewKind::Front, ViewKind::Side, ViewKind::Top, ViewKind::Perspective}) {
    const Camera camera(kind, 640, 480);
    RecordingWindow window(camera);
    DrawAxisMark(window);
    EXPECT_EQ(window.Count(PrimitiveKind::Polyline), kind == ViewKind::Perspective ? 3 : 2);
    for (const Primitive& p : window.Primitives()) {
      if (p.kind != PrimitiveKind::Polyline) continue;
      const uint32_t* colour = std::find(kAxisColours, kAxisColours + 3, PackColour(p.state.colour));
      ASSERT_NE(colour, kAxisColours + 3);
      Point3 axis;
      axis[static_cast<int>(colour - kAxisColours)] = 1;
      const Point3 arm = p.points[1] - p.points[0];
      const Point3 wanted = axis - camera.Forward() * Dot(axis, camera.Forward());
      EXPECT_NEAR(Dot(Normalize(arm), Normalize(wanted)), 1, 1e-4f);  // float directions of short arms
    }
  }
}

TEST(Backdrop, GridStepsAreRound) {
  struct Row {
    float span, step;
  };
  for (const Row& row : {Row{6.5f, 1}, Row{11.9f, 1}, Row{12.1f, 2}, Row{0.13f, 0.02f}, Row{650, 100}}) {
    Camera camera(ViewKind::Front);
    camera.LookAt({}, row.span);
    EXPECT_NEAR(GridStep(camera), row.step, row.step * 1e-4f) << row.span;
  }
}

TEST(Backdrop, GridHasItsAxesThroughTheOrigin) {
  for (ViewKind kind : {ViewKind::Front, ViewKind::Top, ViewKind::Perspective}) {
    Camera camera(kind);
    camera.LookAt({0.3f, 0.2f, 0.1f}, 4);
    RecordingWindow window(camera);
    DrawGrid(window);
    int onAxis = 0;
    for (const Primitive& p : window.Primitives()) onAxis += PackColour(p.state.colour) == kAxisColours[0];
    EXPECT_GT(onAxis, 0);
    EXPECT_LT(window.Primitives().size(), 20000u);
    for (const Primitive& p : window.Primitives())
      if (PackColour(p.state.colour) == kAxisColours[0]) {
        EXPECT_EQ(kind == ViewKind::Front ? p.points[0].z : p.points[0].y, 0);
      }
  }
}

}  // namespace
