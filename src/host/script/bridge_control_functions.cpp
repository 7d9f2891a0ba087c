// SPDX-License-Identifier: MIT
// Sub-animatables, keys, transform packets, locks and handles.
#include "host/anim/key_control.h"
#include "host/script/bridge_functions.h"
#include "host/script/bridge_keys.h"
#include "host/script/text.h"

namespace corvanta::script {

namespace {

int KeyArg(const CallArgs& args, Control& control) {
  const int64_t i = args.Int(1);
  if (i < 1 || i > control.NumKeys())
    Fail(args.CalleeName() + L": key " + std::to_wstring(i) + L" is out of range 1 to " +
         std::to_wstring(control.NumKeys()));
  return static_cast<int>(i - 1);
}

Value NumKeys(const CallArgs& args) { return Value::Int(ControlArg(args, 0)->NumKeys()); }
Value GetKey(const CallArgs& args) {
  Control* control = ControlArg(args, 0);
  return Value::Object(new KeyObject(control, KeyArg(args, *control)));
}
Value GetKeyTime(const CallArgs& args) {
  Control* control = ControlArg(args, 0);
  return Value::Time(control->GetKeyTime(KeyArg(args, *control)));
}
// 0 where there is no key.
Value GetKeyIndex(const CallArgs& args) { return Value::Int(ControlArg(args, 0)->GetKeyIndex(args.Time(1)) + 1); }

Value AddKey(const CallArgs& args) {
  Control* control = ControlArg(args, 0);
  const TimeValue t = args.Time(1);
  control->AddNewKey(t);
  const int index = control->GetKeyIndex(t);
  if (index < 0) Fail(L"addKey: " + Describe(args[0]) + L" takes no keys");
  return Value::Object(new KeyObject(control, index));
}
Value DeleteKey(const CallArgs& args) {
  Control* control = ControlArg(args, 0);
  control->DeleteKeyAtTime(control->GetKeyTime(KeyArg(args, *control)));
  return Value::Ok();
}
// All keys, the selected ones, or those in an interval.
Value DeleteKeys(const CallArgs& args) {
  Control* control = ControlArg(args, 0);
  if (args.Count() == 1) {
    control->DeleteKeys(false);
  } else if (args[1].Is(Kind::Interval)) {
    for (int i = control->NumKeys() - 1; i >= 0; --i)
      if (const TimeValue t = control->GetKeyTime(i); args[1].AsInterval().Contains(t)) control->DeleteKeyAtTime(t);
  } else if (args[1].IsText() && EqualsNoCase(args[1].AsText(), L"selected")) {
    control->DeleteKeys(true);
  } else if (args[1].IsText() && EqualsNoCase(args[1].AsText(), L"all")) {
    control->DeleteKeys(false);
  } else {
    args.Wrong(1, L"#all, #selected or an interval");
  }
  return Value::Ok();
}

// Gives the number of keys that went.
Value ReduceKeys(const CallArgs& args) {
  Control* control = ControlArg(args, 0);
  const double threshold = args.Number(1);
  const TimeValue step = args.Time(2);
  if (!(threshold >= 0)) args.Wrong(1, L"a threshold from 0");
  if (step < 1) args.Wrong(2, L"a step of time such as 1f");
  if (args.Count() > 3 && !args[3].Is(Kind::Interval)) args.Wrong(3, L"an interval");
  const Interval range = args.Count() > 3 ? args[3].AsInterval() : control->GetKeyRange();
  const int gone = corvanta::ReduceKeys(control, static_cast<float>(threshold), step, range);
  if (gone < 0) args.Wrong(0, L"a controller with keys of its own");
  return Value::Int(gone);
}

struct OrtRow {
  const wchar_t* name;
  ORT type;
};
const OrtRow kOrts[] = {{L"constant", ORT::Constant}, {L"cycle", ORT::Cycle},
                        {L"loop", ORT::Loop},         {L"pingPong", ORT::PingPong},
                        {L"linear", ORT::Linear},     {L"relativeRepeat", ORT::RelativeRepeat}};

bool AfterArg(const CallArgs& args) {
  const bool after = args[1].IsText() && EqualsNoCase(args[1].AsText(), L"after");
  if (!after && !(args[1].IsText() && EqualsNoCase(args[1].AsText(), L"before"))) args.Wrong(1, L"#before or #after");
  return after;
}
Value GetOrt(const CallArgs& args) {
  const ORT type = ControlArg(args, 0)->GetORT(AfterArg(args));
  for (const OrtRow& row : kOrts)
    if (row.type == type) return Value::Name(row.name);
  return {};
}
Value SetOrt(const CallArgs& args) {
  for (const OrtRow& row : kOrts)
    if (args[2].IsText() && EqualsNoCase(args[2].AsText(), row.name))
      return ControlArg(args, 0)->SetORT(row.type, AfterArg(args)), Value::Ok();
  args.Wrong(2, L"#constant, #cycle, #loop, #pingPong, #linear or #relativeRepeat");
}

ReferenceTarget* ObjectArg(const CallArgs& args, size_t i) {
  ReferenceTarget* target = TargetOf(args[i]);
  if (!target) args.Wrong(i, L"an object");
  return target;
}

Value GetSubAnim(const CallArgs& args) {
  ReferenceTarget* owner = ObjectArg(args, 0);
  const int64_t i = args.Int(1);
  if (i < 1 || i > owner->NumSubs())
    Fail(L"getSubAnim: index " + std::to_wstring(i) + L" is out of range 1 to " + std::to_wstring(owner->NumSubs()));
  return Value::Object(new SubAnimObject(owner, static_cast<int>(i - 1)));
}
Value NumSubAnims(const CallArgs& args) { return Value::Int(ObjectArg(args, 0)->NumSubs()); }
Value SubAnimNames(const CallArgs& args) {
  ReferenceTarget* owner = ObjectArg(args, 0);
  Value names = Value::Array();
  for (int i = 0; i < owner->NumSubs(); ++i) names.AsArray().Append(Value::String(owner->SubAnimName(i)));
  return names;
}

Value AnimByHandle(const CallArgs& args) {
  const int64_t handle = args.Int(0);
  Animatable* anim = handle > 0 ? Animatable::GetAnimByHandle(static_cast<AnimHandle>(handle)) : nullptr;
  return WrapTarget(dynamic_cast<ReferenceTarget*>(anim));
}
Value HandleByAnim(const CallArgs& args) {
  return Value::Int(static_cast<int64_t>(Animatable::GetHandleByAnim(ObjectArg(args, 0))));
}

Value GetLocked(const CallArgs& args) {
  const ILockedTrack* lock = GetLockedTrack(ObjectArg(args, 0));
  return Value::Bool(lock && lock->GetLocked());
}
Value SetLocked(const CallArgs& args) {
  ILockedTrack* lock = GetLockedTrack(ObjectArg(args, 0));
  if (!lock) args.Wrong(0, L"a track that can be locked");
  lock->SetLocked(args.Bool(1));
  return Value::Ok();
}

void SetLocksBelow(Animatable* anim, bool on, int depth) {
  constexpr int kDeepest = 64;  // sub-animatables may meet their owner again
  if (!anim || depth > kDeepest) return;
  if (ILockedTrack* lock = GetLockedTrack(anim)) lock->SetLocked(on);
  for (int i = 0; i < anim->NumSubs(); ++i) SetLocksBelow(anim->SubAnim(i), on, depth + 1);
}
// The first array holds the tracks, as objects or handles; their clients and places in them are not needed here.
Value SetChildLocks(const CallArgs& args, bool on) {
  for (const Value& item : args.Array(0).items()) {
    Animatable* anim = TargetOf(item);
    if (const auto handle = ToInt(item); handle && *handle > 0)
      anim = Animatable::GetAnimByHandle(static_cast<AnimHandle>(*handle));
    if (!anim) Fail(args.CalleeName() + L": expected tracks or their handles, got " + Describe(item));
    SetLocksBelow(anim, on, 0);
  }
  return Value::Ok();
}
Value UnlockChildren(const CallArgs& args) { return SetChildLocks(args, false); }
Value LockChildren(const CallArgs& args) { return SetChildLocks(args, true); }

// --- transform packets --------------------------------------------------------------------------------------

// A turn: a quaternion, or #(degrees, [axis]), which keeps the axis as it is given.
AngAxis TurnOf(const CallArgs& args, size_t i) {
  if (args[i].Is(Kind::Array) && args[i].AsArray().Count() == 2) {
    const auto degrees = ToNumber(args[i].AsArray()[0]);
    const auto axis = ToPoint3(args[i].AsArray()[1]);
    if (degrees && axis) return {*axis, static_cast<float>(*degrees / 57.295779513082320877)};
  }
  const auto q = ToQuat(args[i]);
  if (!q) args.Wrong(i, L"a quaternion or #(degrees, [x,y,z])");
  return AngAxisFromQuat(*q);
}

SetXFormPacket PacketOf(const CallArgs& args, bool localOrigin) {
  static const wchar_t* const kCommands[] = {L"move", L"rotate", L"scale", L"set"};
  const Matrix3 parent = args.Matrix(3), axis = args.Matrix(4);
  int command = -1;
  for (int i = 0; i < 4; ++i)
    if (args[2].IsText() && EqualsNoCase(args[2].AsText(), kCommands[i])) command = i;
  switch (command) {
    case XFORM_MOVE:
      return SetXFormPacket::Move(args.Point3(5), parent, axis);
    case XFORM_ROTATE:
      return SetXFormPacket::Rotate(TurnOf(args, 5), localOrigin, parent, axis);
    case XFORM_SCALE:
      return SetXFormPacket::Scale(args.Point3(5), localOrigin, parent, axis);
    case XFORM_SET: {
      const auto wanted = ToMatrix(args[5]);
      if (!wanted) args.Wrong(5, L"a matrix");
      return SetXFormPacket::Set(*wanted * axis, parent);
    }
    default:
      args.Wrong(2, L"#move, #rotate, #scale or #set");
  }
}

bool FlagOf(const CallArgs& args, const wchar_t* name, bool fallback) {
  const Value* value = args.Keyword(name);
  if (value && !value->Is(Kind::Bool)) WrongValue(L"true or false for " + WStr(name) + L":", *value);
  return value ? value->AsBool() : fallback;
}

Value SetXForm(const CallArgs& args) {
  args.CheckKeywords({L"relative", L"localorigin"});
  Control* control = ControlArg(args, 0);
  if (control->SuperClassID() != kMatrixControlSuper) args.Wrong(0, L"a transform controller or a node");
  SetXFormPacket packet = PacketOf(args, FlagOf(args, L"localorigin", false));
  const bool relative = FlagOf(args, L"relative", packet.command != XFORM_SET);
  control->SetValue(args.Time(1), packet, true, relative ? CTRL_RELATIVE : CTRL_ABSOLUTE);
  return Value::Ok();
}

const BuiltinRow kRows[] = {
    {L"numKeys", NumKeys, 1, 1},
    {L"getKey", GetKey, 2, 2},
    {L"getKeyTime", GetKeyTime, 2, 2},
    {L"getKeyIndex", GetKeyIndex, 2, 2},
    {L"addKey", AddKey, 2, 2},
    {L"deleteKey", DeleteKey, 2, 2},
    {L"deleteKeys", DeleteKeys, 1, 2},
    {L"reduceKeys", ReduceKeys, 3, 4},
    {L"getORT", GetOrt, 2, 2},
    {L"setORT", SetOrt, 3, 3},
    {L"getSubAnim", GetSubAnim, 2, 2},
    {L"numSubAnims", NumSubAnims, 1, 1},
    {L"getSubAnimNames", SubAnimNames, 1, 1},
    {L"getAnimByHandle", AnimByHandle, 1, 1},
    {L"getHandleByAnim", HandleByAnim, 1, 1},
    {L"getLocked", GetLocked, 1, 1},
    {L"setLocked", SetLocked, 2, 2},
    {L"lockedTracksMan.UnlockChildren", UnlockChildren, 1, 3},
    {L"lockedTracksMan.LockChildren", LockChildren, 1, 3},
    {L"setXForm", SetXForm, 6, 6},
};

}  // namespace

std::span<const BuiltinRow> ControlFunctions() { return kRows; }

}  // namespace corvanta::script
