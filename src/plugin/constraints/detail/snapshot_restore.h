// SPDX-License-Identifier: MIT
// Undo of what a parent constraint remembers of its targets. It knows the constraint by handle: one that is gone by the
// time of the undo is passed over.
#pragma once

#include "host/core/hold.h"
#include "plugin/constraints/parent_constraint.h"

namespace tavrilon {

class ParentTransformSnapshotRestore final : public corvanta::RestoreObj {
 public:
  explicit ParentTransformSnapshotRestore(ParentConstraint* owner);
  void Restore(bool isUndo) override;
  void Redo() override;
  size_t Size() const override { return sizeof *this + before_.snapshots.size() * sizeof(ParentConstraint::Snapshot); }

 private:
  struct Kept {
    corvanta::Matrix3 lastParent;
    corvanta::TimeValue lastParentTime = 0;
    std::vector<ParentConstraint::Snapshot> snapshots;
  };
  ParentConstraint* Owner() const;
  static Kept Take(const ParentConstraint& owner);
  void Put(const Kept& kept) const;
  corvanta::AnimHandle handle_;
  Kept before_, after_;
};

}  // namespace tavrilon
