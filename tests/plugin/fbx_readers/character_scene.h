// SPDX-License-Identifier: MIT
// A small character made by calls, as an exporter makes one for game engines: five bones, a skinned mesh of two
// materials with a blend shape, and curves of every frame.
#pragma once

#include <memory>
#include <vector>

#include "plugin/fbx/format/sdk.h"

namespace tavrilon::fbx {

struct CharacterScene {
  static constexpr int kFrames = 24;
  static constexpr double kRate = 30;

  std::unique_ptr<FbxScene> scene = FbxScene::Create("Character");
  /// Hips, Spine, Head, and two in a chain beside; the last one moves no point.
  std::vector<FbxNode*> bones;
  FbxNode* body = nullptr;
  FbxMesh* mesh = nullptr;
  FbxBlendShapeChannel* smile = nullptr;
  FbxAnimStack* stack = nullptr;

  CharacterScene();
  static FbxTime FrameTime(int frame) { return FbxTime::FromSeconds(frame / kRate); }

 private:
  void MakeMesh();
  void MakeSkin();
  void MakeShape();
  void MakePose();
  void Animate();
};

}  // namespace tavrilon::fbx
