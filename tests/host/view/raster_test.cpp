// SPDX-License-Identifier: MIT
#include "host/view/raster.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <limits>
#include <random>

#include "host/view/backdrop.h"

using namespace corvanta;

namespace {

constexpr float kInf = std::numeric_limits<float>::infinity(), kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr Colour kBlack{0, 0, 0}, kWhite{1, 1, 1}, kRed{1, 0, 0}, kGreen{0, 1, 0};
constexpr ViewKind kViews[] = {ViewKind::Front, ViewKind::Side, ViewKind::Top, ViewKind::Perspective};

// 100 x 100 pixels over ten units, black: a front view where a unit is ten pixels and the middle is (50, 50).
Camera SmallCamera(ViewKind kind = ViewKind::Front) {
  Camera camera(kind, 100, 100);
  camera.LookAt({}, 10);
  return camera;
}

const Backdrop kDark{kBlack, kBlack};

// A square across the view at y, of two triangles.
void Square(GraphicsWindow& window, float y, float half, const Colour& colour, bool shaded = false) {
  window.SetShaded(shaded);
  const Point3 p[] = {{-half, y, -half}, {half, y, -half}, {half, y, half}, {-half, y, half}};
  const std::array<int, 3> t[] = {{0, 1, 2}, {0, 2, 3}};
  window.SetColour(colour);
  window.Triangles({p, t});
}

int CountLit(const QImage& image) {
  int lit = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) lit += (image.pixel(x, y) & 0xffffff) != 0;
  return lit;
}

TEST(Raster, NearerHidesWhateverTheOrder) {
  for (bool nearFirst : {true, false}) {
    SoftwareWindow picture(SmallCamera(), kDark);
    if (nearFirst) Square(picture, -1, 2, kRed);
    Square(picture, 1, 4, kGreen);
    if (!nearFirst) Square(picture, -1, 2, kRed);
    const QImage image = picture.Finish();
    EXPECT_EQ(image.pixel(50, 50), 0xffff0000u);
    EXPECT_EQ(image.pixel(15, 50), 0xff00ff00u);
    EXPECT_EQ(image.pixel(5, 50), 0xff000000u);
  }
}

TEST(Raster, FaceFillsItsPixelsExactly) {
  SoftwareWindow picture(SmallCamera(), kDark);
  Square(picture, 0, 2, kWhite);  // pixels 30 to 69
  const QImage image = picture.Finish();
  EXPECT_EQ(CountLit(image), 40 * 40);
  EXPECT_EQ(image.pixel(30, 30), 0xffffffffu);
  EXPECT_EQ(image.pixel(69, 69), 0xffffffffu);
}

// Two triangles share the diagonal: were a sample drawn twice or never, it would differ from its neighbours.
TEST(Raster, OpacityMixesOnceAcrossTheSharedEdge) {
  SoftwareWindow picture(SmallCamera(), kDark);
  Square(picture, 1, 4, kGreen);
  picture.SetOpacity(0.25f);
  Square(picture, 0, 2, kRed);
  const QImage image = picture.Finish();
  const QRgb mixed = image.pixel(50, 40);
  EXPECT_NEAR(qRed(mixed), 255 * 0.25, 1);  // rounding to 8 bits, once for the share and once for the colour
  EXPECT_NEAR(qGreen(mixed), 255 * 0.75, 1);
  for (int y = 30; y < 70; ++y)
    for (int x = 30; x < 70; ++x) ASSERT_EQ(image.pixel(x, y), mixed) << x << ' ' << y;
}

TEST(Raster, SeeThroughFacesMixFromFarToNear) {
  SoftwareWindow picture(SmallCamera(), kDark);
  picture.SetOpacity(0.5f);
  Square(picture, -1, 3, kRed);   // near, drawn first
  Square(picture, 1, 3, kGreen);  // far
  const QRgb pixel = picture.Finish().pixel(50, 50);
  EXPECT_NEAR(qRed(pixel), 128, 1);
  EXPECT_NEAR(qGreen(pixel), 64, 1);
}

TEST(Raster, OnTopIgnoresDepthAndKeepsItsOrder) {
  SoftwareWindow picture(SmallCamera(), kDark);
  picture.SetDepthTest(false);
  Square(picture, 3, 2, kRed);
  Square(picture, 4, 1, kWhite);
  picture.SetDepthTest(true);
  Square(picture, -4, 4, kGreen);
  const QImage image = picture.Finish();
  EXPECT_EQ(image.pixel(50, 50), 0xffffffffu);
  EXPECT_EQ(image.pixel(35, 50), 0xffff0000u);
  EXPECT_EQ(image.pixel(15, 50), 0xff00ff00u);
}

