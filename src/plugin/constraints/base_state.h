// SPDX-License-Identifier: MIT
// What a constraint remembers besides its targets: the value that it took over, and the blend from which a relative one
// measures changes.
#pragma once

#include "host/core/chunks.h"

namespace tavrilon {

template <class Value>
struct BaseState {
  /// What stood in the place of the constraint before it, in the parent's space and in the world.
  Value localBase, worldBase;
  /// The blend when the present number of targets was first evaluated.
  Value reference;
  int referenceCount = 0;
  /// The base in the world is taken at the next evaluation.
  bool captureBase = false;

  corvanta::IOResult Save(corvanta::ISave& save, bool locked) const {
    WriteChunk(save, kLocalBase, localBase);
    // One that was never evaluated has no base in the world yet.
    if (!captureBase) WriteChunk(save, kWorldBase, worldBase);
    WriteChunk(save, kReference, reference);
    WriteChunk(save, kReferenceCount, static_cast<int32_t>(referenceCount));
    WriteChunk(save, kLock, static_cast<int32_t>(locked));
    return save.Status();
  }

  corvanta::IOResult Load(corvanta::ILoad& load, bool& locked) {
    captureBase = true;
    while (load.OpenChunk() == corvanta::IOResult::OK) {
      int32_t number = 0;
      switch (load.CurChunkID()) {
        case kLocalBase:
          load.Read(localBase);
          break;
        case kWorldBase:
          load.Read(worldBase);
          captureBase = false;
          break;
        case kReference:
          load.Read(reference);
          break;
        case kReferenceCount:
          load.Read(number);
          referenceCount = number;
          break;
        case kLock:
          load.Read(number);
          locked = number != 0;
          break;
        default:
          break;
      }
      load.CloseChunk();
    }
    return load.Status();
  }

 private:
  enum Chunk : uint16_t {
    kLocalBase = 4097,
    kWorldBase = 4098,
    kReference = 4099,
    kReferenceCount = 4100,
    kLock = 9525
  };

  template <class T>
  static void WriteChunk(corvanta::ISave& save, uint16_t id, const T& value) {
    save.BeginChunk(id);
    save.Write(value);
    save.EndChunk();
  }
};

}  // namespace tavrilon
