// SPDX-License-Identifier: MIT
// The width of a highlight, as files and as the scene's materials tell it.
#pragma once

#include <algorithm>
#include <cmath>

namespace tavrilon {

/// Roughness of Beckmann's distribution for the exponent of Blinn's: n = 2 / r^2 - 2 (Walter and others, "Microfacet
/// models for refraction through rough surfaces", 2007). 0 to 1; exponents below 0 count as 0.
inline double RoughnessOf(double shininess) {
  const double roughness = std::sqrt(2 / (std::max(shininess, 0.0) + 2));
  return std::isfinite(roughness) ? std::min(roughness, 1.0) : 1;
}
/// The way back. A surface smoother than a hundredth counts as that: other programs know no endless exponent.
inline double ShininessOf(double roughness) {
  const double r = std::clamp(roughness, 0.01, 1.0);
  return 2 / (r * r) - 2;
}

}  // namespace tavrilon
