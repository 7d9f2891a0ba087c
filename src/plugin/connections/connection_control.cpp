// SPDX-License-Identifier: MIT
#include "plugin/connections/connection_control.h"

#include <cwchar>

#include "host/core/hold.h"
#include "plugin/frame/guard.h"
#include "plugin/frame/lock_chunk.h"

namespace tavrilon {

using namespace corvanta;

namespace {
enum FunctionID { kSetTarget = 0, kGetTarget = 1 };

WStr NumberText(float f) {
  wchar_t text[32];
  std::swprintf(text, std::size(text), L"%g", static_cast<double>(f));
  return text;
}
}  // namespace

FPInterfaceDesc ConnectionInterface(TavrilonClass row) {
  return FPInterfaceDesc(InterfaceIdOf(row), L"connection",
                         {{kSetTarget,
                           L"SetTarget",
                           FPType::Bool,
                           {{L"target", FPType::Any}, {L"owner", FPType::RefTarg, TargetValue(nullptr)}}},
                          {kGetTarget, L"GetTarget", FPType::Any, {{L"asController", FPType::Bool, FPValue(false)}}}});
}

ConnectionControl::ConnectionControl(TavrilonClass row, const ParamBlockDesc2& desc, const FPInterfaceDesc& published,
                                     const ConnectionRows& rows, bool loading)
    : BlockControl(row, desc, published, loading), rows_(rows) {}

// Target.

bool ConnectionControl::SetTrack(const Track& track) {
  if (!block_ || !track.owner || !Gives(track, SuperClassID())) return false;
  const HoldScope hold;
  block_->SetValue(kConnectionTrack, 0, track.number);
  return block_->SetValue(rows_.trackOwner, 0, track.owner);
}

bool ConnectionControl::SetParamTarget(ParamBlock2& owner, ParamID id, int tab) {
  return SetTrack({&owner, ParamTrackNumber(id, tab)});
}

bool ConnectionControl::SetSubAnimTarget(ReferenceTarget& owner, int subAnim) {
  return SetTrack(FindTrack(owner, subAnim));
}

bool ConnectionControl::SetConstant(const FPValue& value) {
  if (!block_) return false;
  const HoldScope hold;
  if (!block_->SetFPValue(rows_.constant, 0, value)) return false;
  block_->SetValue(kConnectionTrack, 0, kConstantTrack);
  return block_->SetValue(rows_.trackOwner, 0, nullptr);
}

void ConnectionControl::ClearTarget() {
  if (!block_) return;
  const HoldScope hold;
  block_->SetValue(kConnectionTrack, 0, 0);
  block_->SetValue(rows_.trackOwner, 0, nullptr);
}

WStr ConnectionControl::TargetText() const {
  WStr text = L"None";
  if (const Track track = GetTrack(); track.owner) {
    text = TextOf(track);
  } else if (IsConstant()) {
    const FPValue value = block_->GetConstant(rows_.constant);
    if (const auto* p = value.As<Point3>())
      text = L"[" + NumberText(p->x) + L"," + NumberText(p->y) + L"," + NumberText(p->z) + L"]";
    else
      text = NumberText(value.ToFloat());
    text = L"Constant: " + text;
  }
  return L"Assigned to: " + text;
}

WStr ConnectionControl::SetScriptTarget(const FPValue& target, ReferenceTarget* owner) {
  ReferenceTarget* object = target.ToTarget();
  if (!owner && object && object->AsControl()) {
    // The first place that the controller has.
    ReferenceMaker* maker = object->FindDependent(
        [&](ReferenceMaker* up) { return up->AsTarget() && FindTrack(*up->AsTarget(), *object).owner; });
    if (!maker) return L"SetTarget: the controller is on no track; give the owner of one";
    owner = maker->AsTarget();
  }
  if (!owner) {
    if (target.IsVoid() || (target.As<Ref<ReferenceTarget>>() && !object)) return ClearTarget(), L"";
    return SetConstant(target) ? L"" : L"SetTarget: the constant is of another kind than the connection's values";
  }
  Track track;
  if (object)
    track = FindTrack(*owner, *object);
  else if (const auto* name = target.As<WStr>())
    track = FindTrack(*owner, *name);
  else if (const auto* number = target.As<int>())
    track = FindTrack(*owner, *number - 1);
  if (!track.owner) return L"SetTarget: <" + owner->GetClassName() + L"> has no such track";
  if (SetTrack(track)) return L"";
  return L"SetTarget: the values of \"" + TextOf(track) + L"\" are of another kind than the connection's";
}

FPStatus ConnectionControl::Invoke(int id, TimeValue, FPValue& result, std::span<const FPValue> args) {
  if (id == kGetTarget) {
    const Track track = GetTrack();
    if (IsConstant())
      result = FPArg(args, 0).ToBool() ? TargetValue(nullptr) : block_->GetConstant(rows_.constant);
    else
      result = TargetValue(FPArg(args, 0).ToBool() ? ControllerOf(track) : track.owner);
    return FPStatus::OK;
  }
  if (id != kSetTarget) return FPStatus::NoSuchFunction;
  const WStr refusal = SetScriptTarget(FPArg(args, 0), FPArg(args, 1).ToTarget());
  if (refusal.empty())
    result = true;
  else
    result = refusal;
  return refusal.empty() ? FPStatus::OK : FPStatus::Failed;
}

// Keys. A ring of two-way connections would ask itself for ever: the one that is asked again has none.

Control* ConnectionControl::KeyTrack() const { return IsTwoWay() && !asking_ ? ControllerOf(GetTrack()) : nullptr; }

template <class Ask>
void ConnectionControl::AskKeys(Ask&& ask) const {
  Control* control = KeyTrack();
  if (!control) return;
  const ReentryGuard guard(asking_);
  ask(*control);
}

template <class Edit>
void ConnectionControl::EditKeys(Edit&& edit, bool make) {
  if (locked_ || asking_ || !IsTwoWay()) return;
  Control* control = make ? MakeControllerOf(GetTrack(), SuperClassID()) : ControllerOf(GetTrack());
  if (!control) return;
  const ReentryGuard guard(asking_);
  edit(*control);
}

namespace {

/// A map of the connection's times as the target sees it.
class SourceMap final : public TimeMap {
 public:
  SourceMap(const TimeMap& map, TimeValue shift) : map_(map), shift_(shift) {}
  TimeValue Map(TimeValue t) const override { return map_.Map(t - shift_) + shift_; }

