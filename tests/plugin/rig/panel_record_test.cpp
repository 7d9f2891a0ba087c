// SPDX-License-Identifier: MIT
#include "plugin/rig/panel_record.h"

#include <cmath>
#include <set>

#include "plugin/rig/detail/panel_layout.h"
#include "rig_system_test.h"

namespace tavrilon {
namespace {

using detail::FreePlace;
using detail::kPanelAxis;
using detail::MirrorRect;
using detail::Overlaps;
using detail::SpreadColumn;

PanelRect At(float x, float y, float width, float height) { return {x, y, width, height}; }

TEST(PanelLayout, AColumnSpreadsNoMoreThanItMust) {
  // Three of height 10 want the same place: the middle one stays, the others make room.
  std::vector<PanelRect> column = {At(0, 50, 20, 10), At(0, 50, 20, 10), At(0, 50, 20, 10), At(0, 200, 20, 10)};
  SpreadColumn(column, 230);
  EXPECT_FLOAT_EQ(column[0].y, 38);
  EXPECT_FLOAT_EQ(column[1].y, 50);
  EXPECT_FLOAT_EQ(column[2].y, 62);
  EXPECT_FLOAT_EQ(column[3].y, 200) << "far away, nothing pushes";
  SpreadColumn(column, 60);
  EXPECT_FLOAT_EQ(column[3].y, 50);
  EXPECT_FLOAT_EQ(column[2].y, 38) << "the floor pushes them all";
}

TEST(PanelLayout, AFreePlaceLeavesRoomForTheMirrored) {
  const std::vector<PanelRect> taken = {At(300, 100, 80, 20), At(400, 100, 100, 20)};
  const PanelRect single = FreePlace(At(330, 105, 15, 15), taken, kSideCenter);
  for (const PanelRect& t : taken) EXPECT_FALSE(Overlaps(single, t));
  const PanelRect right = FreePlace(At(200, 100, 30, 20), taken, kSideRight);  // its mirror would lie on the second
  for (const PanelRect& t : taken) {
    EXPECT_FALSE(Overlaps(right, t));
    EXPECT_FALSE(Overlaps(MirrorRect(right), t));
  }
  EXPECT_EQ(FreePlace(At(10, 10, 5, 5), taken, kSideRight), At(10, 10, 5, 5));
  EXPECT_LT(FreePlace(At(350, 10, 5, 5), taken, kSideRight).x, kPanelAxis) << "the right keeps to its side";
}

class PanelRecordTest : public RigSystemTest, public testing::WithParamInterface<RigType> {
 protected:
  const PanelRecord& Build(RigType type) {
    rig->SetType(static_cast<int>(type));
    rig->CreateRig();
    EXPECT_EQ(rig->BuildError(), L"");
    return rig->Panel();
  }
  static const PanelPicker* Find(const PanelRecord& record, const WStr& label) {
    for (const PanelPicker& picker : record.pickers)
      if (picker.label == label) return &picker;
    return nullptr;
  }
};

TEST_P(PanelRecordTest, NothingOverlapsAndPairsMirror) {
  const PanelRecord& record = Build(GetParam());
  ASSERT_GE(record.pickers.size(), 3u);
  std::vector<std::pair<WStr, PanelRect>> rects;
  for (const PanelPicker& p : record.pickers) rects.emplace_back(p.label, p.rect);
  for (const PanelVisibility& v : record.visibility) rects.emplace_back(v.label, v.rect);
  for (const PanelButton& b : record.buttons) rects.emplace_back(b.label, b.rect);
  for (const PanelGroup& g : record.groups) rects.emplace_back(g.title, g.rect);
  for (size_t i = 0; i < rects.size(); ++i)
    for (size_t j = 0; j < i; ++j)
      EXPECT_FALSE(Overlaps(rects[i].second, rects[j].second))
          << ToUtf8(rects[i].first) << " on " << ToUtf8(rects[j].first);
  for (const PanelPicker& p : record.pickers) {
    if (p.label.substr(0, 2) != L"l_") continue;
    const PanelPicker* right = Find(record, L"r_" + p.label.substr(2));
    ASSERT_NE(right, nullptr) << ToUtf8(p.label);
    EXPECT_EQ(p.rect, MirrorRect(right->rect)) << ToUtf8(p.label);
    EXPECT_LE(right->rect.x + right->rect.width, kPanelAxis);
  }
}

TEST_P(PanelRecordTest, AllHoldsEveryControlAndSwitchesEveryNode) {
  const PanelRecord& record = Build(GetParam());
  const PanelPicker* all = Find(record, L"All");
  ASSERT_NE(all, nullptr);
  EXPECT_EQ(all->type, 1);
  std::set<INode*> controls, rest;
  for (const PanelLink<INode>& link : all->nodes) controls.insert(link.Get());
  for (const PanelVisibility& v : record.visibility)
    for (const PanelLink<INode>& link : v.nodes) rest.insert(link.Get());
  EXPECT_EQ(rest.size(), rig->OwnedNodes().size());
  for (const PanelPicker& picker : record.pickers)
    EXPECT_TRUE(picker.label == L"RB" || controls.count(picker.nodes.front().Get())) << ToUtf8(picker.label);
  EXPECT_FALSE(controls.count(nullptr));
}

TEST_P(PanelRecordTest, SpinnersShowTheirParameters) {
  for (const PanelGroup& group : Build(GetParam()).groups) {
    SCOPED_TRACE(ToUtf8(group.title));
    for (const PanelSpinner& spinner : group.spinners) {
      SCOPED_TRACE(ToUtf8(spinner.label));
      ASSERT_NE(spinner.node.Get(), nullptr);
      const ParamBlock2* attribute = spinner.block.Get();
      ASSERT_NE(attribute, nullptr);
      const ParamRow* row = attribute->GetParamDef(spinner.param);
      ASSERT_NE(row, nullptr);
      EXPECT_TRUE(row->Is(kAnimatable));
      EXPECT_EQ(WStr(row->label), spinner.label == L"Softness" ? L"Soft IK:" : spinner.label + L":");
      EXPECT_EQ(spinner.min, row->range.min);
      EXPECT_EQ(spinner.max, row->range.max);
      const float unit = row->type == corvanta::ParamType::Percent ? 100
                         : row->type == corvanta::ParamType::Angle ? 57.29578f
                                                                   : 1;
      EXPECT_FLOAT_EQ(spinner.initial, row->def.f[0] * unit);
      EXPECT_GE(spinner.rect.x, group.rect.x);
      EXPECT_LE(spinner.rect.x + spinner.rect.width, group.rect.x + group.rect.width);
      EXPECT_LE(spinner.rect.y + spinner.rect.height, group.rect.y + group.rect.height);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Figures, PanelRecordTest,
                         testing::Values(RigType::Biped, RigType::Quadruped, RigType::Minotaur, RigType::Centaur,
                                         RigType::Insect, RigType::Spine, RigType::Head, RigType::Tail),
                         [](const auto& info) { return ToUtf8(kRigTypeNames[static_cast<int>(info.param)]); });

TEST_F(RigSystemTest, ThePanelForgetsNodesThatGoAndFindsThemAgain) {
  EXPECT_TRUE(rig->PanelParts().empty());
  theHold.Flush();
  rig->CreateRig();
  const PanelLink<INode> link = rig->Panel().pickers.front().nodes.front();
  ASSERT_NE(link.Get(), nullptr);
  EXPECT_EQ(rig->PanelParts().front(), L"picker \"Main\" at 300, 565 size 80 x 20: Rig_main");
  theHold.Undo();
  EXPECT_EQ(link.Get(), nullptr);
  EXPECT_NE(rig->PanelParts().front().find(L"(gone)"), WStr::npos);
  theHold.Redo();
  ASSERT_NE(link.Get(), nullptr);
  rig->ResetRig();
  EXPECT_EQ(link.Get(), nullptr);
}

// Without legs the standing pickers move up.
TEST_F(RigSystemTest, APanelWithoutLegsIsShorter) {
  Set(rig_param::kLegPairs, 0);
  rig->CreateRig();
  EXPECT_EQ(rig->Panel().pickers.front().rect, At(300, 371, 80, 20));
}

}  // namespace
}  // namespace tavrilon
