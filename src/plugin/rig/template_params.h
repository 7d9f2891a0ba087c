// SPDX-License-Identifier: MIT
// What a template reads of a rig's parameters: the counts and switches, by parameter ID.
#pragma once

#include <algorithm>
#include <array>

#include "plugin/rig/rig_params.h"

namespace tavrilon {

struct TemplateParams {
  /// Value of each int, bool and index parameter at its ID; starts at the defaults.
  std::array<int, rig_param::kCount> values{};

  TemplateParams() {
    for (const RigParamRow& row : kRigParamRows) values[row.id] = static_cast<int>(row.initial.r);
  }
  int& operator[](rig_param::ID id) { return values[id]; }
  int operator[](rig_param::ID id) const { return values[id]; }
  bool On(rig_param::ID id) const { return values[id] != 0; }
  /// A count brought into the range of its row, whatever a file or script wrote.
  int Count(rig_param::ID id) const {
    for (const RigParamRow& row : kRigParamRows)
      if (row.id == id) return std::clamp(values[id], static_cast<int>(row.range.min), static_cast<int>(row.range.max));
    return 0;
  }
};

}  // namespace tavrilon