struct KnownLine {
  const char* name;
  Point3 a, b;
  float width;
};
const KnownLine kLines[] = {
    {"across", {-3, 0, 0}, {3, 0, 0}, 1},       {"upright", {0, 0, -3}, {0, 0, 3}, 2},
    {"slanted", {-2, 0, -2}, {2, 0, 2}, 2},     {"between pixels", {-3, 0, 0.03f}, {3, 0, 0.07f}, 3},
    {"steep", {-0.5f, 0, -3}, {0.5f, 0, 3}, 4},
};
// The light of a line is its length times its width, wherever it lies.
TEST(Raster, LinesKeepTheirWidth) {
  for (const KnownLine& line : kLines) {
    SCOPED_TRACE(line.name);
    SoftwareWindow picture(SmallCamera(), kDark);
    picture.SetLineWidth(line.width);
    picture.Segment(line.a, line.b);
    const QImage image = picture.Finish();
    double light = 0;
    for (int y = 0; y < 100; ++y)
      for (int x = 0; x < 100; ++x) light += qRed(image.pixel(x, y)) / 255.0;
    const double length = Length(line.b - line.a) * 10, wanted = length * line.width;
    // The round ends add up to a square of the width; coverage by distance is a model good to some percent.
    EXPECT_NEAR(light, wanted + line.width * line.width * 0.5, 0.05 * wanted + line.width * line.width);
  }
}

// The face leans away from the viewer, so that half of a line on it lies behind the face's samples beside it.
TEST(Raster, EdgesAreSeenOnTheirFaceButNotThroughIt) {
  for (ViewKind kind : {ViewKind::Front, ViewKind::Perspective}) {
    SoftwareWindow picture(SmallCamera(kind), kDark);
    const Camera& camera = picture.GetCamera();
    const Point3 side = camera.Right() * 2, up = camera.Up() + camera.Forward() * 0.7f;
    const Point3 p[] = {side * -1.5f - up * 3, side * 1.5f - up * 3, side * 1.5f + up * 3, side * -1.5f + up * 3};
    const std::array<int, 3> t[] = {{0, 1, 2}, {0, 2, 3}};
    picture.SetColour(kGreen), picture.SetShaded(false);
    picture.Triangles({p, t});
    picture.SetColour(kWhite), picture.SetLineWidth(3);
    picture.Segment(side * -1, side);  // on the face, through the middle of the picture
    const Point3 behind = camera.Forward() - camera.Up();
    picture.Segment(behind - side, behind + side);
    const QImage image = picture.Finish();
    for (int y = 49; y < 51; ++y) EXPECT_EQ(image.pixel(50, y), 0xffffffffu) << y;
    for (int y = 52; y < 66; ++y) EXPECT_EQ(image.pixel(50, y), 0xff00ff00u) << y;
  }
}

TEST(Raster, BacksAreCulledAndMirrorsAreNot) {
  for (bool mirrored : {false, true}) {
    SoftwareWindow picture(SmallCamera(), kDark);
    picture.SetCullBack(true);
    if (mirrored) picture.SetTransform(ScaleMatrix({-1, 1, 1}));
    Square(picture, 0, 2, kRed);  // counterclockwise from the front
    EXPECT_EQ(picture.Finish().pixel(50, 50), 0xffff0000u);
    Matrix3 turned = TransMatrix({});
    turned.row[0] = {-1, 0, 0}, turned.row[1] = {0, -1, 0};
    picture.SetTransform(turned);
    Square(picture, 0, 2, kRed);
    EXPECT_EQ(picture.Finish().pixel(50, 50), 0xff000000u);
  }
}

TEST(Raster, LightFallsFromTheViewer) {
  SoftwareWindow picture(SmallCamera(), kDark);
  const auto shade = [&](const Matrix3& tm) {
    picture.SetTransform(tm);
    Square(picture, 0, 2, kWhite, true);
    return qRed(picture.Finish().pixel(50, 50));
  };
  Matrix3 away;  // the same square, turned by 80 degrees about Z
  away.row[0] = {0.17365f, 0.98481f, 0}, away.row[1] = {-0.98481f, 0.17365f, 0};
  EXPECT_GT(shade({}), 180);
  EXPECT_LT(shade(away), shade({}) - 40);
  EXPECT_EQ(shade({}), shade(ScaleMatrix({-1, 1, 1})));
  EXPECT_EQ(shade({}), shade(ScaleMatrix({1, -1, 1}))) << "backs are lit as fronts are";
}

