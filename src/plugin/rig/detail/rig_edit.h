// SPDX-License-Identifier: MIT
// How a RigSystem changes its points and extras: one place for undo, for its files only.
#pragma once

#include "plugin/rig/rig_system.h"

namespace tavrilon {

/// Writes of parameters are not acted on for its lifetime.
class RigSystem::QuietParameters {
 public:
  explicit QuietParameters(RigSystem& rig) : rig_(rig) { ++rig_.quiet_; }
  ~QuietParameters() { --rig_.quiet_; }
  QuietParameters(const QuietParameters&) = delete;

 private:
  RigSystem& rig_;
};

/// Applies `change` to a copy of the points. Without a difference nothing happens, also no undo step.
template <class Change>
void RigSystem::ChangePoints(const wchar_t* name, Change change) {
  RigPoints points = state_.points;
  change(points);
  if (points == state_.points) return;
  corvanta::HoldScope hold(name);
  RecordPoints();
  state_.points = std::move(points);
  PointsChanged();
}

/// Applies `change` to one extra and rebuilds the template. False for an index beyond the end.
template <class Change>
bool RigSystem::ChangeExtra(int index, Change change) {
  if (!ExtraAt(index)) return false;
  RigExtra extra = *ExtraAt(index);
  change(extra);
  if (extra == *ExtraAt(index)) return true;
  corvanta::HoldScope hold(L"Change Extra");
  RecordPoints();
  state_.extras[static_cast<size_t>(index)] = std::move(extra);
  Rebuild(false);
  PointsChanged();
  return true;
}

}  // namespace tavrilon
