// SPDX-License-Identifier: MIT
// Parameter blocks in files: values by parameter ID, each row with its type and length, so that a block whose table has
// grown or shrunk since reads what it still knows, and keeps its defaults for the rest. Targets and controllers stand
// as places in the block's lists of references and weak links.
#pragma once

#include <vector>

#include "host/core/chunks.h"
#include "host/core/param_block.h"
#include "host/io/detail/scene_format.h"

namespace corvanta {

/// The block that an object is; null for all others, and for placeholders of blocks.
inline ParamBlock2* AsBlock(ReferenceTarget& object) {
  return object.SuperClassID() == kParamBlockSuper ? dynamic_cast<ParamBlock2*>(&object) : nullptr;
}

/// Calls `visit(row, tab)` for every entry that files keep.
template <class Visit>
void ForEachStoredEntry(const ParamBlock2& block, Visit&& visit) {
  for (const ParamRow& row : block.GetDesc().rows) {
    if (row.Is(kTransient)) continue;
    const int count = block.Count(row.id);
    for (int k = 0; k < count; ++k) visit(row, k);
  }
}

/// What a block refers to, in the order in which WriteParams counts them: null for an empty entry.
void CollectBlockTargets(const ParamBlock2& block, std::vector<ReferenceTarget*>* strong,
                         std::vector<ReferenceTarget*>* weak);

/// Writes all stored rows into the open chunk.
void WriteParams(const ParamBlock2& block, ISave& save);

/// Where the loader finds the objects of a block's lists; null for what is not there.
struct BlockTargets {
  std::vector<ReferenceTarget*> strong, weak;
};
/// Fills the block: tab counts, constants, texts, controllers and targets. The stream is in error afterwards when the
/// bytes are wrong.
void ReadParams(ParamBlock2& block, ILoad& load, const BlockTargets& targets);

}  // namespace corvanta
