// SPDX-License-Identifier: MIT
#include "plugin/attributes/control_links.h"

#include <cmath>

#include "host/core/param_block.h"
#include "host/core/published.h"
#include "host/scene/core_interface.h"
#include "plugin/attributes/weight_links.h"
#include "plugin/frame/class_table.h"
#include "plugin/solvers/chain_params.h"

namespace tavrilon {

using namespace corvanta;

namespace {

/// The link track of a chain's goal, goal parent or target, worked by its published interface.
class GoalLinks final : public ControlLinks {
 public:
  explicit GoalLinks(Control& link) : link_(&link) {}
  int Count() const override {
    const ParamBlock2* block = Block();
    return block ? block->Count(ikfk_link::kTargetList) : 0;
  }
  INode* Node(int i) const override { return Has(i) ? Block()->GetINode(ikfk_link::kTargetList, 0, i) : nullptr; }
  TimeValue Time(int i) const override { return Has(i) ? Block()->GetTime(ikfk_link::kStartTime, 0, i) : 0; }
  bool Add(INode* target, TimeValue t) override {
    const int frame = static_cast<int>(std::floor(static_cast<double>(t) / GetCOREInterface()->GetTicksPerFrame()));
    if (!target) return Call(L"AddWorld", {frame, true});
    return Call(L"AddTarget", {TargetValue(target), frame, true});
  }
  bool Delete(int i) override { return Has(i) && Call(L"DeleteTarget", {i, true}); }

 private:
  ParamBlock2* Block() const { return dynamic_cast<ParamBlock2*>(link_->GetReference(0)); }
  bool Has(int i) const { return i >= 0 && i < Count(); }
  bool Call(const wchar_t* name, std::initializer_list<FPValue> args) {
    const Class_ID id = ClassIdOf(TavrilonClass::IKFKLink);
    FPInterface* published = link_->GetInterface(Interface_ID{id.a, id.b});
    const FPFunctionDesc* function = published ? published->GetDesc().FindFunction(name) : nullptr;
    FPValue result;
    return function &&
           published->Invoke(function->id, GetCOREInterface()->GetTime(), result, {args.begin(), args.size()}) ==
               FPStatus::OK &&
           result.ToInt() != 0;
  }
  Ref<Control> link_;
};

/// The link of a control that a chain has wrapped, where it can act: it is no sub-animatable elsewhere.
Control* ActiveLink(INode* control) {
  Control* wrapped = control->GetTMController();
  if (!IsOfClass(wrapped, TavrilonClass::IKFKControl)) return nullptr;
  for (int i = 0; i < wrapped->NumSubs(); ++i) {
    auto* sub = dynamic_cast<ReferenceTarget*>(wrapped->SubAnim(i));
    if (IsOfClass(sub, TavrilonClass::IKFKLink)) return sub->AsControl();
  }
  return nullptr;
}

/// Joints go by their chain: a constraint below would be taken for the joint's pose under its parent.
bool IsJoint(INode* control) {
  Control* wrapped = control->GetTMController();
  if (!IsOfClass(wrapped, TavrilonClass::IKFKControl)) return false;
  const auto* block = dynamic_cast<ParamBlock2*>(wrapped->GetReference(0));
  return block && block->GetInt(ikfk_control::kType) == ikfk_control::kJoint;
}

}  // namespace

std::unique_ptr<ControlLinks> LinksOf(INode* control, std::vector<INode*> spaces) {
  if (!control) return nullptr;
  if (Control* link = ActiveLink(control)) return std::make_unique<GoalLinks>(*link);
  if (IsJoint(control)) return nullptr;
  return std::make_unique<WeightLinks>(control, std::move(spaces));
}

}  // namespace tavrilon
