// SPDX-License-Identifier: MIT
#include "plugin/attributes/weight_links.h"

#include <algorithm>
#include <cmath>

#include "host/anim/class_ids.h"
#include "host/anim/key_control.h"
#include "host/core/class_desc.h"
#include "host/core/hold.h"
#include "host/scene/core_interface.h"
#include "plugin/frame/loop_validator.h"

namespace tavrilon {

using namespace corvanta;

namespace {

constexpr float kAll = 100;

/// Where a control's own transform controller stands: on its node, or below the controller that a chain has put there.
struct Place {
  Animatable* owner;
  int subAnim;
  Control* Get() const { return static_cast<Control*>(owner->SubAnim(subAnim)); }
};

Place OwnTransform(INode* control) {
  constexpr int kFKSub = 2;
  Place place{control, 0};
  while (IsOfClass(place.Get(), TavrilonClass::IKFKControl)) place = {place.Get(), kFKSub};
  return place;
}

IBezFloatKey StepKey(TimeValue t, float value) {
  IBezFloatKey key;
  key.time = t;
  key.flags = TangentFlags(Tangent::Stepped, Tangent::Stepped);
  key.value = value;
  return key;
}

void PutStepKey(Control& track, TimeValue t, float value) {
  IKeyControl& keys = *GetKeyControl(&track);
  const IBezFloatKey key = StepKey(t, value);
  const int present = track.GetKeyIndex(t);
  if (present >= 0)
    keys.SetKey(present, &key);
  else
    keys.AppendKey(&key);
  keys.SortKeys();
}

/// The weight's track, a Bezier one: only that has steps. Any other is replaced.
Control& WeightTrack(ParamBlock2& block, int i) {
  Control* present = block.GetController(kWeight, i);
  if (present && present->SuperClassID() == kFloatControlSuper && present->ClassID() == kBezierFloatId) return *present;
  auto* track = static_cast<Control*>(CreateInstance(kFloatControlSuper, kBezierFloatId));
  if (present) track->Copy(present);
  const Ref<Control> kept(track);
  block.SetController(kWeight, track, i);
  return *track;
}

// Two products of the same matrices differ by rounding: no key is worth that.
bool IsSamePlace(const Matrix3& a, const Matrix3& b) {
  constexpr float kSame = 1e-5f;
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 3; ++c)
      if (!(std::abs(a.row[r][c] - b.row[r][c]) <= kSame * std::max(1.0f, std::abs(a.row[r][c])))) return false;
  return true;
}

}  // namespace

WeightLinks::WeightLinks(INode* control, std::vector<INode*> spaces) : control_(control), spaces_(std::move(spaces)) {
  Control* own = OwnTransform(control).Get();
  if (IsOfClass(own, TavrilonClass::ParentConstraint)) constraint_ = static_cast<ParentConstraint*>(own);
}

std::vector<TimeValue> WeightLinks::Times() const {
  std::vector<TimeValue> times;
  for (int i = 0; constraint_ && i < constraint_->GetNumTargets(); ++i)
    if (const Control* track = constraint_->GetParamBlock()->GetController(kWeight, i))
      for (int k = 0; k < track->NumKeys(); ++k) times.push_back(track->GetKeyTime(k));
  std::sort(times.begin(), times.end());
  times.erase(std::unique(times.begin(), times.end()), times.end());
  return times;
}

TimeValue WeightLinks::Time(int i) const {
  const std::vector<TimeValue> times = Times();
  return i >= 0 && i < static_cast<int>(times.size()) ? times[static_cast<size_t>(i)] : 0;
}

INode* WeightLinks::Node(int i) const {
  if (i < 0 || i >= Count()) return nullptr;
  const TimeValue t = Time(i);
  int heaviest = 0;
  for (int k = 1; k < constraint_->GetNumTargets(); ++k)
    if (constraint_->GetWeight(k, t) > constraint_->GetWeight(heaviest, t)) heaviest = k;
  return constraint_->GetNode(heaviest);
}

bool WeightLinks::IsLocked() const {
  Control* own = OwnTransform(control_).Get();
  const ILockedTrack* lock = GetLockedTrack(own);
  return !own || (lock && lock->GetLocked());
}

