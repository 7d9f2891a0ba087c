// SPDX-License-Identifier: MIT
// When only the pivot of a target moves, the node under the constraint stays where it is: the change is taken out again
// by the offset of that target, or by the inner controller.
#include <algorithm>

#include "host/core/after_delivery.h"
#include "host/scene/core_interface.h"
#include "plugin/constraints/detail/snapshot_restore.h"

namespace tavrilon {

using namespace corvanta;

namespace {

// Object offsets are typed or dragged numbers, not products: a difference this small is none.
constexpr float kSameOffset = 1e-06f;

bool Same(const Matrix3& a, const Matrix3& b, float tolerance = kSameOffset) {
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 3; ++c)
      if (!(std::abs(a.row[r][c] - b.row[r][c]) <= tolerance * std::max(1.0f, std::abs(a.row[r][c])))) return false;
  return true;
}

// Does the object stand where it stood, though pivot and offset moved? Products of two matrices carry more rounding.
bool ObjectStayed(const Matrix3& offset, const Matrix3& tm, const Matrix3& offset0, const Matrix3& tm0) {
  constexpr float kSameProduct = 1e-05f;
  return Same(offset * tm, offset0 * tm0, kSameProduct);
}

}  // namespace

ParentTransformSnapshotRestore::ParentTransformSnapshotRestore(ParentConstraint* owner)
    : handle_(Animatable::GetHandleByAnim(owner)), before_(Take(*owner)) {}

ParentConstraint* ParentTransformSnapshotRestore::Owner() const {
  return static_cast<ParentConstraint*>(Animatable::GetAnimByHandle(handle_));
}

ParentTransformSnapshotRestore::Kept ParentTransformSnapshotRestore::Take(const ParentConstraint& owner) {
  return {owner.lastParent_, owner.lastParentTime_, owner.snapshots_};
}

void ParentTransformSnapshotRestore::Put(const Kept& kept) const {
  ParentConstraint* owner = Owner();
  if (!owner) return;
  owner->lastParent_ = kept.lastParent;
  owner->lastParentTime_ = kept.lastParentTime;
  owner->snapshots_ = kept.snapshots;
  owner->NotifyDependents();
}

void ParentTransformSnapshotRestore::Restore(bool isUndo) {
  if (isUndo && Owner()) after_ = Take(*Owner());
  Put(before_);
}

void ParentTransformSnapshotRestore::Redo() { Put(after_); }

void ParentConstraint::RecordSnapshot() {
  if (theHold.FirstTouch(snapshotStamp_)) theHold.Put(std::make_unique<ParentTransformSnapshotRestore>(this));
}

// Answers whether the motion of the target's pivot is to be taken out, with the matrix that takes it out.
bool ParentConstraint::Absorb(Snapshot& seen, INode* node, TimeValue t, Matrix3& correction) {
  const Interface& core = *GetCOREInterface();
  const bool pivotOnly = core.GetPivotMode() == PivotMode::PivotOnly;
  const bool leaveChildren = core.GetLeaveChildrenUnaffected();
  const Matrix3 offset = node->GetObjOffsetTM();
  const Matrix3 tm = node->GetNodeTM(t);
  if (core.GetPivotMode() == PivotMode::ObjectOnly) return false;
  if (!pivotOnly && leaveChildren && Same(offset, seen.offset)) return false;
  RecordSnapshot();
  if (tm == seen.tm && offset == seen.offset) return false;
  bool absorbed = false;
  if (!(tm == seen.tm) && (pivotOnly || !leaveChildren) && ObjectStayed(offset, tm, seen.offset, seen.tm) &&
      !Same(offset, seen.offset)) {
    correction = seen.tm * Inverse(tm);
    absorbed = true;
  } else if (!(tm == seen.tm) && pivotOnly) {
    correction = seen.tm * Inverse(tm);
    absorbed = true;
  } else if (!Same(offset, seen.offset) && ObjectStayed(offset, tm, seen.offset, seen.tm)) {
    correction = seen.tm * Inverse(tm);
    absorbed = true;
  } else if (!Same(offset, seen.offset) && !seen.absorbed && ObjectStayed(offset, tm, seen.olderOffset, seen.olderTM)) {
    // The pivot's matrix came first and its offset only now: the pair before the last change is the one that counts.
    correction = seen.olderTM * Inverse(tm);
    absorbed = true;
  }
  seen.olderTM = seen.tm;
  seen.olderOffset = seen.offset;
  seen.tm = tm;
  seen.offset = offset;
  seen.absorbed = absorbed;
  return absorbed;
}

void ParentConstraint::Rebase(TimeValue t) {
  if (!theHold.Holding() || rebasing_ || !block_) return;
  rebasing_ = true;
  const bool relative = block_->GetBool(kRelative);
  const int n = GetNumTargets();
  snapshots_.resize(static_cast<size_t>(n));
  std::vector<Matrix3> old(static_cast<size_t>(n));
  bool putAside = false;
  for (int i = 0; i < n; ++i) {
    INode* node = GetNode(i);
    Snapshot& seen = snapshots_[static_cast<size_t>(i)];
    Matrix3& before = old[static_cast<size_t>(i)];
    if (!node) continue;
    before = node->GetNodeTM(t);
    const AnimHandle handle = GetHandleByAnim(node);
    if (seen.node != handle || seen.time != t) {
      const Matrix3 offset = node->GetObjOffsetTM();
      seen = {handle, t, before, offset, before, offset, false};
      continue;
    }
    Matrix3 correction;
    if (!Absorb(seen, node, t, correction)) continue;
    if (relative && i < block_->Count(kOffset)) {
      block_->SetValue(kOffset, t, block_->GetMatrix3(kOffset, t, i) * correction, i);
    } else {
      before = correction * before;
      putAside = true;
    }
  }
  if (putAside && inner_) {
    Interval valid = FOREVER;
    const Matrix3 was = Blend(t, relative, valid, &old);
    const Matrix3 now = Blend(t, relative, valid);
    Matrix3 tm = was;
    inner_->GetValue(t, tm, valid, CTRL_RELATIVE);
    HandOver(t, was, now, tm);
  }
  rebasing_ = false;
}

RefResult ParentConstraint::NotifyRefChanged(const Interval&, ReferenceTarget* target, PartID& part, RefMessage message,
                                             bool) {
  if (!notifyEnabled_) return REF_SUCCEED;
  if (message == REFMSG_BLOCK_QUESTION && target == block_) return REF_STOP;
  const bool mayMove = message == REFMSG_CHANGE && target != inner_ && (part & (PART_TM | PART_TOPO | PART_GEOM));
  if (!mayMove || rebasing_ || rebaseWaits_ || !theHold.Holding()) return REF_SUCCEED;
  rebaseWaits_ = true;
  AfterDelivery(this, [](ReferenceTarget* owner) {
    auto* self = static_cast<ParentConstraint*>(owner);
    self->rebaseWaits_ = false;
    self->Rebase(GetCOREInterface()->GetTime());
  });
  return REF_SUCCEED;
}

}  // namespace tavrilon
