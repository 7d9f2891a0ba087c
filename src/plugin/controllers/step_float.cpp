// SPDX-License-Identifier: MIT
#include "plugin/controllers/step_float.h"

namespace tavrilon {

using namespace corvanta;

StepFloat::StepFloat(bool loading) {
  if (!loading) BindReference(0, NewDefaultFloatController());
}

bool StepFloat::SetWrapped(Control* control) {
  if (control && control->SuperClassID() != kFloatControlSuper) return false;
  return ReplaceReference(0, control) == REF_SUCCEED;
}

bool StepFloat::AssignController(Control* control, int subAnim) {
  if (subAnim != 0 || !SetWrapped(control)) return false;
  NotifyDependents(FOREVER, PART_ALL, REFMSG_CONTROLREF_CHANGE);
  NotifyDependents();
  return true;
}

void StepFloat::SetReference(int which, ReferenceTarget* target) {
  if (which == 0) wrapped_ = target ? target->AsControl() : nullptr;
}

// Evaluation.

// With one key or none there is nothing to hold; a wrapped controller without keys says itself how long its value
// holds.
float StepFloat::Held(TimeValue t, Interval& valid) {
  Interval holds = FOREVER;
  TimeValue sample = t, key = 0;
  const int keys = wrapped_->NumKeys();
  if (keys > 0 && !wrapped_->IsKeyAtTime(t)) {
    const bool before = wrapped_->GetNextKeyTime(t, false, key);
    sample = before ? key : wrapped_->GetKeyTime(0);
    if (before) holds.start = key;
  } else if (keys > 0) {
    holds.start = t;
  }
  if (keys > 1) {
    if (wrapped_->GetNextKeyTime(sample, true, key)) holds.end = key - 1;
  } else if (keys == 1) {
    holds = FOREVER;
  }
  float value = 0;
  Interval own = FOREVER;
  wrapped_->GetValue(sample, value, own, CTRL_ABSOLUTE);
  valid &= keys == 0 ? own : holds;
  return value;
}

// Outside the key range: the value at the wrapped time, plus the rise of one cycle for each cycle gone by.
float StepFloat::Repeated(TimeValue t, const Interval& range) {
  const int64_t length = int64_t{range.end} - range.start;
  const int64_t beyond = t > range.end ? int64_t{t} - range.end : int64_t{range.start} - t;
  const int64_t cycles = 1 + beyond / length, rest = beyond % length;
  const auto wrapped = static_cast<TimeValue>(t > range.end ? range.start + rest : range.end - rest);
  Interval ignored = FOREVER;
  const float rise = Held(range.end, ignored) - Held(range.start, ignored);
  return Held(wrapped, ignored) + rise * static_cast<float>(t > range.end ? cycles : -cycles);
}

float StepFloat::Sample(TimeValue t, Interval& valid) {
  const Interval range = wrapped_->GetKeyRange();
  const bool outside = !range.IsEmpty() && range.end > range.start && !range.Contains(t);
  if (!outside || wrapped_->GetORT(t > range.end) != ORT::RelativeRepeat) return Held(t, valid);
  valid &= Interval::Instant(t);
  return Repeated(t, range);
}

void StepFloat::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) {
  if (!wrapped_) return;
  const float sample = Sample(t, valid);
  value.Float() = method == CTRL_ABSOLUTE ? sample : value.Float() + sample;
}

void StepFloat::SetValue(TimeValue t, ValueRef value, bool commit, GetSetMethod method) {
  if (!wrapped_) return;
  float wanted = value.Float();
  Interval ignored = FOREVER;
  if (method == CTRL_RELATIVE) wanted += Sample(t, ignored);
  wrapped_->SetValue(t, wanted, commit, CTRL_ABSOLUTE);
}

// Keys.

void StepFloat::AddNewKey(TimeValue t) {
  if (wrapped_) wrapped_->AddNewKey(t);
}
void StepFloat::DeleteKeyAtTime(TimeValue t) {
  if (wrapped_) wrapped_->DeleteKeyAtTime(t);
}
void StepFloat::DeleteKeys(bool selectedOnly) {
  if (wrapped_) wrapped_->DeleteKeys(selectedOnly);
}
void StepFloat::SelectKeys(const Interval& range, bool on) {
  if (wrapped_) wrapped_->SelectKeys(range, on);
}
void StepFloat::MapKeys(const TimeMap& map, uint32_t flags) {
  if (wrapped_) wrapped_->MapKeys(map, flags);
}
void StepFloat::DeleteTime(const Interval& range, uint32_t flags) {
  if (wrapped_) wrapped_->DeleteTime(range, flags);
}
void StepFloat::ReverseTime(const Interval& range, uint32_t flags) {
  if (wrapped_) wrapped_->ReverseTime(range, flags);
}
void StepFloat::CopyKeysFromTime(TimeValue from, TimeValue to) {
  if (wrapped_) wrapped_->CopyKeysFromTime(from, to);
}
ORT StepFloat::GetORT(bool after) const { return wrapped_ ? wrapped_->GetORT(after) : ORT::Constant; }
void StepFloat::SetORT(ORT ort, bool after) {
  if (wrapped_) wrapped_->SetORT(ort, after);
}

ReferenceTarget* CreateStepFloat(bool loading) { return new StepFloat(loading); }

}  // namespace tavrilon
