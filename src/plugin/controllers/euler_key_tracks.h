// SPDX-License-Identifier: MIT
// Three float tracks whose keys are worked on as one: a key index means a time of the merged key table.
#pragma once

#include <vector>

#include "host/core/control.h"

namespace tavrilon {

/// The tracks X, Y, Z in this order; a missing one is null and passed over.
struct KeyTracks {
  corvanta::Control* track[3] = {nullptr, nullptr, nullptr};

  /// Times at which any track has a key, sorted, each once.
  std::vector<corvanta::TimeValue> Times() const;
  /// The latest key before `t` of all tracks; false when there is none.
  bool LastKeyBefore(corvanta::TimeValue t, corvanta::TimeValue& time) const;

  template <class F>
  void ForEach(F&& f) const {
    for (corvanta::Control* c : track)
      if (c) f(*c);
  }
};

}  // namespace tavrilon
