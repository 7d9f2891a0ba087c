// SPDX-License-Identifier: MIT
#include "host/anim/keyframe_control.h"

#include <algorithm>

#include "host/anim/value_ops.h"
#include "host/core/hold.h"

namespace corvanta {

/// Undo of one track: keys, constant and out-of-range types, taken once a step.
template <class Key>
class KeyStateRestore final : public RestoreObj {
 public:
  explicit KeyStateRestore(KeyframeControl<Key>* owner)
      : owner_(owner),
        keys_(owner->curve_.keys),
        constant_(owner->constant_),
        before_(owner->curve_.before),
        after_(owner->curve_.after) {}
  void Restore(bool) override { Swap(); }
  void Redo() override { Swap(); }
  size_t Size() const override { return sizeof *this + keys_.size() * sizeof(Key); }
  WStr Description() const override { return L"Keys"; }

 private:
  void Swap() {
    KeyframeControl<Key>& o = *owner_;
    std::swap(o.curve_.keys, keys_);
    std::swap(o.constant_, constant_);
    std::swap(o.curve_.before, before_);
    std::swap(o.curve_.after, after_);
    o.EndEdit();
  }
  Ref<KeyframeControl<Key>> owner_;
  std::vector<Key> keys_;
  typename KeyframeControl<Key>::Value constant_;
  ORT before_, after_;
};

namespace {

template <class Key>
Key NewKey(TimeValue t) {
  Key key;
  key.time = t;
  if constexpr (requires { key.shape; }) key.flags = 0;
  return key;
}

template <class Keys>
auto FindKey(Keys& keys, TimeValue t) {
  return std::lower_bound(keys.begin(), keys.end(), t, [](const auto& key, TimeValue a) { return key.time < a; });
}

template <class Key>
void ReverseKey(Key& key) {
  if constexpr (requires { key.shape; }) {
    std::swap(key.shape.easeIn, key.shape.easeOut);
    key.shape.bias = -key.shape.bias;
  } else {
    key.flags = WithTangents(key.flags, OutTangent(key.flags), InTangent(key.flags));
    std::swap(key.inTan, key.outTan);
    std::swap(key.inLength, key.outLength);
  }
}

TimeValue Clamped(int64_t t) { return static_cast<TimeValue>(std::clamp<int64_t>(t, kTimeMin, kTimeMax)); }

}  // namespace

// --- evaluation

template <class Key>
KeyCurve<Key>& KeyframeControl<Key>::Curve() const {
  if (stale_) {
    curve_.Update();
    head_ = {};
    stale_ = recordsOpen_ = false;
  }
  return curve_;
}

template <class Key>
const KeyCurve<Key>& KeyframeControl<Key>::Records() const {
  const auto disorder = [](const Key& a, const Key& b) { return a.time >= b.time; };
  const auto& keys = curve_.keys;
  const bool open = recordsOpen_ && std::adjacent_find(keys.begin(), keys.end(), disorder) != keys.end();
  return open ? curve_ : Curve();
}

template <class Key>
auto KeyframeControl<Key>::LocalValue(TimeValue t, Interval& valid) const -> Value {
  if (curve_.keys.empty()) return constant_;
  return Evaluate(Curve(), t, valid, head_);
}

template <class Key>
TimeValue KeyframeControl<Key>::LocalTime(TimeValue t) const {
  Interval ignored = FOREVER;
  return curves_ ? curves_->LocalTime(t, ignored) : t;
}

template <class Key>
void KeyframeControl<Key>::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) {
  if (!cachedValid_.Contains(t)) {
    Interval own = FOREVER;
    if (!curves_) {
      cached_ = LocalValue(t, own);
    } else {
      Interval local = FOREVER;
      cached_ = LocalValue(curves_->LocalTime(t, own), local);
      // An interval of local times tells little about times outside, unless it is all of them.
      own &= curves_->HasEase() && !(local == FOREVER) ? Interval::Instant(t) : local;
      const float m = curves_->Multiplier(t, own);
      if (m != 1) cached_ = Multiplied(cached_, m);
    }
    cachedValid_ = own;
  }
  valid &= cachedValid_;
  if (method == CTRL_ABSOLUTE)
    Put(value, cached_);
  else
    AddOnto(value, cached_);
}

// --- writing

template <class Key>
bool KeyframeControl<Key>::BeginEdit() {
  if (locked_) return false;
  if (theHold.FirstTouch(heldStamp)) theHold.Put(std::make_unique<KeyStateRestore<Key>>(this));
  return true;
}

template <class Key>
void KeyframeControl<Key>::EndEdit() {
  stale_ = true;
  cachedValid_.SetEmpty();
  NotifyDependents();
}

