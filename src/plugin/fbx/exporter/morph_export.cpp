// SPDX-License-Identifier: MIT
#include "plugin/fbx/exporter/morph_export.h"

#include "host/scene/morpher_modifier.h"
#include "plugin/fbx/exporter/curves.h"

namespace tavrilon::fbx_export {

using namespace corvanta;
using namespace fbx;

namespace {

/// Offsets up to this length move nothing.
constexpr double kSmallestOffset = 1e-6;
/// Percent. A weight that moves by less stands still: a thousandth of what a face shows.
constexpr double kWeightTolerance = 1e-3;

class ShapeMaker {
 public:
  ShapeMaker(const Mesh& mesh, const MeshLayout& layout)
      : mesh_(mesh), layout_(layout), restNormals_(PointNormals(mesh, mesh.points, layout)), moved_(mesh.points) {}

  /// False for a target that does not fit the mesh.
  bool Make(const MorphTarget& target, FbxShape& shape) {
    if (target.points.size() != target.offsets.size()) return false;
    for (size_t i = 0; i < target.points.size(); ++i)
      if (target.points[i] < 0 || target.points[i] >= mesh_.NumPoints() ||
          !IsFinite(TransformVector(layout_.offset, ToVector(target.offsets[i]))))
        return false;
    Move(target, 1);
    const std::vector<Vector3> normals = PointNormals(mesh_, moved_, layout_);
    for (size_t i = 0; i < target.points.size(); ++i) {
      const int point = layout_.newPoints[static_cast<size_t>(target.points[i])];
      const Vector3 offset = TransformVector(layout_.offset, ToVector(target.offsets[i]));
      if (point >= 0 && Length(offset) > kSmallestOffset) Add(shape, point, offset, normals);
    }
    // A shape that moves nothing keeps its channel; readers want one point at least.
    if (shape.indices.empty() && !layout_.oldPoints.empty()) Add(shape, 0, {}, restNormals_);
    Move(target, 0);
    return true;
  }

 private:
  void Move(const MorphTarget& target, float by) {
    for (size_t i = 0; i < target.points.size(); ++i) {
      const auto point = static_cast<size_t>(target.points[i]);
      moved_[point] = mesh_.points[point] + target.offsets[i] * by;
    }
  }
  void Add(FbxShape& shape, int point, const Vector3& offset, const std::vector<Vector3>& normals) {
    shape.indices.push_back(point);
    shape.offsets.push_back(offset);
    shape.normals.push_back(normals[static_cast<size_t>(point)] - restNormals_[static_cast<size_t>(point)]);
  }

  const Mesh& mesh_;
  const MeshLayout& layout_;
  std::vector<Vector3> restNormals_;
  std::vector<Point3> moved_;
};

}  // namespace

bool ExportMorpher(ExportJob& job, const ExportNode& node, const Mesh& mesh, const MeshLayout& layout, FbxMesh& out) {
  const MorpherModifier& morpher = *node.mesh->morpher;
  ShapeMaker shapes(mesh, layout);
  UniqueNames names;
  FbxBlendShape* deformer = nullptr;
  for (int i = 0; i < morpher.NumChannels(); ++i) {
    MorphChannel* channel = morpher.GetChannel(i);
    if (!channel) continue;
    const WStr name = channel->GetName();
    const std::vector<MorphTarget>& targets = channel->Targets();
    if (targets.size() > 1)
      return job.Fail(L"Morpher channel '" + name + L"' of mesh '" + node.node->GetName() +
                      L"' has progressive targets, which cannot be exported.");
    if (targets.empty()) {
      job.Log(L"Morpher channel '" + name + L"' has no target and was left out.");
      continue;
    }
    FbxShape shape;
    if (!shapes.Make(targets.front(), shape))
      return job.Fail(L"Morpher channel '" + name + L"' of mesh '" + node.node->GetName() +
                      L"' has invalid vertex data.");
    if (!deformer) deformer = FbxBlendShape::Create(job.scene, "Morpher");
    FbxBlendShapeChannel* made = FbxBlendShapeChannel::Create(job.scene, names.Take(name, "Channel"));
    shape.name = made->GetName();
    made->fullWeights = {100};
    made->shapes.push_back(std::move(shape));
    deformer->channels.push_back(made);
    job.weights.push_back({channel, made, {}});
    if (job.layer) job.weights.back().values.reserve(static_cast<size_t>(job.times.count));
  }
  if (deformer) out.blendShapes.push_back(deformer);
  return true;
}

void SampleWeights(ExportJob& job, TimeValue t) {
  for (WeightTrack& track : job.weights) {
    Interval valid = FOREVER;
    // A channel that is turned off deforms nothing.
    const bool isOn = track.channel->GetParamBlock()->GetBool(MorphChannel::kEnabled, t);
    const float weight = isOn ? track.channel->GetWeight(t, valid) : 0;
    if (t == job.times.start) track.out->deformPercent = weight;
    if (job.layer) track.values.push_back(weight);
  }
}

void WriteWeightCurves(ExportJob& job, const std::vector<int64_t>& times) {
  for (WeightTrack& track : job.weights) {
    FbxAnimCurveNode* curves = FbxAnimCurveNode::Create(job.scene, "DeformPercent");
    curves->target = track.out;
    curves->property = "DeformPercent";
    curves->defaults[0] = track.out->deformPercent;
    curves->curves[0] = MakeCurve(times, track.values, kWeightTolerance, 0);
    job.layer->curveNodes.push_back(curves);
  }
}

}  // namespace tavrilon::fbx_export
