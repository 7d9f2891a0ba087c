// SPDX-License-Identifier: MIT
// What the picker panel shows of a limb: pickers on the body and in the block of its hand or foot, and the spinners of
// its attributes.
#include "host/core/param_block.h"
#include "plugin/attributes/attrib_params.h"
#include "plugin/rig/detail/limb.h"

namespace tavrilon::detail {

using namespace corvanta;

namespace {

WStr Title(const Limb& limb, const wchar_t* what) {
  WStr title = limb.row.titleBefore;
  title += limb.side == kSideRight ? L"Right " : L"Left ";
  title += what;
  return limb.pair > 0 ? title + L" " + std::to_wstring(limb.pair + 1) : title;
}

void RecordDigits(const Limb& limb) {
  if (!*limb.row.digit) return;
  // Front and hind feet of one pair number have blocks of their own, the front ones below.
  const int block = limb.row.foot && limb.row.pairs == rig_param::kArmPairs ? limb.pair + 100 : limb.pair;
  const int digits = limb.Count(limb.row.digits), joints = limb.Count(limb.row.digitBones);
  for (int i = 0; i < digits; ++i)
    for (int j = 0; j < joints; ++j) {
      const PartName name{limb.WordOfPair(limb.row.digit), limb.side, i, j};
      const auto made = limb.parts.state.anchors.find(name.Base());
      if (made == limb.parts.state.anchors.end()) continue;
      limb.parts.panel.DigitPicker(made->second.control, limb.side, block, limb.row.foot, i, j);
    }
}

void RecordSolver(const Limb& limb) {
  using namespace limb_attrib;
  std::vector<SpinnerRow> rows = {{L"IKFK Blend", kIkfkBlend},
                                  {L"Manual Stretch", kManualStretch},
                                  {L"Auto Stretch", kAutoStretch},
                                  {L"Softness", kSoftness},
                                  {L"Rotation Space", kRotationSpace}};
  if (!limb.bendy.empty()) rows.push_back({L"Bendy", kBendy});
  if (limb.controls.size() - static_cast<size_t>(limb.row.firstJoint) >= 4)
    rows.push_back({L"Flexion Bias", kFlexionBias});
  limb.parts.panel.Group(Title(limb, limb.row.titleAfter), limb.chain, limb.chain, limb.attrib, rows);
}

void RecordFoot(const Limb& limb, INode* control) {
  using namespace foot_attrib;
  constexpr SpinnerRow kRows[] = {{L"Foot Roll", kFootRoll},   {L"Foot Break", kFootBreak}, {L"Banking", kBanking},
                                  {L"Heel Pivot", kHeelPivot}, {L"Ball Pivot", kBallPivot}, {L"Toe Pivot", kToePivot},
                                  {L"Toe Bend", kToeBend}};
  limb.parts.panel.Group(Title(limb, L"Foot"), nullptr, control, limb.footAttrib, kRows);
}

}  // namespace

void RecordLimb(Limb& limb) {
  PanelRecorder& panel = limb.parts.panel;
  for (INode* control : limb.controls) panel.BodyPicker(control, PickerKind::Limb);
  INode* goal = limb.goalParent ? limb.goalParent : limb.goal;
  panel.BodyPicker(goal, PickerKind::Goal);
  panel.BodyPicker(limb.pole, PickerKind::Pole);
  panel.BodyPicker(limb.chain, PickerKind::Limb);
  RecordDigits(limb);
  if (limb.chain) RecordSolver(limb);
  if (limb.footAttrib) RecordFoot(limb, goal);
}

}  // namespace tavrilon::detail
