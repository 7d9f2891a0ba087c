// SPDX-License-Identifier: MIT
// FBX files into the scene: hierarchy, helpers, bones, meshes with skin and blend shapes, materials, animation.
#pragma once

#include "host/io/exchange.h"

namespace tavrilon {

struct FbxImportOptions {
  bool skeletalMesh = true;
  bool animation = true;
  /// The stack to take, by name; the file's current one when empty.
  corvanta::WStr stack;
};

/// One step of undo, "FBX Import". Everything is read and checked before the first node is made, so a failure (false,
/// with the error in `report`) leaves the scene as it was. The nodes that came in are selected.
bool ImportFbx(const corvanta::WStr& file, const FbxImportOptions& options, corvanta::ExchangeReport& report);

}  // namespace tavrilon
