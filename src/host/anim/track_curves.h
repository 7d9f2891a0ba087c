// SPDX-License-Identifier: MIT
// The ease and multiplier curves of one track: an object of its own, made when the first curve comes, so that tracks
// without any (nearly all) carry one pointer.
#pragma once

#include <vector>

#include "host/anim/class_ids.h"
#include "host/anim/key_control.h"

namespace corvanta {

/// References: first the ease curves, then the multiplier curves.
class TrackCurves final : public ReferenceTarget {
 public:
  SClass_ID SuperClassID() const override { return kReferenceTargetSuper; }
  Class_ID ClassID() const override { return kTrackCurvesId; }
  WStr GetClassName() const override { return L"Track Curves"; }

  /// The time at which the keys are to be read. `valid` narrows to where that time and the multipliers hold.
  TimeValue LocalTime(TimeValue t, Interval& valid) const;
  bool HasEase() const;
  float Multiplier(TimeValue t, Interval& valid) const;

  enum Kind : int { kEase, kMultiplier };
  int Count(Kind kind) const {
    return kind == kEase ? state_.easeCount : static_cast<int>(state_.entries.size()) - state_.easeCount;
  }
  Control* Get(Kind kind, int i) const;
  bool IsEnabled(Kind kind, int i) const;
  /// All undoable.
  bool Append(Kind kind, Control* curve);
  void Delete(Kind kind, int i);
  void SetEnabled(Kind kind, int i, bool on);

  int NumRefs() const override { return static_cast<int>(state_.entries.size()); }
  ReferenceTarget* GetReference(int which) const override;
  RefResult NotifyRefChanged(const Interval&, ReferenceTarget*, PartID&, RefMessage, bool) override {
    return REF_SUCCEED;
  }
  void CopyStateFrom(ReferenceTarget& source, RemapDir& remap) override;
  IOResult Save(ISave& save) override;
  IOResult Load(ILoad& load) override;

  struct State {
    std::vector<Ref<Control>> curves;
    std::vector<uint8_t> enabled;
    int easeCount = 0;
  };
  State ListState() const;
  void PutListState(const State& state);

 protected:
  void SetReference(int which, ReferenceTarget* target) override;

 private:
  int Index(Kind kind, int i) const;
  void Change(const State& state);
  struct Entry {
    Control* curve = nullptr;
    uint8_t enabled = 1;
  };
  struct {
    std::vector<Entry> entries;
    int easeCount = 0;
  } state_;
};

/// One of the two lists as the face that a track shows.
template <TrackCurves::Kind kKind>
class CurveListFace : public ICurveList {
 public:
  int Count() const override { return PresentCurves() ? PresentCurves()->Count(kKind) : 0; }
  Control* Get(int i) const override { return PresentCurves() ? PresentCurves()->Get(kKind, i) : nullptr; }
  bool IsEnabled(int i) const override { return PresentCurves() && PresentCurves()->IsEnabled(kKind, i); }
  bool Append(Control* curve) override {
    TrackCurves* curves = CurvesToChange();
    return curves && curves->Append(kKind, curve);
  }
  void Delete(int i) override {
    if (i >= 0 && i < Count())
      if (TrackCurves* curves = CurvesToChange()) curves->Delete(kKind, i);
  }
  void SetEnabled(int i, bool on) override {
    if (i >= 0 && i < Count())
      if (TrackCurves* curves = CurvesToChange()) curves->SetEnabled(kKind, i, on);
  }

 private:
  virtual TrackCurves* PresentCurves() const = 0;
  /// Made when there is none; null while the track is locked.
  virtual TrackCurves* CurvesToChange() = 0;
};

}  // namespace corvanta
