// SPDX-License-Identifier: MIT
#include "host/scene/evaluation_plan.h"

#include "host/core/param_block.h"
#include "host/scene/scene.h"

namespace corvanta {

namespace {

constexpr size_t kLine = EvaluationFootprint::kLine;
/// So many nodes are fetched ahead: with 2 the lines arrive in time and still lie in the first-level cache.
constexpr size_t kAhead = 2;
/// What evaluation reads lies at the start of an object. Controllers are mostly shorter than this.
constexpr size_t kControlBytes = 5 * kLine;
constexpr size_t kNodeBytes = 4 * kLine;
/// Deeper than layers of lists and wrapped controllers go.
constexpr int kMaxDepth = 8;

}  // namespace

// Controllers and their parameter blocks. Nodes and objects that they point at are evaluated elsewhere.
void EvaluationPlan::AddWhatIsRead(const ReferenceMaker& maker, int depth) {
  const auto* block = dynamic_cast<const ParamBlock2*>(&maker);
  footprint_.Add(dynamic_cast<const void*>(&maker), block ? sizeof *block : kControlBytes);
  maker.AddFootprint(footprint_);
  if (depth == kMaxDepth) return;
  for (int i = 0; i < maker.NumRefs(); ++i) {
    if (!maker.ReadsReference(i)) continue;
    ReferenceTarget* part = maker.GetReference(i);
    if (part && (part->AsControl() || part->SuperClassID() == kParamBlockSuper)) AddWhatIsRead(*part, depth + 1);
  }
}

void EvaluationPlan::Make(const Scene& scene) {
  footprint_.Clear();
  first_.clear();
  for (const Ref<INode>& node : scene.Nodes()) {
    first_.push_back(static_cast<uint32_t>(footprint_.Lines().size()));
    footprint_.Add(node.Get(), kNodeBytes);
    if (const Control* control = node->GetTMController()) AddWhatIsRead(*control, 0);
  }
  first_.push_back(static_cast<uint32_t>(footprint_.Lines().size()));
  linkStamp_ = ReferenceTarget::LinkStamp();
}

void EvaluationPlan::Evaluate(const Scene& scene, TimeValue t) {
  const auto& nodes = scene.Nodes();
  if (linkStamp_ != ReferenceTarget::LinkStamp() || first_.size() != nodes.size() + 1) Make(scene);
  const auto& lines = footprint_.Lines();
  for (size_t i = 0; i < nodes.size(); ++i) {
    // Written out here: a function of fetches alone counts as one without effect and would be left out.
    if (i + kAhead < nodes.size() && !nodes[i + kAhead]->HasNodeTM(t))
      for (uint32_t k = first_[i + kAhead]; k < first_[i + kAhead + 1]; ++k) __builtin_prefetch(lines[k]);
    nodes[i]->GetNodeTM(t);
  }
}

}  // namespace corvanta