// A floor that reaches from behind the eye to the horizon fills the lower part of the picture and nothing above.
TEST(Raster, FloorIsCutAtTheNearPlane) {
  Camera camera(ViewKind::Perspective, 100, 100);
  camera.LookAt({0, 0, 1}, 4);
  SoftwareWindow picture(camera, kDark);
  const Point3 p[] = {{-1e6f, -1e6f, 0}, {1e6f, -1e6f, 0}, {1e6f, 1e6f, 0}, {-1e6f, 1e6f, 0}};
  const std::array<int, 3> t[] = {{0, 1, 2}, {0, 2, 3}};
  picture.SetColour(kWhite), picture.SetShaded(false);
  picture.Triangles({p, t});
  const QImage image = picture.Finish();
  // The horizon lies where a far point on the ground is seen.
  ScreenPoint s;
  ASSERT_TRUE(camera.WorldToScreen(camera.Eye() + Point3{camera.Forward().x, camera.Forward().y, 0} * 100, s));
  const int horizon = static_cast<int>(s.y);
  ASSERT_GT(horizon, 5);
  ASSERT_LT(horizon, 90);
  for (int x = 0; x < 100; x += 9) {
    EXPECT_EQ(image.pixel(x, 99), 0xffffffffu) << x;
    EXPECT_EQ(image.pixel(x, horizon + 3), 0xffffffffu) << x;
    EXPECT_EQ(image.pixel(x, horizon - 3), 0xff000000u) << x;
  }
}

TEST(Raster, NothingBehindTheEye) {
  SoftwareWindow picture(SmallCamera(ViewKind::Perspective), kDark);
  const Camera& camera = picture.GetCamera();
  const Point3 behind = camera.Eye() * 2 - camera.Target();
  picture.Marker(behind, MarkerKind::Dot, 20);
  picture.WorldText(behind, L"behind");
  picture.Segment(behind - camera.Right(), behind + camera.Right());
  EXPECT_EQ(CountLit(picture.Finish()), 0);
}

TEST(Raster, HostileNumbersAreLeftOut) {
  const float hostile[] = {kNaN, kInf, -kInf, 3e38f, -3e38f, 1e20f, 1e-40f, 1e6f, 0};
  for (ViewKind kind : kViews) {
    SoftwareWindow picture(SmallCamera(kind), kDark);
    for (float a : hostile)
      for (float b : hostile) {
        const Point3 p[] = {{a, b, 0}, {0, a, b}, {b, 0, a}};
        const std::array<int, 3> t[] = {{0, 1, 2}, {0, 1, 7}, {-1, 1, 2}};
        const Point3 n[] = {{a, a, a}, {b, a, 0}, {0, 0, 0}};
        picture.SetLineWidth(a), picture.SetOpacity(b), picture.SetColour(Colour{a, b, a}), picture.SetTextSize(b);
        picture.SetShaded(a > b);
        picture.Polyline(p, true);
        picture.Triangles({p, t});
        picture.Triangles({p, t, n});
        picture.Marker(p[0], MarkerKind::Circle, b);
        picture.Marker(p[1], MarkerKind::Dot, a);
        picture.Text({a, b}, L"x", TextAnchor::Centre);
        picture.WorldText(p[0], L"x");
        picture.SetTransform(ScaleMatrix({a, b, a}));
        picture.Segment({1, 1, 1}, {-1, 2, 3});
        picture.SetTransform({});
      }
    EXPECT_FALSE(picture.Finish().isNull());
  }
  SoftwareWindow nothing(SmallCamera(), kDark);
  nothing.Segment({kNaN, 0, 0}, {1, 0, 0});
  nothing.Segment({kInf, 0, 0}, {1, 0, 0});
  nothing.Marker({0, kNaN, 0}, MarkerKind::Box, 9);
  EXPECT_EQ(CountLit(nothing.Finish()), 0);
}

// What crosses the picture from far outside is cut to the same pixels as the part inside.
TEST(Raster, LongLinesLookLikeShortOnes) {
  for (float reach : {1e3f, 1e6f, 1e12f}) {
    SoftwareWindow cut(SmallCamera(), kDark), whole(SmallCamera(), kDark);
    cut.Segment({-reach, 0, -reach}, {reach, 0, reach});
    whole.Segment({-20, 0, -20}, {20, 0, 20});
    EXPECT_EQ(cut.Finish(), whole.Finish()) << reach;
  }
}

