// SPDX-License-Identifier: MIT
#include "host/script/bridge_keys.h"

#include "host/anim/key_control.h"
#include "host/script/text.h"

namespace corvanta::script {

namespace {

const wchar_t* const kTangents[] = {L"smooth", L"linear", L"stepped", L"fast", L"slow", L"user", L"auto"};

/// Room for the largest key record; each begins with an IKey.
union KeyRecord {
  KeyRecord() : head{} {}
  IKey head;
  unsigned char bytes[128];
};

/// The records of a controller, null when it has none of its own.
IKeyControl* RecordsOf(Control& control) {
  IKeyControl* keys = GetKeyControl(&control);
  return keys && keys->GetKeySize() <= static_cast<int>(sizeof(KeyRecord)) ? keys : nullptr;
}

bool HasTangents(const IKeyControl& keys) {
  for (const size_t size : {sizeof(IBezFloatKey), sizeof(IBezPoint3Key), sizeof(IBezScaleKey), sizeof(IBezPoint4Key)})
    if (keys.GetKeySize() == static_cast<int>(size)) return true;
  return false;
}

}  // namespace

TimeValue KeyObject::Time() const {
  if (index_ >= control_->NumKeys()) Fail(L"key " + std::to_wstring(index_ + 1) + L" is gone");
  return control_->GetKeyTime(index_);
}

WStr KeyObject::Text() const { return L"<Key " + std::to_wstring(index_ + 1) + L" at " + TimeText(Time()) + L">"; }

void KeyObject::AppendJson(WStr& out) const {
  out += L"{\"time\":" + ToJson(Value::Time(Time())) + L",\"value\":" + ToJson(ControlValue(*control_, Time())) + L"}";
}

bool KeyObject::Get(const WStr& name, Value& out) {
  if (name == L"time") return out = Value::Time(Time()), true;
  if (name == L"value") return out = ControlValue(*control_, Time()), true;
  if (name == L"selected") return out = Value::Bool(control_->IsKeySelected(index_)), true;
  return GetTangent(name, out);
}

bool KeyObject::Set(const WStr& name, const Value& value) {
  if (name == L"time") return SetTime(value), true;
  if (name == L"value") return SetValue(value), true;
  if (name != L"selected") return SetTangent(name, value);
  if (!value.Is(Kind::Bool)) WrongValue(L"true or false", value);
  control_->SelectKeys(Interval::Instant(Time()), value.AsBool());
  return true;
}

std::vector<WStr> KeyObject::PropertyNames() { return {L"time", L"value", L"selected", L"inTangent", L"outTangent"}; }

// With animate on only this key changes.
void KeyObject::SetValue(const Value& value) {
  struct Animate {
    Animate() : before(Animating()) { AnimateOn(); }
    ~Animate() {
      if (!before) AnimateOff();
    }
    const bool before;
  };
  const TimeValue t = Time();
  const Animate on;
  SetControlValue(*control_, t, value);
}

void KeyObject::SetTime(const Value& value) {
  IKeyControl* keys = RecordsOf(*control_);
  const auto t = ToTime(value);
  if (!t) WrongValue(L"a time such as 10f", value);
  Time();
  if (!keys) Fail(L"the keys of <" + control_->GetClassName() + L"> belong to its parts; move them there");
  KeyRecord record;
  keys->GetKey(index_, &record.head);
  record.head.time = *t;
  keys->SetKey(index_, &record.head);
  keys->SortKeys();
  index_ = control_->GetKeyIndex(*t);
}

bool KeyObject::GetTangent(const WStr& name, Value& out) const {
  if (name != L"intangent" && name != L"outtangent") return false;
  IKeyControl* keys = RecordsOf(*control_);
  if (!keys || !HasTangents(*keys)) return false;
  Time();
  KeyRecord record;
  keys->GetKey(index_, &record.head);
  const auto type =
      static_cast<size_t>(name == L"intangent" ? InTangent(record.head.flags) : OutTangent(record.head.flags));
  out = type < std::size(kTangents) ? Value::Name(kTangents[type]) : Value();
  return true;
}

bool KeyObject::SetTangent(const WStr& name, const Value& value) {
  Value present;
  if (!GetTangent(name, present)) return false;
  for (uint32_t type = 0; type < std::size(kTangents); ++type) {
    if (!value.IsText() || !EqualsNoCase(value.AsText(), kTangents[type])) continue;
    IKeyControl* keys = RecordsOf(*control_);
    KeyRecord record;
    keys->GetKey(index_, &record.head);
    const auto tangent = static_cast<Tangent>(type);
    const bool in = name == L"intangent";
    record.head.flags = WithTangents(record.head.flags, in ? tangent : InTangent(record.head.flags),
                                     in ? OutTangent(record.head.flags) : tangent);
    keys->SetKey(index_, &record.head);
    return true;
  }
  WrongValue(L"#smooth, #linear, #stepped, #fast, #slow, #user or #auto", value);
}

}  // namespace corvanta::script
