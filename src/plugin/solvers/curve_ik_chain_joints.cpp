// SPDX-License-Identifier: MIT
// Which nodes a curve chain drives: those that enter the row get its controller, those that leave are let go.
#include <algorithm>

#include "host/scene/core_interface.h"
#include "plugin/frame/find.h"
#include "plugin/solvers/curve_ik_chain.h"
#include "plugin/solvers/curve_ik_control.h"

namespace tavrilon {

using namespace corvanta;

namespace {

float EvenShare(int i, int n) { return n > 1 ? static_cast<float>(i) / static_cast<float>(n - 1) : 0; }

}  // namespace

int CurveIKChain::NumJoints() const { return block_ ? block_->Count(curve_ik_chain::kJoints) : 0; }

INode* CurveIKChain::Joint(int i) const {
  return i >= 0 && i < NumJoints() ? block_->GetINode(curve_ik_chain::kJoints, 0, i) : nullptr;
}

void CurveIKChain::RememberJoints() {
  adopted_.clear();
  for (int i = 0; i < NumJoints(); ++i) adopted_.push_back(Animatable::GetHandleByAnim(Joint(i)));
}

void CurveIKChain::JointsChanged() {
  if (adopting_) return;
  INode* self = FindOwnerNode(this);
  // Undo and redo bring the controllers of the joints back by records of their own.
  if (theHold.UndoRunning() || theHold.RedoRunning()) return RememberJoints();
  if (!self) return;
  adopting_ = true;
  const int n = NumJoints();
  for (size_t i = 0; i < adopted_.size(); ++i) {
    auto* joint = static_cast<INode*>(Animatable::GetAnimByHandle(adopted_[i]));
    bool stays = !joint;
    for (int k = 0; k < n && !stays; ++k) stays = Joint(k) == joint;
    if (!stays) Release(joint, static_cast<int>(i));
  }
  for (int i = 0; i < n; ++i) {
    INode* joint = Joint(i);
    const CurveIKControl* control = CurveIKControl::Of(joint);
    if (control && control->ChainNode() == self)
      Rearrange(joint, i, n);
    else if (joint && joint != self)
      Adopt(joint, self, i, n);
  }
  RememberJoints();
  adopting_ = false;
}

// A joint of another chain changes over with its controller.
void CurveIKChain::Adopt(INode* joint, INode* self, int i, int n) {
  using namespace curve_ik_control;
  CurveIKControl* control = CurveIKControl::Of(joint);
  const bool isNew = !control;
  if (isNew) control = new CurveIKControl;
  ParamBlock2& block = *control->GetParamBlock();
  block.SetValue(kChainNode, 0, self);
  block.SetValue(kIndex, 0, i);
  if (isNew) block.SetValue(kPercent, 0, EvenShare(i, n));
  if (isNew) joint->SetTMController(control);
}

// Only a joint that stands where an even row had it goes where the new row has it.
void CurveIKChain::Rearrange(INode* joint, int i, int n) {
  using namespace curve_ik_control;
  ParamBlock2& block = *CurveIKControl::Of(joint)->GetParamBlock();
  const int before = block.GetInt(kIndex), count = static_cast<int>(adopted_.size());
  if (before != i) block.SetValue(kIndex, 0, i);
  if (block.GetController(kPercent) || block.GetFloat(kPercent) != EvenShare(before, count)) return;
  if (EvenShare(i, n) != EvenShare(before, count)) block.SetValue(kPercent, 0, EvenShare(i, n));
}

void CurveIKChain::Release(INode* joint, int i) {
  CurveIKControl* control = CurveIKControl::Of(joint);
  if (!control || control->Chain() != this) return;
  const Ref<CurveIKControl> keep(control);
  const TimeValue now = GetCOREInterface()->GetTime();
  const bool known = IsCurrent(now) && i < static_cast<int>(cache_.jointTM.size());
  const Matrix3 place = known ? cache_.jointTM[static_cast<size_t>(i)] : joint->GetNodeTM(now);
  const Ref<Control> inner(control->GetInner());
  if (inner) control->SetInner(nullptr);
  joint->SetTMController(inner ? inner.Get() : NewDefaultMatrix3Controller());
  if (!inner) joint->SetNodeTM(now, place);
}

}  // namespace tavrilon
