// SPDX-License-Identifier: MIT
#include "plugin/fbx/exporter/transform_samples.h"

#include <array>

#include "plugin/fbx/exporter/curves.h"
#include "plugin/fbx/exporter/morph_export.h"

namespace tavrilon::fbx_export {

using namespace corvanta;
using namespace fbx;

namespace {

enum Part : size_t { kTranslation, kRotation, kScaling, kNumParts };

/// How the parts stand in a file, and what a channel at rest has.
struct PartRow {
  const char* curveNode;
  const char* property;
  Vector3 Trs::*value;
  Vector3 NodeTransform::*still;
  double neat;
};
constexpr PartRow kParts[kNumParts] = {
    {"T", "Lcl Translation", &Trs::translation, &NodeTransform::translation, 0},
    {"R", "Lcl Rotation", &Trs::rotation, &NodeTransform::rotation, 0},
    {"S", "Lcl Scaling", &Trs::scaling, &NodeTransform::scaling, 1},
};

struct NodeSamples {
  TrsTrack track;
  /// World matrix at the present sample; its inverse where there are children.
  Affine world, inverse;
  bool isInvertible = true;
  /// The largest world coordinate of all samples.
  double reach = 0;
  /// Local to the exported parent at the first sample.
  Affine firstLocal;
  Trs first;
  std::array<std::vector<float>, 9> channels;
};

/// Channels that move by less than this stand still. World matrices are floats: their rows are off by some 1e-7 after
/// the products of a deep hierarchy, coordinates by that share of their size, and both errors meet again in the local
/// matrix. The limits stay ten times above what is seen and far below what shows: 1e-4 degrees move the end of a limb
/// of one metre by two thousandths of a millimetre.
std::array<double, kNumParts> Tolerances(double reach) { return {1e-6 * (1 + reach), 1e-4, 4e-6}; }

class TransformSampler {
 public:
  explicit TransformSampler(ExportJob& job) : job_(job), samples_(job.nodes.size()) {
    if (!job.layer) return;
    for (NodeSamples& node : samples_)
      for (std::vector<float>& channel : node.channels) channel.reserve(static_cast<size_t>(job.times.count));
  }

  bool Sample() {
    for (int i = 0; i < job_.times.count; ++i) {
      // Seldom enough to cost nothing, often enough for a bar that moves.
      if (i % 16 == 0 && !job_.Show(0.8 * i / job_.times.count)) return false;
      const TimeValue t = job_.times.At(i);
      for (size_t n = 0; n < samples_.size(); ++n)
        if (!SampleNode(n, t, i == 0)) return false;
      SampleWeights(job_, t);
    }
    return true;
  }

  void WriteStillPose() {
    for (size_t n = 0; n < samples_.size(); ++n) WriteStill(n);
  }

  void WriteCurves() {
    std::vector<int64_t> times;
    times.reserve(static_cast<size_t>(job_.times.count));
    for (int i = 0; i < job_.times.count; ++i) times.push_back(ToFileTime(job_.times.At(i)).ticks);
    for (size_t n = 0; n < samples_.size(); ++n) WriteCurves(n, times);
    WriteWeightCurves(job_, times);
    if (times.size() > 1 && !HasMovement()) KeepLength(times);
  }

 private:
  bool Refuse(size_t n, const wchar_t* sentence, TimeValue t, const wchar_t* advice) {
    const INode& node = *job_.nodes[n].node;
    if (job_.times.count > 1)
      job_.Log(Format(L"It happens at frame %g.", static_cast<double>(t) / job_.times.ticksPerFrame));
    job_.Log(advice);
    return job_.Fail(L"Node '" + node.GetName() + L"'" + sentence);
  }

  bool RefuseFault(size_t n, TrsFault fault, TimeValue t) {
    switch (fault) {
      case TrsFault::Shear:
        return Refuse(n, L" has local shear that cannot be represented by a single FBX TRS node.", t,
                      L"Shear comes from a scale that differs by axis above a turned node: take that scale off its "
                      L"parents, or export the node without them.");
      case TrsFault::NotFinite:
        return RefuseNotFinite(n, t);
      default:
        return Refuse(n, L": The converted position, rotation or scale exceeds the supported numeric range.", t,
                      L"Values beyond 1e15 cannot be told apart any more: look at the node's keys.");
    }
  }

  bool RefuseNotFinite(size_t n, TimeValue t) {
    return Refuse(n, L": The evaluated transform contains non-finite values.", t,
                  L"Look at the node's controllers for a value that is no number.");
  }

