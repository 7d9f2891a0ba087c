// SPDX-License-Identifier: MIT
#pragma once

#include "host/io/detail/scene_format.h"

namespace corvanta {

/// Takes a file apart and checks everything that can be checked without making an object: checksums, counts, numbers,
/// texts, the tree of nodes, loops among references. `out` points into `bytes`. Gives an empty text, or what is wrong.
/// Without `verifyChecksums` damaged bytes go through to the other checks; for tests of those.
WStr ParseScene(std::span<const uint8_t> bytes, bool verifyChecksums, scene_format::ParsedScene* out);

}  // namespace corvanta