TEST(Raster, MarkersKeepTheirSizeAndPlace) {
  for (MarkerKind kind : {MarkerKind::Cross, MarkerKind::Plus, MarkerKind::Dot, MarkerKind::Box, MarkerKind::Circle,
                          MarkerKind::Diamond}) {
    SoftwareWindow picture(SmallCamera(), kDark);
    picture.Marker({2, 0, 0}, kind, 10);
    const QImage image = picture.Finish();
    int left = 100, right = 0, top = 100, bottom = 0;
    for (int y = 0; y < 100; ++y)
      for (int x = 0; x < 100; ++x)
        if (qRed(image.pixel(x, y)) > 64)
          left = std::min(left, x), right = std::max(right, x), top = std::min(top, y), bottom = std::max(bottom, y);
    // Ten pixels about (70, 50), and up to one pixel of line on each side.
    EXPECT_NEAR(left, 65, 1);
    EXPECT_NEAR(right, 74, 1);
    EXPECT_NEAR(top, 45, 1);
    EXPECT_NEAR(bottom, 54, 1);
  }
}

TEST(Raster, LettersAreSeen) {
  ASSERT_TRUE(CanDrawText()) << "no font is installed: pictures would lack their labels (package fonts-dejavu-core)";
  SoftwareWindow picture(SmallCamera(), kDark);
  picture.Text({50, 50}, L"M", TextAnchor::Centre);
  const QImage centred = picture.Finish();
  EXPECT_GT(CountLit(centred), 20);
  picture.Text({50, 50}, L"M", TextAnchor::Right);
  EXPECT_NE(picture.Finish(), centred);
  EXPECT_EQ(CountLit(picture.Finish()), 0) << "a finished window starts anew";
}

TEST(Raster, WorldTextHidesWithItsPoint) {
  for (bool depthTest : {true, false}) {
    SoftwareWindow picture(SmallCamera(), kDark);
    Square(picture, 0, 4, kGreen);
    picture.SetColour(kRed), picture.SetDepthTest(depthTest);
    picture.WorldText({0, 2, 0}, L"behind");
    const QImage image = picture.Finish();
    bool red = false;
    for (int x = 45; x < 95; ++x)
      for (int y = 35; y < 60; ++y) red |= qRed(image.pixel(x, y)) > 200;
    EXPECT_EQ(red, !depthTest);
  }
}

TEST(Raster, SamePixelsEachTime) {
  const auto draw = [](SoftwareWindow& window) {
    std::mt19937 rng(3);
    std::uniform_real_distribution<float> at(-4, 4);
    DrawGrid(window);
    for (int i = 0; i < 300; ++i) {
      const Point3 p[] = {{at(rng), at(rng), at(rng)}, {at(rng), at(rng), at(rng)}, {at(rng), at(rng), at(rng)}};
      const std::array<int, 3> t[] = {{0, 1, 2}};
      window.SetOpacity(i % 3 ? 1 : 0.4f);
      window.SetColour(0x102030u * static_cast<uint32_t>(i % 7));
      window.Triangles({p, t});
      window.Polyline(p, true);
    }
    DrawAxisMark(window);
    return window.Finish();
  };
  SoftwareWindow once(SmallCamera(ViewKind::Perspective)), again(SmallCamera(ViewKind::Perspective));
  const QImage image = draw(once);
  EXPECT_EQ(image, draw(again));
  EXPECT_EQ(image, draw(once));
}

TEST(Raster, PngGoesToDiskOrTellsWhy) {
  QTemporaryDir folder;
  const WStr base = folder.path().toStdWString();
  SoftwareWindow picture(SmallCamera(), kDark);
  Square(picture, 0, 2, kRed);
  const QImage image = picture.Finish();
  WStr error;
  ASSERT_TRUE(SavePng(image, base + L"/shot.png", error));
  EXPECT_EQ(QImage(folder.filePath("shot.png")).convertToFormat(QImage::Format_RGB32), image);
  EXPECT_FALSE(SavePng(image, base + L"/no/shot.png", error));
  EXPECT_NE(error.find(base + L"/no"), WStr::npos);
  EXPECT_NE(error.find(L"does not exist"), WStr::npos);
  EXPECT_FALSE(SavePng(image, base, error)) << "a folder is no file";
  EXPECT_FALSE(SavePng(image, L"", error));
  EXPECT_FALSE(SavePng(QImage(), base + L"/empty.png", error));
  EXPECT_FALSE(QFile::exists(folder.filePath("empty.png")));
}

}  // namespace
