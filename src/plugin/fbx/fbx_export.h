// SPDX-License-Identifier: MIT
// The scene's nodes as an FBX file for game engines: hierarchy, baked animation, skeletal meshes, materials.
#pragma once

#include <vector>

#include "host/io/exchange.h"

namespace corvanta {
class INode;
}

namespace tavrilon {

enum class FbxTimeSegment : int { Active = 0, Range = 1 };

struct FbxExportOptions {
  bool skeletalMesh = true;
  bool animation = true;
  int timeSegment = 0;
  int startFrame = 0;
  int endFrame = 100;
  /// Samples a frame.
  int subSamples = 1;
};

/// Writes `nodes`; one whose parent is not among them hangs under its nearest ancestor that is. Nothing is
/// approximated: what the format cannot say is refused (false, with one message in `report`) before the file is
/// touched.
bool ExportFbx(const std::vector<corvanta::INode*>& nodes, const corvanta::WStr& file, const FbxExportOptions& options,
               corvanta::ExchangeReport& report);

}  // namespace tavrilon