template <class Key>
void KeyframeControl<Key>::PutKey(TimeValue t, const Value& value) {
  auto& keys = Curve().keys;
  auto at = FindKey(keys, t);
  if (at == keys.end() || at->time != t) at = keys.insert(at, NewKey<Key>(t));
  SetValueOf(*at, value);
}

template <class Key>
void KeyframeControl<Key>::SetValue(TimeValue t, ValueRef value, bool, GetSetMethod method) {
  if (!BeginEdit()) return;
  const TimeValue local = LocalTime(t);
  Interval ignored = FOREVER;
  const Value present = LocalValue(local, ignored);
  const Value wanted = method == CTRL_ABSOLUTE ? Take(value, present) : Changed(present, value);
  if (Animating()) {
    if (curve_.keys.empty() && local != 0) PutKey(0, constant_);
    PutKey(local, wanted);
  } else if (curve_.keys.empty()) {
    constant_ = wanted;
  } else {
    for (Key& key : curve_.keys) SetValueOf(key, Shifted(Value(ValueOf(key)), present, wanted));
  }
  EndEdit();
}

template <class Key>
void KeyframeControl<Key>::Copy(Control* from) {
  if (!from || from == this || from->SuperClassID() != SuperClassID()) return;
  SetLocked(false);
  BeginEdit();
  if (from->ClassID() == ClassID()) {
    auto& same = static_cast<KeyframeControl&>(*from);
    curve_.keys = same.Curve().keys;
    constant_ = same.constant_;
  } else {
    curve_.keys.clear();
    const auto valueAt = [&](TimeValue t) {
      Value v{};
      Interval ignored = FOREVER;
      from->GetValue(t, v, ignored, CTRL_ABSOLUTE);
      return v;
    };
    for (int i = 0; i < from->NumKeys(); ++i) {
      const TimeValue t = from->GetKeyTime(i);
      Key key = NewKey<Key>(t);
      SetValueOf(key, valueAt(t));
      curve_.keys.push_back(key);
    }
    constant_ = valueAt(0);
  }
  curve_.before = from->GetORT(false);
  curve_.after = from->GetORT(true);
  if (const ILockedTrack* lock = GetLockedTrack(from)) SetLocked(lock->GetLocked());
  EndEdit();
}

// --- keys

template <class Key>
TimeValue KeyframeControl<Key>::GetKeyTime(int i) const {
  const auto& keys = Curve().keys;
  return i >= 0 && i < static_cast<int>(keys.size()) ? keys[static_cast<size_t>(i)].time : 0;
}

template <class Key>
int KeyframeControl<Key>::GetKeyIndex(TimeValue t) const {
  const auto& keys = Curve().keys;
  const auto at = FindKey(keys, t);
  return at != keys.end() && at->time == t ? static_cast<int>(at - keys.begin()) : -1;
}

template <class Key>
bool KeyframeControl<Key>::GetNextKeyTime(TimeValue t, bool forward, TimeValue& next) const {
  const auto& keys = Curve().keys;
  auto at = FindKey(keys, t);
  if (forward) {
    if (at != keys.end() && at->time == t) ++at;
    if (at == keys.end()) return false;
  } else {
    if (at == keys.begin()) return false;
    --at;
  }
  next = at->time;
  return true;
}

template <class Key>
bool KeyframeControl<Key>::IsKeySelected(int i) const {
  const auto& keys = Records().keys;
  return i >= 0 && i < static_cast<int>(keys.size()) && (keys[static_cast<size_t>(i)].flags & kKeySelected);
}

template <class Key>
void KeyframeControl<Key>::AddNewKey(TimeValue t) {
  if (GetKeyIndex(t) >= 0 || !BeginEdit()) return;
  Interval ignored = FOREVER;
  PutKey(t, LocalValue(t, ignored));
  EndEdit();
}

// A track that loses its last key keeps the value of the first that went.
template <class Key>
template <class Test>
void KeyframeControl<Key>::EraseKeys(const Test& test) {
  auto& keys = Curve().keys;
  const auto first = std::find_if(keys.begin(), keys.end(), test);
  if (first == keys.end() || !BeginEdit()) return;
  const Value value = ValueOf(*first);
  keys.erase(std::remove_if(first, keys.end(), test), keys.end());
  if (keys.empty()) constant_ = value;
  EndEdit();
}

template <class Key>
void KeyframeControl<Key>::DeleteKeyAtTime(TimeValue t) {
  EraseKeys([t](const Key& key) { return key.time == t; });
}

template <class Key>
void KeyframeControl<Key>::DeleteKeys(bool selectedOnly) {
  EraseKeys([=](const Key& key) { return !selectedOnly || (key.flags & kKeySelected); });
}

