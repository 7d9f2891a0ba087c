// SPDX-License-Identifier: MIT
// How long a scene unit is, and which way is up, for exchange with other programs.
#pragma once

#include <cmath>

namespace corvanta {

/// Scenes are built with Z up; `Y` tells files that go out of the program to stand so.
enum class UpAxis : int { Y = 1, Z = 2 };

struct UnitConfig {
  /// Length of one scene unit; 1 by default, 2.54 for inches, 100 for metres.
  double centimetres = 1.0;
  UpAxis upAxis = UpAxis::Z;
  bool operator==(const UnitConfig&) const = default;
};

/// Can a unit be so many centimetres long?
inline bool IsUnitLength(double centimetres) { return std::isfinite(centimetres) && centimetres > 0; }

}  // namespace corvanta
