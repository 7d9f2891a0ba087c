// SPDX-License-Identifier: MIT
// FBX files into the scene: hierarchy, helpers, bones, meshes with skin and blend shapes, materials, animation.
#pragma once

#include <cstdint>

#include "host/io/exchange.h"

namespace tavrilon {

namespace fbx {
class FbxScene;
}

/// Bounds that keep a file made to hurt from filling the memory or the day.
struct FbxImportLimits {
  int maxNodes = 20000;
  /// More frames than this are cut off, and told: nine hours at 30 a second.
  int maxFrames = 1000000;
  /// Frames times what moves.
  int64_t maxSamples = 8000000;
};

struct FbxImportOptions {
  bool skeletalMesh = true;
  bool animation = true;
  /// The stack to take, by name; the file's current one when empty.
  corvanta::WStr stack;
  /// Meshes follow their bones; off leaves them as they were modelled.
  bool skin = true;
  /// To the scene's unit; off takes the file's numbers as they are.
  bool convertUnits = true;
  /// Multiplies all lengths.
  double scaleFactor = 1;
  FbxImportLimits limits;
};

/// One step of undo, "FBX Import". Everything is read and checked before the first node is made, so a failure (false,
/// with the error in `report`) leaves the scene as it was. The nodes that came in are selected. A scene without nodes
/// takes the file's frame rate and the stack's span, another one keeps its rate and widens its range.
bool ImportFbx(const corvanta::WStr& file, const FbxImportOptions& options, corvanta::ExchangeReport& report);
/// The same from a file's bytes; `fileName` is for messages and for finding textures beside it.
bool ImportFbx(std::vector<uint8_t> bytes, const corvanta::WStr& fileName, const FbxImportOptions& options,
               corvanta::ExchangeReport& report);
/// The same from a scene that was made or read before. It is turned and scaled to the present scene's axes and unit on
/// the way.
bool ImportFbxScene(fbx::FbxScene& scene, const corvanta::WStr& fileName, const FbxImportOptions& options,
                    corvanta::ExchangeReport& report);

}  // namespace tavrilon
