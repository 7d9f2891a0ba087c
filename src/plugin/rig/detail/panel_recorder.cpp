// SPDX-License-Identifier: MIT
#include "plugin/rig/detail/panel_recorder.h"

#include <algorithm>
#include <map>

#include "plugin/frame/animation_manager_mod.h"
#include "plugin/rig/detail/panel_layout.h"

namespace tavrilon::detail {

using namespace corvanta;

namespace {

struct KindSize {
  float width, height;
};
/// By PickerKind.
constexpr KindSize kKindSizes[] = {{70, 16}, {50, 14}, {44, 12}, {40, 34}, {15, 15}, {18, 18}, {12, 12}};

constexpr float kDigitStep = 16, kDigitSize = 13;
/// Upper left corners of the right hand's and the right foot's block.
constexpr float kHandX = 30, kHandY = 330, kFootX = 190, kFootY = 520;

/// Of the picker of the main control, which stands below the figure.
constexpr float kMainX = 300, kMainY = 565;

constexpr float kGroupWidth = 165, kGroupBottom = 540, kRowHeight = 26;

constexpr wchar_t kAddKey[] = L"Tavrilon.activeUIPanel.AddControlsKey selected:true";
constexpr wchar_t kDelKey[] = L"Tavrilon.activeUIPanel.DeleteControlsKey selected:true";
constexpr wchar_t kReset[] = L"Tavrilon.activeUIPanel.ResetControls selected:true";

WStr TagOf(INode* control) {
  const ParamBlock2* manager = ManagerBlock(control);
  return manager ? manager->GetStr(AnimationManagerMod::kTags) : control->GetName();
}

int SideOf(const WStr& tag) {
  const WStr prefix = tag.substr(0, 2);
  return prefix == L"r_" ? kSideRight : prefix == L"l_" ? kSideLeft : kSideCenter;
}

/// Digits of a front limb, whether hand, paw or hoof.
bool IsFront(const WStr& tag) {
  const WStr word = WithoutSide(tag);
  return word.find(L"finger") == 0 || word.find(L"metacarpal") == 0 || word.find(L"front_") == 0;
}

void AddPicker(PanelRecord& record, INode* control, const PanelRect& rect) {
  record.pickers.push_back({TagOf(control), {control}, rect, control->GetWireColor(), 0});
}

std::vector<PanelLink<INode>> Links(const std::vector<INode*>& nodes) { return {nodes.begin(), nodes.end()}; }

/// How a spinner shows a parameter of that type.
void SetUnits(PanelSpinner& spinner, ParamType type) {
  switch (type) {
    case ParamType::Percent:
      spinner.weight = 100, spinner.step = 1;
      break;
    case ParamType::Angle:
      spinner.weight = 57.29578f, spinner.step = 0.5f;
      break;
    default:
      spinner.weight = 1, spinner.step = 0.1f;
  }
}

}  // namespace

// The right and the left of a pair stand at mirrored places, whatever the view.
void PanelRecorder::BodyPicker(INode* control, PickerKind kind) {
  if (!control || height_ <= 0) return;
  const Point3 place = control->GetNodeTM(0).GetTrans() / height_;
  const int side = SideOf(TagOf(control));
  const KindSize size = kKindSizes[static_cast<int>(kind)];
  PanelRect rect{kPanelAxis + 430 * place.x, 555 - 515 * place.z + cursorY_, size.width, size.height};
  if (fourLegged_) rect.x += (side == kSideRight ? -120 : 120) * place.y;
  rect.x += cursorX_ - size.width / 2;
  rect.y -= size.height / 2;
  // What stands far to the front or the back would cross over in a side view.
  if (side == kSideRight) rect.x = std::min(rect.x, kPanelAxis - kPanelGap - rect.width);
  if (side == kSideLeft) rect.x = std::max(rect.x, kPanelAxis + kPanelGap);
  body_.push_back({control, kind, rect});
}

void PanelRecorder::DigitPicker(INode* control, int side, int pair, bool foot, int digit, int joint) {
  if (control) digits_.push_back({control, side, pair, foot, digit, joint});
}

void PanelRecorder::Group(const WStr& title, INode* chain, INode* node, ParamBlock2* block,
                          std::span<const SpinnerRow> spinners) {
  if (!block) return;
  PanelGroup group;
  group.title = title;
  const float rows = static_cast<float>(spinners.size()) + (chain ? 1 : 0);
  group.rect = {groupX_, groupY_, kGroupWidth, kRowHeight + kRowHeight * rows};
  if (group.rect.y + group.rect.height > kGroupBottom && groupY_ > 20) {
    groupX_ += kGroupWidth + 5;
    groupY_ = 20;
    group.rect.x = groupX_, group.rect.y = groupY_;
  }
  float y = group.rect.y + 20;
  if (chain) {
    group.buttons.push_back({L"FK", L"chain.controller.FK()", L"chain", chain, {groupX_ + 10, y, 70, 20}});
    group.buttons.push_back({L"IK", L"chain.controller.IK()", L"chain", chain, {groupX_ + 85, y, 70, 20}});
    y += kRowHeight;
  }
  for (const SpinnerRow& row : spinners) {
    const ParamRow* def = block->GetParamDef(row.param);
    if (!def) continue;
    PanelSpinner spinner;
    spinner.label = row.label;
    spinner.node = node;
    spinner.block = block;
    spinner.param = row.param;
    SetUnits(spinner, def->type);
    spinner.min = def->range.min, spinner.max = def->range.max;  // told in shown units
    spinner.initial = def->def.f[0] * spinner.weight;
    spinner.rect = {groupX_ + 95, y, 55, 20};
    group.spinners.push_back(spinner);
    y += kRowHeight;
  }
  groupY_ += group.rect.height + 6;
  groups_.push_back(std::move(group));
}

// Hands, and feet, stand one block below the other, a pair on the same height.
void PanelRecorder::AddDigits(PanelRecord& record, std::vector<PanelRect>& taken) const {
  std::map<std::pair<int, bool>, int> rows[2];  // of hands and feet, by pair, front feet before hind feet
  const auto block = [](const DigitRequest& d) { return std::pair{d.pair, !IsFront(TagOf(d.control))}; };
  for (const DigitRequest& d : digits_) {
    int& count = rows[d.foot][block(d)];
    count = std::max(count, d.joint + 1);
  }
  for (const DigitRequest& d : digits_) {
    float top = d.foot ? kFootY : kHandY;
    for (const auto& [above, count] : rows[d.foot])
      if (above < block(d)) top += static_cast<float>(count) * kDigitStep + 8;
    const float left = d.foot ? kFootX : kHandX;
    PanelRect rect{left + kDigitStep * static_cast<float>(d.digit), top + kDigitStep * static_cast<float>(d.joint),
                   kDigitSize, kDigitSize};
    if (d.side == kSideLeft) rect = MirrorRect(rect);
    AddPicker(record, d.control, rect);
    taken.push_back(rect);
  }
}

// The trunk's column first, then what finds room beside it. A left picker mirrors its right one.
void PanelRecorder::AddBody(PanelRecord& record, std::vector<PanelRect>& taken) const {
  std::vector<PanelRect> column;
  std::vector<INode*> owners;
  for (const BodyRequest& request : body_) {
    if (request.kind > PickerKind::Head) continue;
    column.push_back(request.rect);
    owners.push_back(request.control);
  }
  SpreadColumn(column, kMainY + cursorY_ - kPanelGap);
  for (size_t i = 0; i < column.size(); ++i) {
    AddPicker(record, owners[i], column[i]);
    taken.push_back(column[i]);
  }
  std::map<WStr, PanelRect> rights;
  for (const BodyRequest& request : body_) {
    if (request.kind <= PickerKind::Head) continue;
    const WStr tag = TagOf(request.control);
    const int side = SideOf(tag);
    const auto right = side == kSideLeft ? rights.find(L"r_" + tag.substr(2)) : rights.end();
    const PanelRect rect = right != rights.end() ? MirrorRect(right->second) : FreePlace(request.rect, taken, side);
    if (side == kSideRight) rights[tag] = rect;
    AddPicker(record, request.control, rect);
    taken.push_back(rect);
    // Kept free for the left one, which may come later.
    if (side == kSideRight) taken.push_back(MirrorRect(rect));
  }
}

PanelRecord PanelRecorder::Finish(const BuildState& state, uint32_t allColour) const {
  PanelRecord record;
  record.groups = groups_;
  const struct {
    const wchar_t* label;
    const wchar_t* script;
    float y;
  } kButtons[] = {{L"Add Key", kAddKey, 35}, {L"Del Key", kDelKey, 61}, {L"Reset", kReset, 87}};
  for (const auto& b : kButtons) record.buttons.push_back({b.label, b.script, L"", {}, {432, b.y, 59, 22}});

  const float x = kMainX + cursorX_, y = kMainY + cursorY_;
  if (state.main) record.pickers.push_back({L"Main", {state.main}, {x, y, 80, 20}, state.main->GetWireColor(), 0});
  if (state.root) record.pickers.push_back({L"RB", {state.root}, {x + 115, y, 30, 20}, state.root->GetWireColor(), 0});
  record.pickers.push_back({L"All", Links(state.controls), {211, 56, 23, 21}, allColour, 1});
  record.visibility = {{L"Controls", Links(state.controls), {669, 400, 81, 23}, 0xFF8000},
                       {L"Bones", Links(state.bones), {669, 430, 81, 23}, 0x808080},
                       {L"Helpers", Links(state.helpers), {669, 460, 81, 23}, 0x54D91A}};

  std::vector<PanelRect> taken;
  for (const PanelButton& b : record.buttons) taken.push_back(b.rect);
  for (const PanelPicker& p : record.pickers) taken.push_back(p.rect);
  for (const PanelVisibility& v : record.visibility) taken.push_back(v.rect);
  AddDigits(record, taken);
  AddBody(record, taken);
  return record;
}

}  // namespace tavrilon::detail
