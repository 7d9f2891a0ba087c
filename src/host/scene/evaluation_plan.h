// SPDX-License-Identifier: MIT
// Evaluates whole scenes. Pulled matrices jump from object to object; a scene of many figures then waits for memory at
// each. The plan knows beforehand which lines of memory every node's evaluation reads, and fetches those of the next
// nodes while one is computed.
#pragma once

#include <cstdint>
#include <vector>

#include "host/core/evaluation_footprint.h"
#include "host/maths/interval.h"

namespace corvanta {

class Scene;
class ReferenceMaker;

class EvaluationPlan {
 public:
  /// Every node's matrix at `t`. The plan is made anew after any reference in the process has changed; evaluation
  /// itself allocates nothing.
  void Evaluate(const Scene& scene, TimeValue t);

 private:
  void Make(const Scene& scene);
  void AddWhatIsRead(const ReferenceMaker& maker, int depth);

  EvaluationFootprint footprint_;
  /// Lines of node i: from first_[i] to before first_[i + 1].
  std::vector<uint32_t> first_;
  uint64_t linkStamp_ = 0;
};

}  // namespace corvanta
