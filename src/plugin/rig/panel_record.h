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

struct PanelRect {
  float x = 0, y = 0, width = 0, height = 0;
  bool operator==(const PanelRect&) const = default;
};

/// Selects its nodes.
struct PanelPicker {
  WStr label;
  std::vector<INode*> nodes;
  PanelRect rect;
  /// 0xBBGGRR
  uint32_t colour = 0;
  /// 1 for the picker that holds every control.
  int type = 0;
};

/// Shows or hides nodes.
struct PanelVisibility {
  WStr label;
  std::vector<INode*> nodes;
  PanelRect rect;
};

/// Runs `script`, in which the word `parameter` stands for `node`.
struct PanelButton {
  WStr label;
  WStr script;
  WStr parameter;
  INode* node = nullptr;
  PanelRect rect;
};

/// Shows one parameter of an attribute. Value in shown units = parameter * `weight`.
struct PanelSpinner {
  WStr label;
  INode* node = nullptr;
  /// Block of the attribute on the node.
  corvanta::Ref<corvanta::ParamBlock2> block;
  corvanta::ParamID param = 0;
  float weight = 1, step = 1;
  float min = 0, max = 0, initial = 0;
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
  std::vector<PanelGroup> groups;
};

}  // namespace tavrilon
