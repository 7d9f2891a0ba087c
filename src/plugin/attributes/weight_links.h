// SPDX-License-Identifier: MIT
// Links as stepped keys on the weights of a parent constraint: at each key one target has all the weight.
#pragma once

#include "plugin/attributes/control_links.h"
#include "plugin/constraints/parent_constraint.h"

namespace tavrilon {

class WeightLinks final : public ControlLinks {
 public:
  WeightLinks(corvanta::INode* control, std::vector<corvanta::INode*> spaces);
  int Count() const override { return static_cast<int>(Times().size()); }
  corvanta::INode* Node(int i) const override;
  corvanta::TimeValue Time(int i) const override;
  bool Add(corvanta::INode* target, corvanta::TimeValue t) override;
  bool Delete(int i) override;

 private:
  /// Key times of all weights, sorted and unique.
  std::vector<corvanta::TimeValue> Times() const;
  bool IsLocked() const;
  void MakeConstraint();
  int IndexOf(corvanta::INode* target) const;
  int FindOrAppend(corvanta::INode* target);
  void BindToParent();
  void SetWeightKeys(int index, corvanta::TimeValue t);
  void KeepAt(corvanta::TimeValue t, const corvanta::Matrix3& tm);

  corvanta::INode* control_;
  std::vector<corvanta::INode*> spaces_;
  ParentConstraint* constraint_ = nullptr;
};

}  // namespace tavrilon
