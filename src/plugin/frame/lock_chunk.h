// SPDX-License-Identifier: MIT
// The lock of a track in scene files, for classes that keep nothing else outside their references.
#pragma once

#include "host/core/chunks.h"

namespace tavrilon {

inline constexpr uint16_t kTrackLockChunk = 9525;

inline corvanta::IOResult SaveLockChunk(corvanta::ISave& save, bool locked) {
  save.BeginChunk(kTrackLockChunk);
  save.Write(static_cast<int32_t>(locked));
  save.EndChunk();
  return save.Status();
}

/// Any other number than 0 counts as locked; chunks of other kinds are passed over.
inline corvanta::IOResult LoadLockChunk(corvanta::ILoad& load, bool& locked) {
  while (load.OpenChunk() == corvanta::IOResult::OK) {
    int32_t number = 0;
    if (load.CurChunkID() == kTrackLockChunk && load.Read(number) == corvanta::IOResult::OK) locked = number != 0;
    load.CloseChunk();
  }
  return load.Status();
}

}  // namespace tavrilon
