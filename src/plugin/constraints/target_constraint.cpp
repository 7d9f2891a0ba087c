// SPDX-License-Identifier: MIT
#include "plugin/constraints/target_constraint.h"

#include "host/core/hold.h"

namespace tavrilon {

using namespace corvanta;

namespace {
enum FunctionID { kGetNumTargets = 0, kGetNode, kGetWeight, kSetWeight, kAppendTarget, kDeleteTarget };
}

TargetListHook targetListHook;

FPInterfaceDesc ConstraintInterface(TavrilonClass row) {
  const Class_ID id = DescOf(row).classId;
  return FPInterfaceDesc(
      {id.a, id.b}, L"constraints",
      {{kGetNumTargets, L"getNumTargets", FPType::Int},
       {kGetNode, L"getNode", FPType::Node, {{L"nodeNumber", FPType::Index}}},
       {kGetWeight, L"getWeight", FPType::Float, {{L"targetNumber", FPType::Index}}},
       {kSetWeight, L"setWeight", FPType::Bool, {{L"targetNumber", FPType::Index}, {L"weight", FPType::Float}}},
       {kAppendTarget,
        L"appendTarget",
        FPType::Bool,
        {{L"target", FPType::Node}, {L"weight", FPType::Float, FPValue(50.0f)}}},
       {kDeleteTarget, L"deleteTarget", FPType::Bool, {{L"targetNumber", FPType::Index}}}});
}

TargetConstraint::TargetConstraint(TavrilonClass row, const ParamBlockDesc2& desc, const FPInterfaceDesc& published,
                                   bool loading)
    : row_(row), published_(*this, published) {
  if (!loading) BindReference(0, new ParamBlock2(desc));
}

INode* TargetConstraint::GetNode(int i) const {
  return i >= 0 && i < GetNumTargets() ? block_->GetINode(kTargetList, 0, i) : nullptr;
}

float TargetConstraint::GetWeight(int i, TimeValue t) const {
  return block_ && i >= 0 && i < block_->Count(kWeight) ? block_->GetFloat(kWeight, t, i) : 0;
}

bool TargetConstraint::SetWeight(int i, float weight, TimeValue t) {
  if (!block_ || i < 0 || i >= block_->Count(kWeight)) return false;
  const HoldScope hold;
  return block_->SetValue(kWeight, t, weight, i);
}

bool TargetConstraint::HasTarget(INode* target) const {
  for (int i = 0; i < GetNumTargets(); ++i)
    if (GetNode(i) == target) return true;
  return false;
}

bool TargetConstraint::CanAppend(INode* target) const {
  if (!block_ || HasTarget(target)) return false;
  return !target || !target->TestForLoop(const_cast<TargetConstraint*>(this));
}

bool TargetConstraint::AppendTarget(INode* target, float weight) {
  if (!CanAppend(target)) return false;
  const HoldScope hold;
  block_->Append(kWeight, weight);
  block_->Append(kTargetList, target);
  NotifyDependents();
  return true;
}

bool TargetConstraint::DeleteTarget(int i) {
  if (!block_ || i < 0 || i >= GetNumTargets()) return false;
  const HoldScope hold;
  block_->Delete(kTargetList, i);
  if (i < block_->Count(kWeight)) block_->Delete(kWeight, i);
  NotifyDependents();
  return true;
}

FPStatus TargetConstraint::Published::Invoke(int id, TimeValue t, FPValue& result, std::span<const FPValue> args) {
  switch (id) {
    case kGetNumTargets:
      result = owner_.GetNumTargets();
      break;
    case kGetNode:
      result = TargetValue(owner_.GetNode(FPArg(args, 0).ToInt()));
      break;
    case kGetWeight:
      result = owner_.GetWeight(FPArg(args, 0).ToInt(), t);
      break;
    case kSetWeight:
      result = owner_.SetWeight(FPArg(args, 0).ToInt(), FPArg(args, 1).ToFloat(), t);
      break;
    case kAppendTarget:
      result = owner_.AppendTarget(FPArg(args, 0).ToNode(), FPArg(args, 1).ToFloat());
      break;
    case kDeleteTarget:
      result = owner_.DeleteTarget(FPArg(args, 0).ToInt());
      break;
    default:
      return FPStatus::NoSuchFunction;
  }
  return FPStatus::OK;
}

}  // namespace tavrilon