  bool SampleNode(size_t n, TimeValue t, bool isFirst) {
    ExportNode& node = job_.nodes[n];
    NodeSamples& samples = samples_[n];
    samples.world = ToAffine(node.node->GetNodeTM(t)) * job_.axes;
    if (!IsFinite(samples.world)) return RefuseNotFinite(n, t);
    const Vector3& at = samples.world.row[3];
    samples.reach = std::max({samples.reach, std::abs(at.x), std::abs(at.y), std::abs(at.z)});
    if (node.hasChildren) {
      samples.isInvertible = IsSound(samples.world);
      if (samples.isInvertible) samples.inverse = Inverse(samples.world);
    }

    Affine local = samples.world;
    if (node.parent >= 0) {
      const NodeSamples& parent = samples_[static_cast<size_t>(node.parent)];
      if (!parent.isInvertible)
        return Refuse(n, L": The exported parent has zero scale; its local position cannot be recovered.", t,
                      L"Scale the parent to a small size instead of to nothing, or do not export its children.");
      local = local * parent.inverse;
      samples.reach = std::max(samples.reach, parent.reach);
    }
    const TrsFault fault = samples.track.Split(local);
    if (fault != TrsFault::None) return RefuseFault(n, fault, t);
    const Trs& trs = samples.track.Last();
    if (isFirst) samples.first = trs, samples.firstLocal = local;
    if (job_.layer) Record(samples, trs);
    return true;
  }

  static void Record(NodeSamples& samples, const Trs& trs) {
    size_t c = 0;
    for (const PartRow& part : kParts)
      for (size_t axis = 0; axis < 3; ++axis)
        samples.channels[c++].push_back(static_cast<float>((trs.*part.value)[axis]));
  }

  /// The place under the parent in the still pose.
  Trs StillLocal(size_t n, Affine& local) {
    const ExportNode& node = job_.nodes[n];
    local = samples_[n].firstLocal;
    if (!node.bind) return samples_[n].first;
    Affine bound = *node.bind;
    bool isSound = true;
    if (node.parent >= 0) {
      const Affine& parent = job_.nodes[static_cast<size_t>(node.parent)].rest;
      isSound = IsSound(parent);
      if (isSound) bound = bound * Inverse(parent);
    }
    TrsTrack track;
    if (!isSound || track.Split(bound) != TrsFault::None) {
      job_.Log(L"The bind pose of '" + node.node->GetName() +
               L"' is sheared; its still pose is that of the first sample. The Skin keeps the bind pose.");
      return samples_[n].first;
    }
    local = bound;
    return track.Last();
  }

  void WriteStill(size_t n) {
    ExportNode& node = job_.nodes[n];
    Affine local;
    const Trs still = StillLocal(n, local);
    node.rest = node.parent < 0 ? local : local * job_.nodes[static_cast<size_t>(node.parent)].rest;
    const std::array<double, kNumParts> tolerances = Tolerances(samples_[n].reach);
    for (size_t p = 0; p < kNumParts; ++p)
      for (size_t axis = 0; axis < 3; ++axis) {
        const double value = (still.*kParts[p].value)[axis];
        const double neat = kParts[p].neat;
        (node.out->transform.*kParts[p].still)[axis] = std::abs(value - neat) <= tolerances[p] ? neat : value;
      }
  }

  void WriteCurves(size_t n, const std::vector<int64_t>& times) {
    NodeSamples& samples = samples_[n];
    FbxNode* out = job_.nodes[n].out;
    const std::array<double, kNumParts> tolerances = Tolerances(samples.reach);
    for (size_t p = 0; p < kNumParts; ++p) {
      FbxAnimCurveNode* curves = FbxAnimCurveNode::Create(job_.scene, kParts[p].curveNode);
      curves->target = out;
      curves->property = kParts[p].property;
      for (size_t axis = 0; axis < 3; ++axis) {
        curves->defaults[axis] = (out->transform.*kParts[p].still)[axis];
        curves->curves[axis] = MakeCurve(times, samples.channels[3 * p + axis], tolerances[p], kParts[p].neat);
        samples.channels[3 * p + axis] = {};
      }
      job_.layer->curveNodes.push_back(curves);
    }
  }

  bool HasMovement() const {
    for (const FbxAnimCurveNode* node : job_.layer->curveNodes)
      for (const FbxAnimCurve& curve : node->curves)
        if (curve.times.size() > 1) return true;
    return false;
  }

  /// Readers take the length of a stack from its last key. When nothing moves one node tells it.
  void KeepLength(const std::vector<int64_t>& times) {
    for (FbxAnimCurve& curve : job_.layer->curveNodes.front()->curves) {
      curve.times = {times.front(), times.back()};
      curve.values.push_back(curve.values.front());
    }
  }

  ExportJob& job_;
  std::vector<NodeSamples> samples_;
};

}  // namespace

bool ExportTransforms(ExportJob& job) {
  TransformSampler sampler(job);
  if (!sampler.Sample()) return false;
  sampler.WriteStillPose();
  if (job.layer) sampler.WriteCurves();
  return true;
}

}  // namespace tavrilon::fbx_export