template <class Key>
void KeyframeControl<Key>::SelectKeys(const Interval& range, bool on) {
  const auto differs = [&](const Key& key) {
    return range.Contains(key.time) && ((key.flags & kKeySelected) != 0) != on;
  };
  auto& keys = Curve().keys;
  if (std::none_of(keys.begin(), keys.end(), differs) || !BeginEdit()) return;
  for (Key& key : keys)
    if (differs(key)) key.flags ^= kKeySelected;
  EndEdit();
}

// A key that comes to lie on one that stayed takes its place; of two that move to one time, the one that the walk
// meets last.
template <class Key>
void KeyframeControl<Key>::MapKeys(const TimeMap& map, uint32_t flags) {
  auto& keys = Curve().keys;
  if (keys.empty() || !BeginEdit()) return;
  std::vector<Key> stay, moved;
  for (const Key& key : keys) {
    if ((flags & KEYMAP_SELECTED) && !(key.flags & kKeySelected)) {
      stay.push_back(key);
    } else {
      moved.push_back(key);
      moved.back().time = map.Map(key.time);
    }
  }
  if (flags & KEYMAP_FROM_LAST) std::reverse(moved.begin(), moved.end());
  stay.insert(stay.end(), moved.begin(), moved.end());
  keys = std::move(stay);
  EndEdit();
}

template <class Key>
void KeyframeControl<Key>::DeleteTime(const Interval& range, uint32_t flags) {
  if (range.IsEmpty() || curve_.keys.empty() || !BeginEdit()) return;
  auto& keys = Curve().keys;
  const Value value = ValueOf(keys.front());
  std::erase_if(keys, [&](const Key& key) { return range.Contains(key.time); });
  if (keys.empty()) constant_ = value;
  if (!(flags & TIME_NOSLIDE)) {
    const int64_t gone = static_cast<int64_t>(range.end) - range.start;
    for (Key& key : keys)
      if (key.time > range.end) key.time = Clamped(key.time - gone);
  }
  EndEdit();
}

template <class Key>
void KeyframeControl<Key>::ReverseTime(const Interval& range, uint32_t) {
  if (range.IsEmpty() || curve_.keys.empty() || !BeginEdit()) return;
  for (Key& key : Curve().keys) {
    if (!range.Contains(key.time)) continue;
    key.time = Clamped(static_cast<int64_t>(range.start) + range.end - key.time);
    ReverseKey(key);
  }
  EndEdit();
}

template <class Key>
void KeyframeControl<Key>::CopyKeysFromTime(TimeValue from, TimeValue to) {
  if (from == to || !BeginEdit()) return;
  auto& keys = Curve().keys;
  Interval ignored = FOREVER;
  const Value value = LocalValue(from, ignored);
  const int source = GetKeyIndex(from);
  Key key = source >= 0 ? keys[static_cast<size_t>(source)] : NewKey<Key>(to);
  if (source < 0) SetValueOf(key, value);
  key.time = to;
  keys.push_back(key);  // in the place of one that stood there
  EndEdit();
}

template <class Key>
void KeyframeControl<Key>::SetORT(ORT ort, bool after) {
  if (GetORT(after) == ort || !BeginEdit()) return;
  (after ? curve_.after : curve_.before) = ort;
  EndEdit();
}

template <class Key>
int KeyframeControl<Key>::Reduce(float threshold, TimeValue step, const Interval& range) {
  if (!BeginEdit()) return 0;
  const int gone = ReduceKeys(Curve(), threshold, step, range);
  if (gone > 0) EndEdit();
  return gone;
}

// --- key records

template <class Key>
void KeyframeControl<Key>::SetNumKeys(int count) {
  if (count < 0 || !BeginEdit()) return;
  auto& keys = Curve().keys;
  while (static_cast<int>(keys.size()) > count) keys.pop_back();
  // Beyond the last, so that none is lost to another before its record comes.
  while (static_cast<int>(keys.size()) < count) {
    Key key = NewKey<Key>(keys.empty() ? 0 : Clamped(static_cast<int64_t>(keys.back().time) + 1));
    SetValueOf(key, constant_);
    keys.push_back(key);
  }
  EndEdit();
}

template <class Key>
void KeyframeControl<Key>::GetKey(int i, IKey* key) const {
  const auto& keys = Records().keys;
  if (i >= 0 && i < static_cast<int>(keys.size())) *static_cast<Key*>(key) = keys[static_cast<size_t>(i)];
}

template <class Key>
void KeyframeControl<Key>::SetKey(int i, const IKey* key) {
  if (i < 0 || i >= static_cast<int>(curve_.keys.size()) || !BeginEdit()) return;
  curve_.keys[static_cast<size_t>(i)] = *static_cast<const Key*>(key);
  recordsOpen_ = true;
  EndEdit();
}

