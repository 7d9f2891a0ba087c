// SPDX-License-Identifier: MIT
// The two faces of a keyframe track beyond `Control`: its key records, and its ease and multiplier curves.
#pragma once

#include "host/anim/keys.h"
#include "host/core/control.h"

namespace corvanta {

/// Request I_KEYCONTROL: keyframe controllers. The record is the one of the controller's class (`IBezFloatKey` of a
/// Bezier float, and so on); `GetKeySize` tells its bytes. Every write is undoable, tells the dependents, and is
/// dropped while the track is locked.
class IKeyControl {
 public:
  virtual ~IKeyControl() = default;
  virtual int NumKeys() const = 0;
  /// New keys are neutral ones behind the last.
  virtual void SetNumKeys(int count) = 0;
  /// Key `i` in order of time, or of arrival since the last sort; out of range changes nothing.
  virtual void GetKey(int i, IKey* key) const = 0;
  /// Keys whose time changed keep their place until `SortKeys`, or until something asks for the curve.
  virtual void SetKey(int i, const IKey* key) = 0;
  /// Returns the index that it has until the next sort.
  virtual int AppendKey(const IKey* key) = 0;
  /// By time; of keys at one time the later stays.
  virtual void SortKeys() = 0;
  virtual int GetKeySize() const = 0;
  virtual bool IsKeySelected(int i) const = 0;
};
/// Null when `anim` has no keys of its own.
IKeyControl* GetKeyControl(Animatable* anim);

/// Requests I_EASELIST and I_MULTLIST: float controllers on a track. Ease curves map time in ticks before the keys are
/// evaluated, each on what the last one gave; multiplier curves scale the value.
class ICurveList {
 public:
  virtual ~ICurveList() = default;
  virtual int Count() const = 0;
  /// Null out of range.
  virtual Control* Get(int i) const = 0;
  /// False for what is no float controller, or depends on the track. Undoable.
  virtual bool Append(Control* curve) = 0;
  /// Undoable.
  virtual void Delete(int i) = 0;
  virtual bool IsEnabled(int i) const = 0;
  /// Undoable.
  virtual void SetEnabled(int i, bool on) = 0;
};
/// Null when `anim` takes no such curves.
ICurveList* GetEaseList(Animatable* anim);
ICurveList* GetMultiplierList(Animatable* anim);
/// A Bezier float that maps every time to itself: what an ease curve begins as.
Control* NewEaseCurve(const Interval& range);
/// A Bezier float of the constant 1.
Control* NewMultiplierCurve();

/// `ReduceKeys` on a keyframe controller, undoable; -1 for a controller without keys of its own, 0 while locked.
int ReduceKeys(Control* control, float threshold, TimeValue step, const Interval& range);

}  // namespace corvanta
