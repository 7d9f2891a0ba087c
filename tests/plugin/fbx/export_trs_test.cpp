// SPDX-License-Identifier: MIT
// Local matrices as channels: plain values, no scene.
#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "plugin/fbx/exporter/curves.h"
#include "plugin/fbx/exporter/names.h"
#include "plugin/fbx/exporter/sample_times.h"
#include "plugin/fbx/exporter/trs.h"

namespace tavrilon::fbx_export {
namespace {

using namespace fbx;

double Distance(const Affine& a, const Affine& b) {
  double d = 0;
  for (size_t i = 0; i < 4; ++i) d = std::max(d, Length(a.row[i] - b.row[i]));
  return d;
}

// A walk of small random steps through all rotations, over gimbal lock, with scales of any size, mirrored or not: the
// parts give the matrix back, and no angle jumps.
TEST(TrsTrack, GivesTheMatrixBackWithoutJumps) {
  std::mt19937 rng(11);
  std::uniform_real_distribution<double> step(-6, 6), place(-1000, 1000), size(0.01, 20);
  for (const double sign : {1.0, -1.0}) {
    TrsTrack track;
    Affine turn;
    for (int i = 0; i < 3000; ++i) {
      turn = turn * Rotation({step(rng), step(rng), step(rng)});
      const Affine local =
          Scaling({size(rng), size(rng), sign * size(rng)}) * turn * Translation({place(rng), place(rng), place(rng)});
      const Trs before = track.Last();
      ASSERT_EQ(track.Split(local), TrsFault::None);
      // The walk's matrix drifts from a rotation by some 1e-13; sizes go up to 1000.
      ASSERT_LT(Distance(ToMatrix(track.Last()), local), 1e-8);
      for (size_t axis = 0; axis < 3 && i > 0; ++axis)
        ASSERT_LE(std::abs(track.Last().rotation[axis] - before.rotation[axis]), 180) << i;
    }
  }
}

// Each is told by the axis that keeps the rotation at rest.
TEST(TrsTrack, MirroredAxisStaysTheSame) {
  for (const Vector3& scale : {Vector3{-2, 1, 1}, {1, -3, 1}, {1, 1, -1}, {-1, -1, -1}}) {
    TrsTrack track;
    for (int degrees = 0; degrees < 360; degrees += 10) {
      ASSERT_EQ(track.Split(Scaling(scale) * Rotation({0, static_cast<double>(degrees), 0})), TrsFault::None);
      EXPECT_LT(Length(track.Last().scaling - scale), 1e-9) << scale.x << ' ' << scale.y << ", " << degrees;
    }
  }
}

// A scale through nothing: the axis turns its sign and nothing else moves.
TEST(TrsTrack, ScaleGoesThroughNothing) {
  TrsTrack track;
  const Affine turn = Rotation({20, 30, 40});
  for (int i = 10; i >= -10; --i) {
    ASSERT_EQ(track.Split(Scaling({1, i / 10.0, 1}) * turn), TrsFault::None);
    EXPECT_NEAR(track.Last().scaling.y, i / 10.0, 1e-12);
    EXPECT_LT(Length(track.Last().rotation - Vector3{20, 30, 40}), 1e-9) << i;
  }
  ASSERT_EQ(track.Split(Scaling({0, 0, 0})), TrsFault::None);
  EXPECT_LT(Length(track.Last().rotation - Vector3{20, 30, 40}), 1e-9) << "a point keeps the rotation before";
  ASSERT_EQ(track.Split(Scaling({0, 0, 2}) * turn), TrsFault::None);
  EXPECT_LT(Length(track.Last().rotation - Vector3{20, 30, 40}), 1e-9);
}

TEST(TrsTrack, RefusesWhatAFileCannotSay) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  struct Row {
    const char* name;
    Affine local;
    TrsFault fault;
  };
  Affine sheared, hardly;
  sheared.row[1] = {2e-4, 1, 0};
  hardly.row[1] = {0.5e-4, 1, 0};
  const Row kRows[] = {
      {"sheared", sheared, TrsFault::Shear},
      {"hardly sheared", hardly, TrsFault::None},
      {"not a number", Translation({0, nan, 0}), TrsFault::NotFinite},
      {"endless", Scaling({1, 1, std::numeric_limits<double>::infinity()}), TrsFault::NotFinite},
      {"far", Translation({2e15, 0, 0}), TrsFault::OutOfRange},
      {"large", Scaling({1, 2e15, 1}), TrsFault::OutOfRange},
      {"as far as it goes", Translation({1e15, 0, 0}), TrsFault::None},
  };
  for (const Row& row : kRows) EXPECT_EQ(TrsTrack().Split(row.local), row.fault) << row.name;
}

TEST(Curves, ConstantsGetOneKey) {
  const std::vector<int64_t> times{0, 10, 20};
  struct Row {
    const char* name;
    std::vector<float> values;
    double neat;
    std::vector<float> expected;
  };
  const Row kRows[] = {
      {"still", {5, 5, 5}, 0, {5}},
      {"noise", {5, 5.0005f, 5.001f}, 0, {5.0005f}},
      {"noise about a neat value", {0.9995f, 1, 1.0005f}, 1, {1}},
      {"slow", {5, 5.001f, 5.002f}, 0, {5, 5.001f, 5.002f}},
      {"one peak", {1, 2, 1}, 1, {1, 2, 1}},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    const FbxAnimCurve curve = MakeCurve(times, row.values, 0.0011, row.neat);
    ASSERT_EQ(curve.values.size(), row.expected.size());
    for (size_t i = 0; i < curve.values.size(); ++i) EXPECT_NEAR(curve.values[i], row.expected[i], 1e-6f);
    EXPECT_EQ(curve.times, curve.values.size() == 1 ? std::vector<int64_t>{0} : times);
    EXPECT_EQ(curve.ShapeOf(0).interpolation, Interpolation::Linear);
  }
}

// Samples of a frame need not be whole ticks apart; frames are met all the same.
TEST(SampleTimes, MeetEveryFrame) {
  for (const int ticksPerFrame : {250, 200, 100, 7, 1})
    for (int subSamples = 1; subSamples <= std::min(ticksPerFrame, 100); ++subSamples) {
      const int64_t count = SampleTimes::Count(-ticksPerFrame, 9 * ticksPerFrame, ticksPerFrame, subSamples);
      ASSERT_EQ(count, 10 * subSamples + 1);
      const SampleTimes times{-ticksPerFrame, ticksPerFrame, subSamples, static_cast<int>(count)};
      for (int frame = 0; frame <= 10; ++frame) ASSERT_EQ(times.At(frame * subSamples), (frame - 1) * ticksPerFrame);
      for (int i = 1; i < times.count; ++i) ASSERT_LT(times.At(i - 1), times.At(i));
    }
}

TEST(UniqueNames, NumbersWhatComesTwice) {
  UniqueNames names;
  for (const wchar_t* name : {L"arm", L"arm", L"arm_1", L"", L"arm"}) names.Reserve(name);
  bool changed = true;
  EXPECT_EQ(names.Take(L"arm", "Node", &changed), "arm");
  EXPECT_FALSE(changed);
  EXPECT_EQ(names.Take(L"arm", "Node", &changed), "arm_2") << "arm_1 is wanted by another";
  EXPECT_TRUE(changed);
  EXPECT_EQ(names.Take(L"arm_1", "Node"), "arm_1");
  EXPECT_EQ(names.Take(L"", "Node"), "Node");
  EXPECT_EQ(names.Take(L"arm", "Node"), "arm_3");
  EXPECT_EQ(names.Take(std::wstring({L'a', 0, 1, L'b'}), "Node"), "a__b");
  EXPECT_EQ(names.Take(L"B\x00E4r", "Node"), "B\xC3\xA4r");
}

}  // namespace
}  // namespace tavrilon::fbx_export