template <class Key>
int KeyframeControl<Key>::AppendKey(const IKey* key) {
  if (!BeginEdit()) return -1;
  curve_.keys.push_back(*static_cast<const Key*>(key));
  const int index = static_cast<int>(curve_.keys.size()) - 1;
  recordsOpen_ = true;
  EndEdit();
  return index;
}

// --- ease and multiplier curves

template <class Key>
TrackCurves* KeyframeControl<Key>::CurvesToChange() {
  if (locked_) return nullptr;
  if (!curves_) ReplaceReference(0, new TrackCurves);
  return curves_;
}

template <class Key>
void* KeyframeControl<Key>::GetInterface(uint32_t request) {
  switch (request) {
    case I_KEYCONTROL:
      return static_cast<IKeyControl*>(this);
    case I_LOCKED:
      return static_cast<ILockedTrack*>(this);
    case I_EASELIST:
      return static_cast<ICurveList*>(static_cast<EaseFace*>(this));
    case I_MULTLIST:
      return static_cast<ICurveList*>(static_cast<MultiplierFace*>(this));
    default:
      return Control::GetInterface(request);
  }
}

template <class Key>
WStr KeyframeControl<Key>::SubAnimName(int i) {
  return curves_ && i < curves_->Count(TrackCurves::kEase) ? L"Ease Curve" : L"Multiplier Curve";
}

// --- references, cloning, chunks

template <class Key>
void KeyframeControl<Key>::SetReference(int which, ReferenceTarget* target) {
  if (which != 0) return;
  curves_ = dynamic_cast<TrackCurves*>(target);
  cachedValid_.SetEmpty();
}

template <class Key>
RefResult KeyframeControl<Key>::NotifyRefChanged(const Interval&, ReferenceTarget*, PartID&, RefMessage message, bool) {
  if (message == REFMSG_CHANGE) cachedValid_.SetEmpty();
  return REF_SUCCEED;
}

template <class Key>
void KeyframeControl<Key>::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  auto& from = static_cast<KeyframeControl&>(source);
  curve_ = from.Curve();
  head_ = {};
  constant_ = from.constant_;
  locked_ = from.locked_;
  stale_ = false;
  cachedValid_.SetEmpty();
}

template <class Key>
IOResult KeyframeControl<Key>::Save(ISave& save) {
  save.BeginChunk(kConstantChunk);
  save.Write(constant_);
  save.EndChunk();
  const auto& keys = Curve().keys;
  if (!keys.empty()) {
    save.BeginChunk(kKeysChunk);
    save.Write(static_cast<uint32_t>(keys.size()));
    save.Write(keys.data(), keys.size() * sizeof(Key));
    save.EndChunk();
  }
  if (curve_.before != ORT::Constant || curve_.after != ORT::Constant) {
    save.BeginChunk(kOrtChunk);
    save.Write(static_cast<int32_t>(curve_.before));
    save.Write(static_cast<int32_t>(curve_.after));
    save.EndChunk();
  }
  if (locked_) {
    save.BeginChunk(kLockChunk);
    save.Write(int32_t{1});
    save.EndChunk();
  }
  return save.Status();
}

template <class Key>
IOResult KeyframeControl<Key>::Load(ILoad& load) {
  while (load.OpenChunk() == IOResult::OK) {
    switch (load.CurChunkID()) {
      case kConstantChunk:
        load.Read(constant_);
        break;
      case kKeysChunk: {
        uint32_t count = 0;
        load.ReadCount(count, sizeof(Key));
        curve_.keys.resize(count);
        load.Read(curve_.keys.data(), count * sizeof(Key));
        break;
      }
      case kOrtChunk: {
        int32_t ort[2] = {0, 0};
        load.Read(ort, sizeof ort);
        for (const int32_t code : ort)
          if (code < 1 || code > 7 || code == 6) return load.Fail("an out-of-range type is none of 1 to 5 and 7");
        curve_.before = static_cast<ORT>(ort[0]);
        curve_.after = static_cast<ORT>(ort[1]);
        break;
      }
      case kLockChunk: {
        int32_t on = 0;
        load.Read(on);
        locked_ = on != 0;
        break;
      }
      default:
        break;
    }
    load.CloseChunk();
  }
  stale_ = true;
  cachedValid_.SetEmpty();
  return load.Status();
}

template class KeyframeControl<IBezFloatKey>;
template class KeyframeControl<IBezPoint3Key>;
template class KeyframeControl<IBezPoint4Key>;
template class KeyframeControl<IBezScaleKey>;
template class KeyframeControl<ITCBFloatKey>;
template class KeyframeControl<ITCBPoint3Key>;
template class KeyframeControl<ITCBRotKey>;
template class KeyframeControl<ITCBScaleKey>;

}  // namespace corvanta