// Bound to its parent the control moves as before, and does so again wherever no link says otherwise. The offsets of
// the other spaces are those of the present pose.
void WeightLinks::MakeConstraint() {
  const Place place = OwnTransform(control_);
  const Ref<ParentConstraint> made(new ParentConstraint);
  made->SetInner(place.Get());
  place.owner->AssignController(made.Get(), place.subAnim);
  constraint_ = made.Get();
  made->SetInitialTM(control_->GetParentTM(GetCOREInterface()->GetTime()));
  made->GetParamBlock()->SetValue(kRelative, 0, true);
  BindToParent();
  for (INode* space : spaces_)
    if (space) FindOrAppend(space);
}

int WeightLinks::IndexOf(INode* target) const {
  for (int i = 0; i < constraint_->GetNumTargets(); ++i)
    if (constraint_->GetNode(i) == target) return i;
  return -1;
}

int WeightLinks::FindOrAppend(INode* target) {
  const int present = IndexOf(target);
  if (present >= 0) return present;
  return constraint_->AppendTarget(target, 0) ? constraint_->GetNumTargets() - 1 : -1;
}

// All the weight, without keys, on the node's parent. Its offset is none: the lists are written as they must be, since
// appending would measure one.
void WeightLinks::BindToParent() {
  INode* parent = control_->GetParentNode();
  if (parent && parent->IsRootNode()) parent = nullptr;
  ParamBlock2& block = *constraint_->GetParamBlock();
  if (IndexOf(parent) < 0) {
    block.Append(kWeight, kAll);
    block.Append(kTargetList, parent);
    block.Append(ParentConstraint::kOffset, Matrix3());
  }
  const int bound = IndexOf(parent);
  for (int i = 0; i < constraint_->GetNumTargets(); ++i) {
    block.SetController(kWeight, nullptr, i);
    block.SetValue(kWeight, 0, i == bound ? kAll : 0.0f, i);
  }
}

// A track without keys first gets one at the beginning, so that what was before stays before.
void WeightLinks::SetWeightKeys(int index, TimeValue t) {
  ParamBlock2& block = *constraint_->GetParamBlock();
  const std::vector<TimeValue> times = Times();
  const TimeValue first = times.empty() ? GetCOREInterface()->GetAnimRange().start : times.front();
  for (int i = 0; i < constraint_->GetNumTargets(); ++i) {
    const float before = block.GetFloat(kWeight, first, i);
    Control& track = WeightTrack(block, i);
    if (track.NumKeys() == 0 && first < t) PutStepKey(track, first, before);
    PutStepKey(track, t, i == index ? kAll : 0);
  }
}

// The control's own animation takes the difference at `t`, and holds what it had until a tick before.
void WeightLinks::KeepAt(TimeValue t, const Matrix3& tm) {
  if (IsSamePlace(control_->GetNodeTM(t), tm)) return;
  const AnimateScope animate;
  if (Control* inner = constraint_->GetInner()) inner->AddNewKey(t - 1);
  control_->SetNodeTM(t, tm);
}

bool WeightLinks::Add(INode* target, TimeValue t) {
  if (IsLocked() || (target && TransformDependsOn(target, control_->GetTMController()))) return false;
  const HoldScope hold(L"Link Change");
  const Matrix3 tm = control_->GetNodeTM(t);
  if (!constraint_) MakeConstraint();
  const int index = FindOrAppend(target);
  if (index < 0) return false;
  SetWeightKeys(index, t);
  KeepAt(t, tm);
  return true;
}

bool WeightLinks::Delete(int i) {
  if (i < 0 || i >= Count() || IsLocked()) return false;
  const HoldScope hold(L"Link Change");
  const TimeValue t = Time(i);
  const Matrix3 tm = control_->GetNodeTM(t);
  if (Count() == 1)
    BindToParent();
  else
    for (int k = 0; k < constraint_->GetNumTargets(); ++k)
      if (Control* track = constraint_->GetParamBlock()->GetController(kWeight, k)) track->DeleteKeyAtTime(t);
  KeepAt(t, tm);
  return true;
}

}  // namespace tavrilon
