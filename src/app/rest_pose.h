// SPDX-License-Identifier: MIT
// The rest pose: a rig that was just built moves nothing.
#pragma once

#include <string>

#include "host/scene/scene.h"

namespace app {

struct RestPose {
  /// Nodes with a rig control that were looked at.
  int controls = 0;
  /// Empty, or the first node that is not at rest and what it reads.
  std::string fault;
};

/// Every position, rotation and scale under a rig control, also one that a solver or constraint has taken in, must read
/// exactly 0 0 0, no turn and 1 1 1 at time 0, and no matrix may need itself.
RestPose CheckRestPose(corvanta::Scene& scene);

}  // namespace app
