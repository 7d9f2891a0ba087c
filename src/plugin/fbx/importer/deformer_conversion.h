// SPDX-License-Identifier: MIT
// Skins and blend shapes of meshes.
#pragma once

#include "plugin/fbx/importer/conversion.h"

namespace tavrilon::fbx_import {

class DeformerConverter {
 public:
  explicit DeformerConverter(Conversion& conversion)
      : conversion_(conversion), evaluator_(conversion.scene, conversion.stack) {}

  /// Fills skin and morph of `planned`, whose offset and mesh are there. What cannot be kept goes to the log.
  void Convert(const fbx::FbxNode& node, const fbx::FbxMesh& mesh, PlannedNode& planned);

 private:
  void TakeSkin(const fbx::FbxNode& node, const fbx::FbxSkin& skin, size_t numPoints, PlannedNode& planned);
  void TakeChannel(const fbx::FbxNode& node, const fbx::FbxBlendShapeChannel& channel, size_t numPoints,
                   PlannedNode& planned);
  /// `scale` takes the file's percentages to the host's, where the last shape stands at 100.
  void TakeWeight(const fbx::FbxBlendShapeChannel& channel, double scale, FloatTrack& weight);

  Conversion& conversion_;
  fbx::SceneEvaluator evaluator_;
};

}  // namespace tavrilon::fbx_import
