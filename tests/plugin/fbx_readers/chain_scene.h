// SPDX-License-Identifier: MIT
// Chains of twelve bones, two metres long in all, whose transforms and curves are of one kind or another; random, the
// same for each seed.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "plugin/fbx/format/scene.h"
#include "plugin/fbx_readers/host_trip.h"

namespace tavrilon::fbx {

inline constexpr int kChainLast = 60;  // frames of motion

/// A layer above the lowest one.
struct LayerRow {
  LayerBlend blend = LayerBlend::Additive;
  double weight = 100;
  bool mute = false, solo = false, moves = true;
  int rotationAccumulation = 0, scaleAccumulation = 0;
  bool hasWeightCurve = false;
};

enum class Scales { None, Free, AboutZ };
enum class Keys { Random, Constant, Linear, UserTangents, Weighted };

struct ChainRow {
  const char* name;
  /// -1: another one in each bone.
  int order = 0;
  bool preAndPost = false, pivots = false;
  /// -1: another one in each bone.
  int inherit = 1;
  Scales scales = Scales::None;
  FbxAxisSystem axes = FbxAxisSystem::ZUp();
  double centimetres = 1;
  HostStage stage{};
  Keys keys = Keys::Random;
  std::vector<LayerRow> above{};
};

/// "bone0" to "bone11".
std::unique_ptr<FbxScene> MakeChain(unsigned seed, const ChainRow& row,
                                    const std::vector<std::string>& stacks = {"take"});
/// Each kind that is worth a look.
std::vector<ChainRow> ChainRows();

}  // namespace tavrilon::fbx
