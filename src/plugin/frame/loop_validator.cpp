// SPDX-License-Identifier: MIT
#include "plugin/frame/loop_validator.h"

#include <unordered_set>
#include <vector>

#include "host/core/param_block.h"

namespace tavrilon {

using namespace corvanta;

namespace {

/// Depth-first over what evaluation reads: of a node its transform controller and its parent, of anything else its
/// references, of a block its weak slots too.
class EvaluationWalk {
 public:
  explicit EvaluationWalk(const ReferenceTarget* goal) : goal_(goal) {}

  bool Reaches(ReferenceTarget* start) {
    Visit(start);
    while (!open_.empty() && !found_) {
      ReferenceTarget* at = open_.back();
      open_.pop_back();
      Expand(at);
    }
    return found_;
  }

 private:
  void Visit(ReferenceTarget* target) {
    if (!target || !seen_.insert(target).second) return;
    found_ = found_ || target == goal_;
    open_.push_back(target);
  }
  void Expand(ReferenceTarget* target) {
    if (INode* node = target->AsNode()) {
      Visit(node->GetTMController());
      if (node->GetParentNode() && !node->GetParentNode()->IsRootNode()) Visit(node->GetParentNode());
      return;
    }
    for (int i = 0; i < target->NumRefs(); ++i)
      if (target->ReadsReference(i)) Visit(target->GetReference(i));
    const bool isBlock = target->SuperClassID() == kParamBlockSuper && !target->TestFlag(A_PLACEHOLDER);
    if (isBlock) VisitWeakSlots(static_cast<ParamBlock2&>(*target));
  }
  void VisitWeakSlots(const ParamBlock2& block) {
    for (const ParamRow& row : block.GetDesc().rows) {
      if (!row.Is(kWeak)) continue;
      for (int tab = 0; tab < block.Count(row.id); ++tab) Visit(block.GetWeakRaw(row.id, tab));
    }
  }

  const ReferenceTarget* goal_;
  bool found_ = false;
  std::vector<ReferenceTarget*> open_;
  std::unordered_set<ReferenceTarget*> seen_;
};

}  // namespace

bool DependsOn(ReferenceTarget* start, const ReferenceTarget* goal) {
  return start && goal && EvaluationWalk(goal).Reaches(start);
}

bool TransformDependsOn(INode* node, const ReferenceTarget* owner) { return DependsOn(node, owner); }

// The node of `owner` has `owner` in its own transform, so the walk refuses it as well.
bool MayFollow(const ReferenceTarget* owner, INode* candidate) {
  return candidate && !TransformDependsOn(candidate, owner);
}

}  // namespace tavrilon
