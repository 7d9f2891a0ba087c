// SPDX-License-Identifier: MIT
#include "plugin/solvers/soft_reach.h"

#include <cmath>

namespace tavrilon {

using namespace corvanta;

SoftReachOut SoftenReach(const SoftReachIn& in) {
  const Point3 toGoal = in.goal - in.start;
  SoftReachOut out{1, in.goal, Length(toGoal)};
  const float zone = in.softness * in.length;
  if (!(in.softness > 0) || !(zone > 0) || !(in.length - zone < out.distance)) return out;
  const float softLength = in.length - zone * std::exp(-(out.distance - (in.length - zone)) / zone);
  if (!(softLength > 0)) return out;
  if (in.stretch > 0) out.boneScale = (out.distance / softLength - 1) * in.stretch + 1;
  if (in.stretch < 1) {
    const Point3 softGoal = in.start + Normalize(toGoal) * softLength;
    out.goal = Lerp(softGoal, in.goal, in.stretch);
    out.distance = (out.distance - softLength) * in.stretch + softLength;
  }
  return out;
}

}  // namespace tavrilon
