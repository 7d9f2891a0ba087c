// SPDX-License-Identifier: MIT
// Values of controllers and sub-animatables.
#include "host/core/param_block.h"
#include "host/script/bridge_object.h"
#include "host/script/text.h"

namespace corvanta::script {

namespace {

template <class T>
T Read(Control& control, TimeValue t) {
  T value{};
  Interval valid = FOREVER;
  control.GetValue(t, value, valid);
  return value;
}

// Transform controllers take their parent's matrix in the value.
Matrix3 ReadMatrix(Control& control, TimeValue t) {
  Matrix3 tm;
  Interval valid = FOREVER;
  control.GetValue(t, tm, valid, CTRL_RELATIVE);
  return tm;
}

template <class T>
void Write(Control& control, TimeValue t, std::optional<T> value, const Value& given, const wchar_t* expected) {
  if (!value) WrongValue(expected, given);
  control.SetValue(t, *value);
}

std::optional<Point4> ToPoint4(const Value& value) {
  return value.Is(Kind::Point4) ? std::optional(value.AsPoint4()) : std::nullopt;
}
std::optional<float> ToSingle(const Value& value) {
  const auto n = ToNumber(value);
  return n ? std::optional(static_cast<float>(*n)) : std::nullopt;
}
// The colour tracks among the Point3 controllers take colours too; their values are 0..1.
std::optional<Point3> ToTrackPoint(const Value& value) {
  if (!value.Is(Kind::Colour)) return ToPoint3(value);
  return Point3{value.Components()[0], value.Components()[1], value.Components()[2]};
}
std::optional<ScaleValue> ToScale(const Value& value) {
  if (value.IsNumber()) return ScaleValue{Point3{1, 1, 1} * static_cast<float>(value.Number()), {}};
  const auto p = ToPoint3(value);
  return p ? std::optional(ScaleValue{*p, {}}) : std::nullopt;
}

// Scripts see what the windows show. Whether a number is an angle or a percentage is known by what holds its
// controller.
ParamDimension DimensionOf(const Control& control) {
  for (ReferenceMaker* owner : control.Dependents())
    for (int i = 0; i < owner->NumSubs(); ++i)
      if (owner->SubAnim(i) == &control) return owner->GetParamDimension(i);
  return ParamDimension::Plain;
}
std::optional<float> ToTrackNumber(const Control& control, const Value& value) {
  const auto number = ToSingle(value);
  return number ? std::optional(UnConvertFromDisplay(DimensionOf(control), *number)) : std::nullopt;
}

// The kind of controller that place `i` of `owner` takes, 0 where it cannot be told.
SClass_ID ExpectedSuper(Animatable& owner, int i) {
  if (auto* present = dynamic_cast<Control*>(owner.SubAnim(i))) return present->SuperClassID();
  if (auto* block = dynamic_cast<ParamBlock2*>(&owner)) {
    const ParamRow* row = block->GetParamDef(block->AnimNumToParam(i).first);
    if (!row) return 0;
    return row->type == ParamType::Point3 || row->type == ParamType::Colour ? kPoint3ControlSuper : kFloatControlSuper;
  }
  return 0;
}

template <Control* (Control::*Part)()>
Value PartOf(Control& control) {
  return WrapTarget((control.*Part)());
}

// Puts a controller in the place of one part; `Copy` runs as at every assignment by a user.
template <Control* (Control::*Part)()>
void SetPart(Control& control, const Value& value) {
  Control* part = (control.*Part)();
  for (int i = 0; part && i < control.NumSubs(); ++i)
    if (control.SubAnim(i) == part) return AssignController(control, i, value);
  Fail(Describe(value) + L" cannot be put there");
}

using ControlRow = PropertyRow<Control>;
const ControlRow kControlRows[] = {
    {L"value", [](Control& c) { return ControlValue(c, ScriptTime()); },
     [](Control& c, const Value& v) { SetControlValue(c, ScriptTime(), v); }},
};
// Only where the controller has such a part: a parameter may have the same name elsewhere.
const ControlRow kPartRows[] = {
    {L"position", PartOf<&Control::GetPositionController>, SetPart<&Control::GetPositionController>},
    {L"rotation", PartOf<&Control::GetRotationController>, SetPart<&Control::GetRotationController>},
    {L"scale", PartOf<&Control::GetScaleController>, SetPart<&Control::GetScaleController>},
    {L"x", PartOf<&Control::GetXController>, SetPart<&Control::GetXController>},
    {L"y", PartOf<&Control::GetYController>, SetPart<&Control::GetYController>},
    {L"z", PartOf<&Control::GetZController>, SetPart<&Control::GetZController>},
};

const ControlRow* FindPart(Control& control, const WStr& name) {
  for (const ControlRow& row : kPartRows)
    if (name == row.name && !row.get(control).IsUndefined()) return &row;
  return nullptr;
}

}  // namespace

std::span<const PropertyRow<Control>> ControlProperties() { return kControlRows; }

bool GetControlPart(Control& control, const WStr& name, Value& out) {
  const ControlRow* row = FindPart(control, name);
  if (row) out = row->get(control);
  return row != nullptr;
}

bool SetControlPart(Control& control, const WStr& name, const Value& value) {
  const ControlRow* row = FindPart(control, name);
  if (row) row->set(control, value);
  return row != nullptr;
}

Value ControlValue(Control& control, TimeValue t) {
  switch (control.SuperClassID()) {
    case kFloatControlSuper:
      return Value::Float(static_cast<double>(ConvertForDisplay(DimensionOf(control), Read<float>(control, t))));
    case kPoint3ControlSuper:
    case kPositionControlSuper:
      return Value::Of(Read<Point3>(control, t));
    case kPoint4ControlSuper:
      return Value::Of(Read<Point4>(control, t));
    case kRotationControlSuper:
      return Value::Of(Read<Quat>(control, t));
    case kScaleControlSuper:
      return Value::Of(Read<ScaleValue>(control, t).s);
    case kMatrixControlSuper:
      return Value::Of(ReadMatrix(control, t));
    default:
      return {};
  }
}

void SetControlValue(Control& control, TimeValue t, const Value& value) {
  switch (control.SuperClassID()) {
    case kFloatControlSuper:
      return Write(control, t, ToTrackNumber(control, value), value, L"a number");
    case kPoint3ControlSuper:
    case kPositionControlSuper:
      return Write(control, t, ToTrackPoint(value), value, L"a point such as [1,2,3]");
    case kPoint4ControlSuper:
      return Write(control, t, ToPoint4(value), value, L"a point such as [1,2,3,4]");
    case kRotationControlSuper:
      return Write(control, t, ToQuat(value), value, L"a quaternion");
    case kScaleControlSuper:
      return Write(control, t, ToScale(value), value, L"a point such as [1,1,1]");
    case kMatrixControlSuper: {
      const auto tm = ToMatrix(value);
      if (!tm) WrongValue(L"a matrix", value);
      SetXFormPacket packet = SetXFormPacket::Set(*tm);
      control.SetValue(t, packet);
      return;
    }
    default:
      Fail(L"<" + control.GetClassName() + L"> has no value");
  }
}

void AssignController(Animatable& owner, int i, const Value& value) {
  ReferenceTarget* target = TargetOf(value);
  Control* fresh = target ? target->AsControl() : nullptr;
  if (!fresh) WrongValue(L"a controller", value);
  const SClass_ID super = ExpectedSuper(owner, i);
  if (super && fresh->SuperClassID() != super)
    Fail(Describe(value) + L" cannot stand for `" + owner.SubAnimName(i) +
         L"`, which takes another kind of controller");
  if (!AssignWithCopy(&owner, i, fresh)) Fail(Describe(value) + L" is refused for `" + owner.SubAnimName(i) + L"`");
}

// --- SubAnimObject ------------------------------------------------------------------------------------------

ReferenceTarget* SubAnimObject::target() const {
  return index_ < owner_->NumSubs() ? dynamic_cast<ReferenceTarget*>(owner_->SubAnim(index_)) : nullptr;
}

WStr SubAnimObject::Text() const { return L"<SubAnim:" + owner_->SubAnimName(index_) + L">"; }

void SubAnimObject::AppendJson(WStr& out) const { out += ToJson(target() ? WrapTarget(target()) : GetValue()); }

bool SubAnimObject::SameAs(const HostObject& b) const {
  const auto* other = dynamic_cast<const SubAnimObject*>(&b);
  return other && other->owner_ == owner_ && other->index_ == index_;
}

// A parameter without a controller still has a value; with one, scripts see it in the parameter's own unit.
Value SubAnimObject::GetValue() const {
  if (auto* block = dynamic_cast<ParamBlock2*>(owner_.Get())) {
    const auto [id, tab] = block->AnimNumToParam(index_);
    const ParamRow* row = block->GetParamDef(id);
    return row ? FromFP(block->GetValue(id, ScriptTime(), tab), static_cast<FPType>(row->type)) : Value();
  }
  ReferenceTarget* sub = target();
  return sub && sub->AsControl() ? ControlValue(*sub->AsControl(), ScriptTime()) : Value();
}

void SubAnimObject::SetValue(const Value& value) {
  if (auto* block = dynamic_cast<ParamBlock2*>(owner_.Get())) {
    const auto [id, tab] = block->AnimNumToParam(index_);
    const ParamRow* row = block->GetParamDef(id);
    const auto converted = row ? ToFP(value, static_cast<FPType>(row->type)) : std::nullopt;
    if (!converted) WrongValue(row ? ExpectedText(static_cast<FPType>(row->type)) : L"a value", value);
    block->SetFPValue(id, ScriptTime(), *converted, tab);
    return;
  }
  ReferenceTarget* sub = target();
  if (!sub || !sub->AsControl()) Fail(Text() + L" has no controller whose value could be set");
  SetControlValue(*sub->AsControl(), ScriptTime(), value);
}

bool SubAnimObject::Get(const WStr& name, Value& out) {
  if (name == L"name") return out = Value::String(owner_->SubAnimName(index_)), true;
  if (name == L"value") return out = GetValue(), true;
  if (name == L"object") return out = WrapTarget(target()), true;
  if (name == L"parent") return out = WrapTarget(owner_.Get()), true;
  if (name == L"controller") {
    ReferenceTarget* sub = target();
    return out = sub && sub->AsControl() ? WrapTarget(sub) : Value(), true;
  }
  ReferenceTarget* sub = target();
  return sub && TargetObject(sub).Get(name, out);
}

bool SubAnimObject::Set(const WStr& name, const Value& value) {
  if (name == L"value") return SetValue(value), true;
  if (name == L"controller") {
    AssignController(*owner_, index_, value);
    return true;
  }
  ReferenceTarget* sub = target();
  return sub && TargetObject(sub).Set(name, value);
}

std::vector<WStr> SubAnimObject::PropertyNames() {
  std::vector<WStr> names = {L"name", L"value", L"controller", L"object", L"parent"};
  if (ReferenceTarget* sub = target())
    for (WStr& name : TargetObject(sub).PropertyNames()) names.push_back(std::move(name));
  return names;
}

}  // namespace corvanta::script
