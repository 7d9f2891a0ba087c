// SPDX-License-Identifier: MIT
// The controller of every keyframe class: one template over the kind of key. It joins a curve, a constant that counts
// while there are no keys, the writing rules of animate mode, undo, and the optional ease and multiplier curves.
#pragma once

#include "host/anim/class_ids.h"
#include "host/anim/key_control.h"
#include "host/anim/key_curve.h"
#include "host/anim/track_curves.h"

namespace corvanta {

/// One row of the table of classes.
struct KeyframeClass {
  const wchar_t* name;
  SClass_ID superClass;
  Class_ID id;
};

template <class Key>
class KeyframeControl final : public Control,
                              public IKeyControl,
                              public ILockedTrackImp,
                              private CurveListFace<TrackCurves::kEase>,
                              private CurveListFace<TrackCurves::kMultiplier> {
 public:
  using Value = typename KeyKind<Key>::Value;

  explicit KeyframeControl(const KeyframeClass& row) : row_(row) {}

  SClass_ID SuperClassID() const override { return row_.superClass; }
  Class_ID ClassID() const override { return row_.id; }
  WStr GetClassName() const override { return row_.name; }
  using Control::GetInterface;
  void* GetInterface(uint32_t request) override;

  void GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) override;
  /// With animate on: a key at `t`, and first one at time 0 that keeps the old value when there was none. Off: the
  /// constant, or every key by the same difference. Dropped while locked. Undoable.
  void SetValue(TimeValue t, ValueRef value, bool commit, GetSetMethod method) override;
  /// Keys and out-of-range types of the same class as they are; else a key at each key time of `from`, or its value at
  /// time 0 as the constant. Takes the lock over.
  void Copy(Control* from) override;

  bool IsLeaf() const override { return NumSubs() == 0; }
  bool IsKeyable() const override { return true; }
  bool IsAnimated() override { return !curve_.keys.empty(); }
  bool IsReplaceable() const override { return !locked_; }
  bool CanOverwrite() const override { return !locked_; }

  // Keys, in order of time. Edits are undoable, and dropped while locked.
  int NumKeys() const override { return static_cast<int>(Records().keys.size()); }
  TimeValue GetKeyTime(int i) const override;
  int GetKeyIndex(TimeValue t) const override;
  bool GetNextKeyTime(TimeValue t, bool forward, TimeValue& next) const override;
  void AddNewKey(TimeValue t) override;
  void DeleteKeyAtTime(TimeValue t) override;
  void DeleteKeys(bool selectedOnly) override;
  void SelectKeys(const Interval& range, bool on) override;
  bool IsKeySelected(int i) const override;
  void MapKeys(const TimeMap& map, uint32_t flags) override;
  void DeleteTime(const Interval& range, uint32_t flags) override;
  void ReverseTime(const Interval& range, uint32_t flags) override;
  void CopyKeysFromTime(TimeValue from, TimeValue to) override;
  ORT GetORT(bool after) const override { return after ? curve_.after : curve_.before; }
  void SetORT(ORT ort, bool after) override;
  /// What counts while there are no keys; without undo, for construction.
  void SetConstant(const Value& value) { constant_ = value; }
  int Reduce(float threshold, TimeValue step, const Interval& range);

  // IKeyControl
  void SetNumKeys(int count) override;
  void GetKey(int i, IKey* key) const override;
  void SetKey(int i, const IKey* key) override;
  int AppendKey(const IKey* key) override;
  void SortKeys() override { Curve(); }
  int GetKeySize() const override { return sizeof(Key); }

  // Reference 0: the ease and multiplier curves. They are the sub-animatables.
  int NumRefs() const override { return 1; }
  ReferenceTarget* GetReference(int which) const override { return which == 0 ? curves_ : nullptr; }
  int NumSubs() const override { return curves_ ? curves_->NumRefs() : 0; }
  Animatable* SubAnim(int i) override { return curves_ ? curves_->GetReference(i) : nullptr; }
  WStr SubAnimName(int i) override;
  RefResult NotifyRefChanged(const Interval&, ReferenceTarget*, PartID&, RefMessage, bool) override;
  void CopyStateFrom(ReferenceTarget& source, RemapDir& remap) override;
  IOResult Save(ISave& save) override;
  IOResult Load(ILoad& load) override;

 protected:
  void SetReference(int which, ReferenceTarget* target) override;

 private:
  template <class K>
  friend class KeyStateRestore;
  using EaseFace = CurveListFace<TrackCurves::kEase>;
  using MultiplierFace = CurveListFace<TrackCurves::kMultiplier>;

  TrackCurves* PresentCurves() const override { return curves_; }
  TrackCurves* CurvesToChange() override;
  /// The curve, brought up to date.
  KeyCurve<Key>& Curve() const;
  /// The same, unless records are being written whose order is not final: then as they lie.
  const KeyCurve<Key>& Records() const;
  /// The value of the keys or the constant at a time of their own.
  Value LocalValue(TimeValue t, Interval& valid) const;
  TimeValue LocalTime(TimeValue t) const;
  /// Records the state once a step; false while locked.
  bool BeginEdit();
  void EndEdit();
  void PutKey(TimeValue t, const Value& value);
  template <class Test>
  void EraseKeys(const Test& test);

  // What evaluation reads comes first.
  mutable Interval cachedValid_ = NEVER;
  mutable Value cached_{};
  mutable Playhead<Key> head_;
  TrackCurves* curves_ = nullptr;
  mutable bool stale_ = false;
  mutable bool recordsOpen_ = false;
  mutable KeyCurve<Key> curve_;
  Value constant_{};
  const KeyframeClass& row_;
};

}  // namespace corvanta
