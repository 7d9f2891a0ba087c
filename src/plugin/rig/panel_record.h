// SPDX-License-Identifier: MIT
// What the builders tell the picker panel: pickers on a body map, hand and foot blocks, groups of buttons and spinners.
// Data only. The panel is made from it when the build ends, without the builders.
//
// Panel units, y downwards, facing the character: its right is on the left. A pair mirrors about x = 340.
#pragma once

#include <vector>

#include "host/core/param_block.h"
#include "host/scene/node.h"

namespace tavrilon {

using corvanta::INode;
using corvanta::WStr;

/// Names an object without owning it. Reads null once the object is gone, also while it lives only in undo, and finds
/// it again after redo.
template <class T>
class PanelLink {
 public:
  PanelLink() = default;
  PanelLink(T* target) : handle_(corvanta::Animatable::GetHandleByAnim(target)) {}  // NOLINT: implicit on purpose
  T* Get() const { return dynamic_cast<T*>(corvanta::Animatable::GetAnimByHandle(handle_)); }

 private:
  corvanta::AnimHandle handle_ = 0;
};

/// `x` and `y` are the upper left corner.
struct PanelRect {
  float x = 0, y = 0, width = 0, height = 0;
  bool operator==(const PanelRect&) const = default;
};

/// Selects its nodes.
struct PanelPicker {
  WStr label;
  std::vector<PanelLink<INode>> nodes;
  PanelRect rect;
  /// 0xRRGGBB, as wire colours are.
  uint32_t colour = 0;
  /// 1 for the picker that holds every control.
  int type = 0;
};

/// Shows or hides nodes.
struct PanelVisibility {
  WStr label;
  std::vector<PanelLink<INode>> nodes;
  PanelRect rect;
  /// 0xRRGGBB
  uint32_t colour = 0;
};

/// Runs `script`, in which the word `parameter` stands for `node`; without a parameter the script stands alone.
struct PanelButton {
  WStr label;
  WStr script;
  WStr parameter;
  PanelLink<INode> node;
  PanelRect rect;
};

/// Shows one parameter of an attribute. Value in shown units = parameter * `weight`.
struct PanelSpinner {
  WStr label;
  PanelLink<INode> node;
  /// Block of the attribute on the node.
  PanelLink<corvanta::ParamBlock2> block;
  corvanta::ParamID param = 0;
  float weight = 1, step = 1;
  /// In shown units; without limits both are 0.
  float min = 0, max = 0, initial = 0;
  /// Of the field; the label stands to its left.
  PanelRect rect;
};

/// Titled frame around buttons and spinners.
struct PanelGroup {
  WStr title;
  PanelRect rect;
  std::vector<PanelButton> buttons;
  std::vector<PanelSpinner> spinners;
};

struct PanelRecord {
  std::vector<PanelPicker> pickers;
  std::vector<PanelVisibility> visibility;
  /// Outside of groups.
  std::vector<PanelButton> buttons;
  std::vector<PanelGroup> groups;
};

/// One line for each part: kind, label, place and size, and what it is bound to.
std::vector<WStr> PanelParts(const PanelRecord& record);

}  // namespace tavrilon
