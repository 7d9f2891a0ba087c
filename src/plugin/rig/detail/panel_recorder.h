// SPDX-License-Identifier: MIT
// Lays out what the builders have to show on the panel: the builder names a node, a word or a parameter, the recorder
// knows the places. Pickers wait until the end, since they make room for one another.
#pragma once

#include <span>

#include "plugin/rig/detail/node_factory.h"
#include "plugin/rig/panel_record.h"

namespace tavrilon::detail {

/// Sizes of pickers on the body map. Those of the trunk (up to Head) form a column; the others stand where they find
/// room.
enum class PickerKind { Torso, Pelvis, Spine, Head, Limb, Goal, Pole };

/// A spinner of a group: a label and the parameter that it is bound to.
struct SpinnerRow {
  const wchar_t* label;
  corvanta::ParamID param;
};

class PanelRecorder {
 public:
  /// `height` of the figure in world units; a figure on four legs is seen from half its side.
  PanelRecorder(float height, bool fourLegged) : height_(height), fourLegged_(fourLegged) {}

  /// On the body map, at the node's place at rest. Nothing for a null node.
  void BodyPicker(INode* control, PickerKind kind);
  /// Joint `joint` of digit `digit`, both from 0, in the block of a hand or foot of pair `pair`. Nothing for a null
  /// node.
  void DigitPicker(INode* control, int side, int pair, bool foot, int digit, int joint);
  /// A group, with "FK" and "IK" buttons for a chain control when `chain` is given, and a spinner for each row, bound
  /// to `block`, the attribute on `node`. Rows whose parameter the block lacks are left out; nothing without a block.
  void Group(const WStr& title, INode* chain, INode* node, corvanta::ParamBlock2* block,
             std::span<const SpinnerRow> spinners);
  /// Where the standing pickers "Main" and "RB" go, from their usual place.
  void MoveCursor(float x, float y) { cursorX_ = x, cursorY_ = y; }
  /// The whole panel: what was recorded, the buttons for keys, the pickers of main, root and all controls, and the
  /// switches of the three kinds of node.
  PanelRecord Finish(const BuildState& state, uint32_t allColour) const;

 private:
  struct BodyRequest {
    INode* control;
    PickerKind kind;
    PanelRect rect;
  };
  struct DigitRequest {
    INode* control;
    int side, pair;
    bool foot;
    int digit, joint;
  };
  void AddDigits(PanelRecord& record, std::vector<PanelRect>& taken) const;
  void AddBody(PanelRecord& record, std::vector<PanelRect>& taken) const;

  float height_;
  bool fourLegged_;
  float cursorX_ = 0, cursorY_ = 0;
  std::vector<BodyRequest> body_;
  std::vector<DigitRequest> digits_;
  std::vector<PanelGroup> groups_;
  float groupX_ = 780, groupY_ = 20;
};

}  // namespace tavrilon::detail
