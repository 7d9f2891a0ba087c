// SPDX-License-Identifier: MIT
// What the four connections share: the track that is followed, held weakly and watched, its time offset, and key
// operations that go to it.
#pragma once

#include "plugin/connections/block_control.h"
#include "plugin/connections/track.h"
#include "plugin/frame/weak_ref_owner.h"

namespace tavrilon {

/// The first two rows of every connection.
enum ConnectionParam : corvanta::ParamID { kConnectionTrack = 0, kConnectionTwoWay = 1 };

/// Where the other shared parameters are in the block of a class.
struct ConnectionRows {
  corvanta::ParamID useTimeOffset, timeOffset, trackOwner, constant;
};

/// The target is a track, a constant or nothing. Deleting what owns the track leaves nothing; undoing that brings the
/// target back. A clone follows the clone of the track when both were cloned together, else the same track.
class ConnectionControl : public BlockControl, public corvanta::ILockedTrackImp, public WeakRefOwner {
 public:
  ConnectionControl(TavrilonClass row, const corvanta::ParamBlockDesc2& desc,
                    const corvanta::FPInterfaceDesc& published, const ConnectionRows& rows, bool loading);

  /// Follows a parameter. False when there is no such parameter or its values are of another kind. Undoable.
  bool SetParamTarget(corvanta::ParamBlock2& owner, corvanta::ParamID id, int tab = 0);
  /// Follows a sub-animatable. False when it has no controller of the right kind, unless it is a parameter. Undoable.
  bool SetSubAnimTarget(corvanta::ReferenceTarget& owner, int subAnim);
  /// Undoable. False for a track that gives values of another kind.
  bool SetTrack(const Track& track);
  /// Gives this value from now on. Undoable. False for a value of another kind.
  bool SetConstant(const corvanta::FPValue& value);
  /// Follows nothing. Undoable.
  void ClearTarget();
  /// Empty for a constant, for nothing, and when the track's owner is gone.
  Track GetTrack() const {
    if (!block_) return {};
    return {block_->GetReferenceTarget(rows_.trackOwner), block_->GetInt(kConnectionTrack)};
  }
  bool IsConstant() const { return block_ && !GetTrack().owner && block_->GetInt(kConnectionTrack) == kConstantTrack; }
  /// "Assigned to: " and the track, "Constant: " with its value, or "None".
  corvanta::WStr TargetText() const;

  /// As scripts name a target: a controller, a sub-animatable's name or number, with the object that owns it; a value
  /// without an owner; nothing at all. Empty, or why it was refused. Undoable.
  corvanta::WStr SetScriptTarget(const corvanta::FPValue& target, corvanta::ReferenceTarget* owner);

  bool IsReplaceable() const final { return !locked_; }
  bool CanOverwrite() const final { return !locked_; }
  bool IsAnimated() override;
  /// Keeps the lock of the controller that this one replaces.
  void Copy(corvanta::Control* from) override;

  // With two-way on keys are the target's, seen through the time offset; else there are none.
  int NumKeys() const override;
  corvanta::TimeValue GetKeyTime(int i) const override;
  int GetKeyIndex(corvanta::TimeValue t) const override;
  bool GetNextKeyTime(corvanta::TimeValue t, bool forward, corvanta::TimeValue& next) const override;
  corvanta::Interval GetKeyRange() const override;
  bool IsKeySelected(int i) const override;
  void AddNewKey(corvanta::TimeValue t) override;
  void DeleteKeyAtTime(corvanta::TimeValue t) override;
  void DeleteKeys(bool selectedOnly) override;
  void SelectKeys(const corvanta::Interval& range, bool on) override;
  void MapKeys(const corvanta::TimeMap& map, uint32_t flags) override;
  void DeleteTime(const corvanta::Interval& range, uint32_t flags) override;
  void ReverseTime(const corvanta::Interval& range, uint32_t flags) override;
  void CopyKeysFromTime(corvanta::TimeValue from, corvanta::TimeValue to) override;
  corvanta::ORT GetORT(bool after) const override;
  void SetORT(corvanta::ORT ort, bool after) override;

  using BlockControl::GetInterface;
  void* GetInterface(uint32_t request) override;
  void CopyStateFrom(corvanta::ReferenceTarget& source, corvanta::RemapDir& remap) override;
  corvanta::IOResult Save(corvanta::ISave& save) override;
  corvanta::IOResult Load(corvanta::ILoad& load) override;

 protected:
  bool IsTwoWay() const { return block_ && block_->GetBool(kConnectionTwoWay); }
  /// The time at which the target is read for `t`; `valid` is narrowed to where the offset is the same.
  corvanta::TimeValue SourceTime(corvanta::TimeValue t, corvanta::Interval& valid) const {
    return block_->GetInt(rows_.useTimeOffset) ? Later(t, block_->GetFloat(rows_.timeOffset, t, valid)) : t;
  }
  corvanta::TimeValue SourceTime(corvanta::TimeValue t) const {
    corvanta::Interval ignored = corvanta::FOREVER;
    return SourceTime(t, ignored);
  }
  const ConnectionRows& Rows() const { return rows_; }

  corvanta::ReferenceTarget* WeakOwner() override { return this; }
  corvanta::ParamBlock2* GetWeakBlock() const override { return block_; }
  corvanta::FPStatus Invoke(int id, corvanta::TimeValue t, corvanta::FPValue& result,
                            std::span<const corvanta::FPValue> args) override;

  bool evaluating_ = false;
  bool writing_ = false;

 private:
  corvanta::Control* KeyTrack() const;
  template <class Ask>
  void AskKeys(Ask&& ask) const;
  template <class Edit>
  void EditKeys(Edit&& edit, bool make = false);

  const ConnectionRows& rows_;
  mutable bool asking_ = false;
};

/// The table of "SetTarget" and "GetTarget".
corvanta::FPInterfaceDesc ConnectionInterface(TavrilonClass row);

}  // namespace tavrilon
