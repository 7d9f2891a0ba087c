// SPDX-License-Identifier: MIT
// The scene of an FBX file: typed objects and their links, read from a document or made by calls, and written.
#pragma once

#include <memory>

#include "plugin/fbx/format/animation.h"
#include "plugin/fbx/format/mesh.h"
#include "plugin/fbx/format/status.h"
#include "plugin/fbx/format/surface.h"

namespace tavrilon::fbx {

/// Which way a scene stands: axes 0 X, 1 Y, 2 Z with signs.
struct FbxAxisSystem {
  int up = 1, upSign = 1;
  int front = 2, frontSign = 1;
  int coord = 0, coordSign = 1;
  bool operator==(const FbxAxisSystem&) const = default;

  /// Z up, seen from -Y: as this program's scenes stand.
  static FbxAxisSystem ZUp() { return {2, 1, 1, -1, 0, 1}; }
  static FbxAxisSystem YUp() { return {}; }
  /// False for axes that are not three different ones.
  bool IsSound() const;
  /// From this system to `to`, for row vectors: a rotation, or with a mirroring when one is left-handed.
  Affine ConversionTo(const FbxAxisSystem& to) const;
  /// Turns the top nodes of `scene` (transforms and curves stay local; see FbxScene::topConversion) and the world
  /// matrices of its poses and clusters, and sets its axis system. False, and nothing changes, for an unsound system.
  bool ConvertScene(FbxScene& scene) const;
};

/// Length of a unit in centimetres.
struct FbxSystemUnit {
  double centimetres = 1;
  /// For display alone.
  double multiplier = 1;
  bool operator==(const FbxSystemUnit&) const = default;
  /// Scales every length in `scene` (translations and their curves, pivots, offsets, points, shapes, binds, sizes of
  /// nulls and bones) and sets its unit. False, and nothing changes, for a length that is not above 0.
  bool ConvertScene(FbxScene& scene) const;
};

class FbxGlobalSettings {
 public:
  const FbxAxisSystem& GetAxisSystem() const { return axes_; }
  void SetAxisSystem(const FbxAxisSystem& axes) { axes_ = axes; }
  const FbxSystemUnit& GetSystemUnit() const { return unit_; }
  void SetSystemUnit(const FbxSystemUnit& unit) { unit_ = unit; }
  TimeMode GetTimeMode() const { return mode_; }
  void SetTimeMode(TimeMode mode) { mode_ = mode; }
  double GetCustomFrameRate() const { return customRate_; }
  void SetCustomFrameRate(double rate) { customRate_ = rate; }
  /// Frames a second; 0 when the file does not say.
  double GetFrameRate() const { return mode_ == TimeMode::Custom ? customRate_ : FbxTime::GetFrameRate(mode_); }
  FbxTime spanStart, spanStop;

 private:
  FbxAxisSystem axes_;
  FbxSystemUnit unit_;
  TimeMode mode_ = TimeMode::Default;
  double customRate_ = 0;
};

/// World matrices at a rest, above all of a skin's bones at bind.
class FbxPose final : public FbxObject {
 public:
  static FbxPose* Create(FbxScene& scene, std::string name);
  struct Entry {
    FbxNode* node;
    Affine matrix;
  };
  bool isBindPose = true;
  std::vector<Entry> entries;

 private:
  using FbxObject::FbxObject;
  void Unlink(const FbxObject& gone) override;
};

class FbxScene {
 public:
  static std::unique_ptr<FbxScene> Create(std::string name);
  ~FbxScene();
  FbxScene(const FbxScene&) = delete;

  const std::string& GetName() const { return name_; }
  FbxNode* GetRootNode() const { return root_.get(); }
  FbxGlobalSettings& GetGlobalSettings() { return settings_; }
  const FbxGlobalSettings& GetGlobalSettings() const { return settings_; }

  // In the order of making; the root is in none of them.
  const std::vector<FbxNode*>& Nodes() const { return nodes_; }
  const std::vector<FbxAnimStack*>& Stacks() const { return stacks_; }
  const std::vector<FbxPose*>& Poses() const { return poses_; }
  const std::vector<FbxSurfaceMaterial*>& Materials() const { return materials_; }
  const std::vector<std::unique_ptr<FbxObject>>& Objects() const { return objects_; }
  /// The stack that the file says is current, else the first; null without one.
  FbxAnimStack* CurrentStack() const;
  std::string currentStack;

  /// Applied behind the world matrices of top nodes; what FbxAxisSystem::ConvertScene turned so far.
  Affine topConversion;

  ReadLog& Log() { return log_; }
  const ReadLog& Log() const { return log_; }
  size_t MemoryUsed() const;

 private:
  friend class FbxObject;
  friend class FbxNode;
  template <class T>
  friend T* OwnObject(FbxScene& scene, T* object);
  explicit FbxScene(std::string name);
  void Destroy(FbxObject* object);

  std::string name_;
  std::vector<std::unique_ptr<FbxObject>> objects_;
  std::unique_ptr<FbxNode> root_;
  std::vector<FbxNode*> nodes_;
  std::vector<FbxAnimStack*> stacks_;
  std::vector<FbxPose*> poses_;
  std::vector<FbxSurfaceMaterial*> materials_;
  FbxGlobalSettings settings_;
  ReadLog log_;
};

/// Matrices of nodes at times, from transforms and one stack's curves (none for a null stack). Curves are found once
/// when it is made, so ask one evaluator for many times, rising; the scene must stay as it is meanwhile.
///
/// The stack's lowest layer takes the place of the still values; the layers above are laid over it by their mode and
/// weight. Override replaces whatever the weight; passing through mixes by weight. Muted layers are left out, and when
/// any layer is solo, all that are not.
class SceneEvaluator {
 public:
  SceneEvaluator(const FbxScene& scene, const FbxAnimStack* stack);
  ~SceneEvaluator();
  SceneEvaluator(const SceneEvaluator&) = delete;

  /// The node's transform with its curves' values at `t` in place of the still ones, all layers blended.
  NodeTransform Transform(const FbxNode* node, FbxTime t);
  /// World matrix, inherit types and the top conversion included.
  Affine World(const FbxNode* node, FbxTime t);
  /// Does any curve move the node itself?
  bool IsAnimated(const FbxNode* node) const;
  /// DeformPercent of a channel.
  double DeformPercent(const FbxBlendShapeChannel* channel, FbxTime t);
  bool IsAnimated(const FbxBlendShapeChannel* channel) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace tavrilon::fbx
