// SPDX-License-Identifier: MIT
#include "host/anim/curve_control.h"

#include <cmath>

#include "host/core/chunks.h"
#include "host/core/hold.h"
#include "host/core/remap.h"
#include "support/test_objects.h"

namespace corvanta {
namespace {

TEST(PointCurveTest, KnownValues) {
  PointCurve curve;
  EXPECT_EQ(ValueAt(curve, 7), 7) << "no points: x itself";
  EXPECT_EQ(InsertPoint(curve, {10, 20, 0, 0}), 0);
  EXPECT_EQ(ValueAt(curve, -5), 20);
  EXPECT_EQ(InsertPoint(curve, {0, 0, 1, 0}), 0);
  EXPECT_EQ(InsertPoint(curve, {20, 30, 0, 2}), 2);
  EXPECT_EQ(InsertPoint(curve, {NAN, 0, 0, 0}), -1);
  EXPECT_FLOAT_EQ(ValueAt(curve, 5), 10) << "flat ends: half-way in the middle";
  EXPECT_FLOAT_EQ(ValueAt(curve, 10), 20);
  EXPECT_FLOAT_EQ(ValueAt(curve, -3), -3) << "straight on before the first";
  EXPECT_FLOAT_EQ(ValueAt(curve, 25), 40) << "and after the last";
  EXPECT_EQ(InsertPoint(curve, {10, 0, 0, 0}), 1) << "over the one at the same x";
  EXPECT_EQ(curve.points.size(), 3u);
  EXPECT_FLOAT_EQ(ValueAt(curve, 10), 0);
}

class CurveControlTest : public testing_objects::SceneTest {};

TEST_F(CurveControlTest, UndoesAndClones) {
  const Ref<CurveControl> curves(new CurveControl);
  curves->AddCurve();
  EXPECT_EQ(ValueAt(*curves->GetCurve(0), 7), 7);
  theHold.Begin();
  EXPECT_EQ(curves->SetPoint(0, {0.5f, 3, 0, 0}), 1);
  EXPECT_TRUE(curves->DeletePoint(0, 2));
  EXPECT_EQ(curves->AddCurve(), 1);
  theHold.Accept(L"Draw");
  theHold.Undo();
  EXPECT_EQ(curves->NumCurves(), 1);
  EXPECT_TRUE(*curves->GetCurve(0) == CurveControl::Straight());
  theHold.Redo();
  EXPECT_EQ(curves->GetCurve(0)->points.size(), 2u);
  const Ref<CurveControl> clone(static_cast<CurveControl*>(CloneRefHierarchy(curves.Get())));
  EXPECT_TRUE(*clone->GetCurve(0) == *curves->GetCurve(0));
  EXPECT_FALSE(curves->DeletePoint(0, 2));
  EXPECT_FALSE(curves->DeleteCurve(2));
  EXPECT_EQ(curves->SetPoint(5, {}), -1);
}

TEST_F(CurveControlTest, LoadsWhatItSavedAndRefusesDamage) {
  const Ref<CurveControl> curves(new CurveControl);
  curves->AddCurve({{{2, 3, 0, 0}, {1, 4, -1, 5}}});
  curves->AddCurve();
  ISave save;
  ASSERT_EQ(curves->Save(save), IOResult::OK);
  std::vector<uint8_t> bytes = save.TakeBytes();
  const Ref<CurveControl> read(new CurveControl);
  ILoad load(bytes);
  ASSERT_EQ(read->Load(load), IOResult::OK);
  ASSERT_EQ(read->NumCurves(), 2);
  EXPECT_TRUE(*read->GetCurve(0) == *curves->GetCurve(0));
  EXPECT_EQ(read->GetCurve(0)->FirstX(), 1);
  for (size_t size = 0; size < bytes.size(); ++size) {
    ILoad part(std::span<const uint8_t>(bytes.data(), size));
    EXPECT_EQ(size > 0, read->Load(part) != IOResult::OK) << size;
  }
  // The first point's x becomes a NaN: behind the chunk's head of six bytes and the two counts.
  std::fill_n(bytes.begin() + 6 + 8, 4, uint8_t{0xFF});
  ILoad damaged(bytes);
  EXPECT_NE(read->Load(damaged), IOResult::OK);
}

}  // namespace
}  // namespace corvanta
