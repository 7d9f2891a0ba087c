// SPDX-License-Identifier: MIT
#include "plugin/solvers/soft_reach.h"

#include <algorithm>
#include <cmath>

namespace tavrilon {
namespace {

/// The nearest that a limb without stretch is taken to come to its full reach, in softening zones.
constexpr double kNearest = 1e-4;
/// Newton's steps: about one a softening zone on the way, then a few to the last digit.
constexpr int kSteps = 64;

}  // namespace

SoftReachOut SoftenReach(const SoftReachIn& in) {
  SoftReachOut out{1, in.distance};
  const float zone = in.softness * in.length, hard = in.length - zone;
  if (!(in.softness > 0) || !(zone > 0) || !(hard < in.distance)) return out;
  const float soft = in.length - zone * std::exp(-(in.distance - hard) / zone);
  if (!(soft > 0)) return out;
  if (in.stretch > 0) out.boneScale = (in.distance / soft - 1) * in.stretch + 1;
  if (in.stretch < 1) out.distance = (in.distance - soft) * in.stretch + soft;
  return out;
}

float UnsoftenReach(const SoftReachIn& in) {
  const double reach = in.distance, length = in.length, zone = std::max(in.softness, 0.0f) * length;
  const double stretch = std::clamp(in.stretch, 0.0f, 1.0f), hard = length - zone;
  if (!(reach > hard)) return in.distance;
  if (!(zone > 0)) return stretch > 0 ? static_cast<float>(length + (reach - length) / stretch) : in.distance;
  if (stretch == 0) return static_cast<float>(hard - zone * std::log(std::max((length - reach) / zone, kNearest)));
  double distance = reach;
  for (int i = 0; i < kSteps; ++i) {
    const double fading = std::exp(-(distance - hard) / zone);
    const double value = (length - zone * fading) * (1 - stretch) + distance * stretch;
    const double step = (reach - value) / (fading * (1 - stretch) + stretch);
    distance += step;
    if (!(std::abs(step) > 1e-9 * length)) break;
  }
  return static_cast<float>(distance);
}

}  // namespace tavrilon
