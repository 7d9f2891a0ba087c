// SPDX-License-Identifier: MIT
// Animation: stacks of layers of curves.
#pragma once

#include <array>
#include <vector>

#include "plugin/fbx/format/object.h"
#include "plugin/fbx/format/time.h"

namespace tavrilon::fbx {

enum class Interpolation : uint8_t { Constant, ConstantNext, Linear, Cubic };

/// How a curve leaves a key, and arrives at the next one.
struct KeyShape {
  Interpolation interpolation = Interpolation::Linear;
  /// Value per second.
  float rightSlope = 0, nextLeftSlope = 0;
  /// Reach of the tangents as a share of the segment; a third each unless weighted.
  float rightWeight = 1.0f / 3, nextLeftWeight = 1.0f / 3;
  bool operator==(const KeyShape&) const = default;
};

/// Keys at rising times. `shapes` runs alongside; one shape stands for all keys when there is only one.
class FbxAnimCurve {
 public:
  std::vector<int64_t> times;
  std::vector<float> values;
  std::vector<KeyShape> shapes;

  bool IsEmpty() const { return times.empty(); }
  const KeyShape& ShapeOf(size_t key) const { return shapes.size() == 1 ? shapes[0] : shapes[key]; }
  /// The value at `t`; the first or last key's outside. `hint` is the key to look at first, kept between calls.
  double Evaluate(FbxTime t, size_t& hint) const;
};

/// The curves of one property of one object on one layer: X, Y, Z, or one for a number.
class FbxAnimCurveNode final : public FbxObject {
 public:
  static FbxAnimCurveNode* Create(FbxScene& scene, std::string name);
  FbxObject* target = nullptr;
  /// "Lcl Translation", "Lcl Rotation", "Lcl Scaling", "DeformPercent", "Visibility"...
  std::string property;
  std::array<double, 3> defaults{};
  /// Empty where a channel has no curve: its default holds.
  std::array<FbxAnimCurve, 3> curves;

 private:
  using FbxObject::FbxObject;
  void Unlink(const FbxObject& gone) override;
};

enum class LayerBlend : int { Additive = 0, Override = 1, OverridePassthrough = 2 };

struct LayerValues {
  /// Percent.
  double weight = 100;
  bool mute = false, solo = false;
  LayerBlend blend = LayerBlend::Additive;
  /// Additive rotations: by layer multiply as rotations (0) or add angles (1).
  int rotationAccumulation = 0;
  /// Additive scales: multiply (0) or add (1).
  int scaleAccumulation = 0;
};

class FbxAnimLayer final : public FbxObject, public LayerValues {
 public:
  static FbxAnimLayer* Create(FbxScene& scene, std::string name);
  /// Takes the place of `weight` unless it is empty.
  FbxAnimCurve weightCurve;
  std::vector<FbxAnimCurveNode*> curveNodes;

 private:
  using FbxObject::FbxObject;
  void Unlink(const FbxObject& gone) override;
};

struct StackTimes {
  FbxTime localStart, localStop, referenceStart, referenceStop;
};

class FbxAnimStack final : public FbxObject, public StackTimes {
 public:
  static FbxAnimStack* Create(FbxScene& scene, std::string name);
  /// Lowest first.
  std::vector<FbxAnimLayer*> layers;

  /// First and last key of all layers; LocalStart and LocalStop when there are no keys.
  void GetKeySpan(FbxTime& first, FbxTime& last) const;

 private:
  using FbxObject::FbxObject;
  void Unlink(const FbxObject& gone) override;
};

}  // namespace tavrilon::fbx
