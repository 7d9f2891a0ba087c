// SPDX-License-Identifier: MIT
// Stacks, layers, curve nodes and curves.
#include <bit>

#include "plugin/fbx/format/key_flags.h"
#include "plugin/fbx/format/scene_writer.h"

namespace tavrilon::fbx {

namespace {

/// Only cubic keys have tangents: what others hold there says nothing, and would part runs.
KeyShape Meant(const KeyShape& shape) {
  return shape.interpolation == Interpolation::Cubic ? shape : KeyShape{shape.interpolation};
}

/// The shapes of a curve's keys as files have them: each run of equal shapes once, with its length.
struct ShapeRuns {
  std::vector<int> flags;
  std::vector<float> data;
  std::vector<int> counts;

  explicit ShapeRuns(const FbxAnimCurve& curve);
  void Append(const KeyShape& shape, size_t keys);
};

ShapeRuns::ShapeRuns(const FbxAnimCurve& curve) {
  const size_t keys = curve.times.size();
  for (size_t first = 0; first < keys;) {
    const KeyShape shape = Meant(curve.ShapeOf(first));
    size_t next = curve.shapes.size() == 1 ? keys : first + 1;
    while (next < keys && Meant(curve.shapes[next]) == shape) ++next;
    Append(shape, next - first);
    first = next;
  }
}

void ShapeRuns::Append(const KeyShape& shape, size_t keys) {
  const uint32_t right = PackedWeight(shape.rightWeight), left = PackedWeight(shape.nextLeftWeight);
  uint32_t flag = kInterpolationFlags[static_cast<size_t>(shape.interpolation)];
  if (shape.interpolation == Interpolation::Cubic) flag |= kTangentUser | kTangentBroken;
  if (right != kThirdWeight) flag |= kRightWeighted;
  if (left != kThirdWeight) flag |= kNextLeftWeighted;
  flags.push_back(static_cast<int>(flag));
  data.insert(data.end(), {shape.rightSlope, shape.nextLeftSlope, std::bit_cast<float>(right | left << 16), 0.0f});
  counts.push_back(static_cast<int>(keys));
}

}  // namespace

void SceneWriter::WriteStack(const FbxAnimStack& stack) {
  BeginObject("AnimationStack", plan_.IdOf(&stack), stack.GetName(), "AnimStack", "");
  out_.Begin("Properties70");
  for (const auto& [name, time] :
       {std::pair("LocalStart", stack.localStart), std::pair("LocalStop", stack.localStop),
        std::pair("ReferenceStart", stack.referenceStart), std::pair("ReferenceStop", stack.referenceStop)}) {
    out_.PropertyTime(name, "KTime", "Time", "", time.ticks);
  }
  out_.End();
  out_.End();
}

// A layer as it is by default has no properties: it is then its empty block, without which a reader refuses the file.
void SceneWriter::WriteLayer(const FbxAnimLayer& layer) {
  const std::pair<std::string_view, int> switches[] = {{"Mute", layer.mute}, {"Solo", layer.solo}};
  const std::pair<std::string_view, int> modes[] = {
      {"BlendMode", static_cast<int>(layer.blend)},
      {"RotationAccumulationMode", layer.rotationAccumulation},
      {"ScaleAccumulationMode", layer.scaleAccumulation},
  };
  bool differs = layer.weight != 100 || layer.mute || layer.solo;
  for (const auto& [name, mode] : modes) differs = differs || mode != 0;
  BeginObject("AnimationLayer", plan_.IdOf(&layer), layer.GetName(), "AnimLayer", "");
  if (differs) {
    out_.Begin("Properties70");
    out_.PropertyDouble("Weight", "Number", "", "A", {layer.weight});
    for (const auto& [name, on] : switches) out_.PropertyInt(name, "bool", "", "", on);
    for (const auto& [name, mode] : modes) out_.PropertyInt(name, "enum", "", "", mode);
    out_.End();
  }
  out_.End(true);
}

void SceneWriter::WriteCurveNode(const PlannedCurveNode& node) {
  BeginObject("AnimationCurveNode", plan_.IdOf(&node), node.name, "AnimCurveNode", "");
  out_.Begin("Properties70");
  for (size_t i = 0; i < node.channels.size(); ++i) {
    out_.PropertyDouble(node.channels[i], "Number", "", "A", {node.defaults[i]});
  }
  out_.End();
  out_.End();
  for (size_t i = 0; i < node.channels.size(); ++i) {
    if (!node.curves[i]->IsEmpty()) WriteCurve(*node.curves[i], node.defaults[i]);
  }
}

void SceneWriter::WriteCurve(const FbxAnimCurve& curve, double otherwise) {
  const ShapeRuns runs(curve);
  BeginObject("AnimationCurve", plan_.IdOf(&curve), "", "AnimCurve", "");
  out_.Leaf("Default", otherwise);
  out_.Leaf("KeyVer", 4008);
  out_.ArrayLeaf("KeyTime", curve.times);
  out_.ArrayLeaf("KeyValueFloat", curve.values);
  out_.ArrayLeaf("KeyAttrFlags", runs.flags);
  out_.ArrayLeaf("KeyAttrDataFloat", runs.data);
  out_.ArrayLeaf("KeyAttrRefCount", runs.counts);
  out_.End();
}

}  // namespace tavrilon::fbx
