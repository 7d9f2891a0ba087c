// SPDX-License-Identifier: MIT
// Lays out what the builders have to show on the panel: the builder names a node, a word or a parameter, the recorder
// knows the places.
#pragma once

#include <span>

#include "plugin/rig/detail/node_factory.h"
#include "plugin/rig/panel_record.h"

namespace tavrilon::detail {

/// Sizes of pickers on the body map.
enum class PickerKind { Torso, Pelvis, Spine, Head, Limb, Goal, Pole };

/// A spinner of a group: a label and the parameter that it is bound to.
struct SpinnerRow {
  const wchar_t* label;
  corvanta::ParamID param;
};

class PanelRecorder {
 public:
  PanelRecorder(PanelRecord& record, float height) : record_(record), height_(height) {}

  /// On the body map, at the node's place at rest.
  void BodyPicker(INode* control, PickerKind kind);
  /// Joint `joint` of digit `digit`, both from 0, in the block of a hand or foot.
  void DigitPicker(INode* control, int side, bool foot, int digit, int joint);
  /// A group, with "FK" and "IK" buttons for a chain control when `chain` is given, and a spinner for each row, bound
  /// to `block`, the attribute on `node`.
  void Group(const WStr& title, INode* chain, INode* node, corvanta::ParamBlock2* block,
             std::span<const SpinnerRow> spinners);
  /// The reset button, the picker of all controls and the switches of the three kinds of node.
  void Finish(const BuildState& state, const WStr& rigName);

 private:
  PanelRecord& record_;
  float height_;
  PanelRect nextGroup_;
};

}  // namespace tavrilon::detail
