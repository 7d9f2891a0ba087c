// SPDX-License-Identifier: MIT
// The rig's attributes: animated settings on the controls that an animator works with, read by solvers and constraints.
// They ride on nodes and never on objects, since the controls of a mirrored pair share theirs.
#pragma once

#include "host/core/cust_attrib.h"
#include "host/core/param_block.h"
#include "plugin/attributes/attrib_params.h"
#include "plugin/frame/class_table.h"

namespace tavrilon {

/// Every attribute class: what tells one from another is the row of the class table and the table of its parameters.
class RigAttrib : public corvanta::CustAttrib {
 public:
  explicit RigAttrib(TavrilonClass row, bool loading = false);
  corvanta::Class_ID ClassID() const override { return ClassIdOf(row_); }
  corvanta::WStr GetClassName() const override { return DescOf(row_).className; }
  /// Null only while loading.
  corvanta::ParamBlock2* GetParamBlock() const { return block_; }

  int NumRefs() const override { return 1; }
  corvanta::ReferenceTarget* GetReference(int which) const override { return which == 0 ? block_ : nullptr; }
  int NumSubs() const override { return 1; }
  corvanta::Animatable* SubAnim(int i) override { return GetReference(i); }
  corvanta::WStr SubAnimName(int i) override { return i == 0 ? L"Parameters" : L""; }
  int SubNumToRefNum(int i) override { return i; }

 protected:
  void SetReference(int which, corvanta::ReferenceTarget* target) override {
    if (which == 0) block_ = static_cast<corvanta::ParamBlock2*>(target);
  }

 private:
  TavrilonClass row_;
  corvanta::ParamBlock2* block_ = nullptr;
};

/// The parameter table of an attribute class; null for any other class.
const corvanta::ParamBlockDesc2* AttribBlockDesc(TavrilonClass attrib);

/// The node's attribute of that class, null when it has none. Allocates nothing.
RigAttrib* FindRigAttrib(const corvanta::INode* node, TavrilonClass attrib);
/// The block of the node's attribute of that class, which is made where there is none. Null for a null node and for a
/// class that is no attribute. A new link attribute serves the node itself. Undoable.
corvanta::ParamBlock2* AddAttrib(corvanta::INode* node, TavrilonClass attrib);
/// The block of the node's attribute of that class, null when it has none. Allocates nothing.
corvanta::ParamBlock2* FindAttrib(const corvanta::INode* node, TavrilonClass attrib);

}  // namespace tavrilon
