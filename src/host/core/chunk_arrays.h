// SPDX-License-Identifier: MIT
// Arrays of plain values in chunk streams: a count (32 bits) and the values as they are.
#pragma once

#include "host/core/chunks.h"

namespace corvanta {

template <ChunkValue T>
void WriteArray(ISave& save, const std::vector<T>& values) {
  save.Write(static_cast<uint32_t>(values.size()));
  save.Write(values.data(), values.size() * sizeof(T));
}

/// Empty in error. What is allocated is bounded by the present chunk.
template <ChunkValue T>
void ReadArray(ILoad& load, std::vector<T>& values) {
  values.clear();
  uint32_t count = 0;
  if (load.ReadCount(count, sizeof(T)) != IOResult::OK || count == 0) return;
  values.resize(count);
  load.Read(values.data(), count * sizeof(T));
}

}  // namespace corvanta
