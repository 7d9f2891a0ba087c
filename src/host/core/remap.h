// SPDX-License-Identifier: MIT
// Cloning: a map from originals to clones, and patches that run when the whole clone is done.
#pragma once

#include <functional>
#include <unordered_map>
#include <vector>

#include "host/core/reference.h"

namespace corvanta {

class RemapDir {
 public:
  /// The clone of `source`: the mapped one, or a new clone; nodes that are not mapped stay as they are.
  ReferenceTarget* CloneRef(ReferenceTarget* source);
  /// The mapped clone, or null.
  ReferenceTarget* Find(ReferenceTarget* source) const;
  void AddEntry(ReferenceTarget* source, ReferenceTarget* clone) { map_[source] = clone; }
  /// Runs once, after the whole clone.
  void AddPostPatchProc(std::function<void(RemapDir&)> proc) { procs_.push_back(std::move(proc)); }
  /// Runs and frees the patches. Call once all roots are cloned.
  void Backpatch();

 private:
  std::unordered_map<ReferenceTarget*, ReferenceTarget*> map_;
  std::vector<std::function<void(RemapDir&)>> procs_;
};

/// Clones one object with a RemapDir of its own.
ReferenceTarget* CloneRefHierarchy(ReferenceTarget* source);

}  // namespace corvanta
