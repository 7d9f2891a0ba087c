// SPDX-License-Identifier: MIT
#include "plugin/solvers/soft_reach.h"

#include <cmath>

namespace tavrilon {

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

}  // namespace tavrilon