 private:
  const TimeMap& map_;
  TimeValue shift_;
};

}  // namespace

// Keys are moved by the offset at time 0: an animated offset has no way back from the target's times.
bool ConnectionControl::IsAnimated() {
  bool animated = false;
  AskKeys([&](Control& c) { animated = c.IsAnimated(); });
  return animated;
}
int ConnectionControl::NumKeys() const {
  int n = 0;
  AskKeys([&](Control& c) { n = c.NumKeys(); });
  return n;
}
TimeValue ConnectionControl::GetKeyTime(int i) const {
  TimeValue t = 0;
  AskKeys([&](Control& c) { t = c.GetKeyTime(i) - SourceTime(0); });
  return t;
}
int ConnectionControl::GetKeyIndex(TimeValue t) const {
  int i = -1;
  AskKeys([&](Control& c) { i = c.GetKeyIndex(t + SourceTime(0)); });
  return i;
}
bool ConnectionControl::GetNextKeyTime(TimeValue t, bool forward, TimeValue& next) const {
  bool found = false;
  AskKeys([&](Control& c) {
    found = c.GetNextKeyTime(t + SourceTime(0), forward, next);
    if (found) next -= SourceTime(0);
  });
  return found;
}
Interval ConnectionControl::GetKeyRange() const {
  Interval range = NEVER;
  AskKeys([&](Control& c) { range = Earlier(c.GetKeyRange(), SourceTime(0)); });
  return range;
}
bool ConnectionControl::IsKeySelected(int i) const {
  bool selected = false;
  AskKeys([&](Control& c) { selected = c.IsKeySelected(i); });
  return selected;
}
void ConnectionControl::AddNewKey(TimeValue t) {
  EditKeys([&](Control& c) { c.AddNewKey(t + SourceTime(0)); }, true);
}
void ConnectionControl::DeleteKeyAtTime(TimeValue t) {
  EditKeys([&](Control& c) { c.DeleteKeyAtTime(t + SourceTime(0)); });
}
void ConnectionControl::DeleteKeys(bool selectedOnly) {
  EditKeys([&](Control& c) { c.DeleteKeys(selectedOnly); });
}
void ConnectionControl::SelectKeys(const Interval& range, bool on) {
  EditKeys([&](Control& c) { c.SelectKeys(Earlier(range, -SourceTime(0)), on); });
}
void ConnectionControl::MapKeys(const TimeMap& map, uint32_t flags) {
  EditKeys([&](Control& c) { c.MapKeys(SourceMap(map, SourceTime(0)), flags); });
}
void ConnectionControl::DeleteTime(const Interval& range, uint32_t flags) {
  EditKeys([&](Control& c) { c.DeleteTime(Earlier(range, -SourceTime(0)), flags); });
}
void ConnectionControl::ReverseTime(const Interval& range, uint32_t flags) {
  EditKeys([&](Control& c) { c.ReverseTime(Earlier(range, -SourceTime(0)), flags); });
}
void ConnectionControl::CopyKeysFromTime(TimeValue from, TimeValue to) {
  EditKeys([&](Control& c) { c.CopyKeysFromTime(from + SourceTime(0), to + SourceTime(0)); });
}
ORT ConnectionControl::GetORT(bool after) const {
  ORT ort = ORT::Constant;
  AskKeys([&](Control& c) { ort = c.GetORT(after); });
  return ort;
}
void ConnectionControl::SetORT(ORT ort, bool after) {
  EditKeys([&](Control& c) { c.SetORT(ort, after); });
}

// Lock and bookkeeping.

void ConnectionControl::Copy(Control* from) {
  if (const ILockedTrack* lock = from ? GetLockedTrack(from) : nullptr) SetLocked(lock->GetLocked());
}

void* ConnectionControl::GetInterface(uint32_t request) {
  if (request == I_LOCKED) return static_cast<ILockedTrack*>(this);
  if (request == WeakRefOwner::kRequest) return static_cast<WeakRefOwner*>(this);
  return BlockControl::GetInterface(request);
}

void ConnectionControl::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  locked_ = static_cast<ConnectionControl&>(source).locked_;
}

IOResult ConnectionControl::Save(ISave& save) { return SaveLockChunk(save, locked_); }

IOResult ConnectionControl::Load(ILoad& load) { return LoadLockChunk(load, locked_); }

}  // namespace tavrilon
