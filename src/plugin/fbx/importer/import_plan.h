// SPDX-License-Identifier: MIT
// What an import is going to make, as plain values: everything has been read, converted to the scene's axes, unit and
// times, and checked when one of these is full, so that making the nodes cannot fail half-way.
#pragma once

#include <map>
#include <optional>

#include "host/anim/keys.h"
#include "host/maths/colour.h"
#include "host/mesh/mesh.h"
#include "host/scene/morpher_modifier.h"
#include "host/scene/skin_modifier.h"

namespace tavrilon::fbx_import {

/// A track: its keys, or the one value that it has without any.
template <class Key, class Value>
struct PlannedTrack {
  Value value{};
  std::vector<Key> keys;
};
using FloatTrack = PlannedTrack<corvanta::IBezFloatKey, float>;
using PositionTrack = PlannedTrack<corvanta::IBezPoint3Key, corvanta::Point3>;
using ScaleTrack = PlannedTrack<corvanta::IBezScaleKey, corvanta::Point3>;

/// Scale, rotate about X, Y, Z (radians), move.
struct PlannedTransform {
  PositionTrack position;
  FloatTrack rotation[3];
  ScaleTrack scale;
};

struct PlannedBone {
  /// Number of the node in the plan.
  int node = -1;
  corvanta::Matrix3 bind;
};

struct PlannedSkin {
  std::vector<PlannedBone> bones;
  corvanta::Matrix3 meshBind;
  std::shared_ptr<const corvanta::SkinWeights> weights;
  /// The most bones that a point has.
  int boneLimit = 0;
};

struct PlannedMorphChannel {
  corvanta::WStr name;
  std::shared_ptr<const std::vector<corvanta::MorphTarget>> targets;
  /// Percent.
  FloatTrack weight;
};

struct PlannedBitmap {
  corvanta::WStr file;
  int mapChannel = 1;
};

struct PlannedMaterial {
  corvanta::WStr name;
  corvanta::Colour base, emission;
  float roughness = 0, transparency = 0, emissionAmount = 0;
  std::optional<PlannedBitmap> baseMap, cutoutMap, bumpMap;
};

enum class PlannedKind { Helper, Bone, Mesh };

struct PlannedNode {
  corvanta::WStr name;
  /// Number of the parent, which comes before the node; -1 for a top node.
  int parent = -1;
  PlannedKind kind = PlannedKind::Helper;
  float boneLength = 0.1f;
  float boneWidth = 0.01f;
  std::optional<uint32_t> wireColour;
  bool visible = true;
  std::map<corvanta::WStr, corvanta::WStr> userProps;
  PlannedTransform transform;

  // Meshes.
  corvanta::Point3 offsetPos;
  corvanta::Quat offsetRot;
  corvanta::Point3 offsetScale{1, 1, 1};
  /// Numbers in the plan; -1 for none. Several materials make a list.
  int mesh = -1;
  std::vector<int> materials;
  std::optional<PlannedSkin> skin;
  std::vector<PlannedMorphChannel> morph;
  int subdivisionLevels = 0;
};

/// Whole frames of the rate that the scene has, or takes.
struct PlannedTime {
  int frameRate = 30;
  int ticksPerFrame = 200;
  int firstFrame = 0, lastFrame = -1;
  bool HasSpan() const { return lastFrame >= firstFrame; }
  int NumFrames() const { return lastFrame - firstFrame + 1; }
  corvanta::Interval Span() const { return {firstFrame * ticksPerFrame, lastFrame * ticksPerFrame}; }
};

struct ImportPlan {
  /// Parents first.
  std::vector<PlannedNode> nodes;
  std::vector<std::shared_ptr<const corvanta::Mesh>> meshes;
  std::vector<PlannedMaterial> materials;
  PlannedTime time;
};

/// What of the scene a conversion depends on.
struct ImportContext {
  double centimetres = 1;
  int frameRate = 30;
  /// No node is there yet: the file's frame rate is taken.
  bool isEmpty = true;
  /// The file, for textures beside it.
  corvanta::WStr file;
};

}  // namespace tavrilon::fbx_import
