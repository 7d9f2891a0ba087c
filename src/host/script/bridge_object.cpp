// SPDX-License-Identifier: MIT
#include "host/script/bridge_object.h"

#include "host/core/cust_attrib.h"
#include "host/scene/scene.h"
#include "host/script/operators.h"
#include "host/script/text.h"

namespace corvanta::script {

namespace {

// Sub-animatable names have blanks, scripts write underscores.
bool MatchesSubName(const WStr& subName, const WStr& name) {
  WStr plain = subName;
  for (wchar_t& c : plain)
    if (c == L' ' || c == L'/') c = L'_';
  return EqualsNoCase(plain, name);
}

template <class F>
bool AnyBlock(ReferenceTarget& target, F&& visit) {
  for (int i = 0; i < target.NumRefs(); ++i)
    if (auto* block = dynamic_cast<ParamBlock2*>(target.GetReference(i)))
      if (visit(*block)) return true;
  return false;
}

FPType TypeOf(const ParamRow& row) { return static_cast<FPType>(row.type); }

bool GetParameter(ReferenceTarget& target, const WStr& name, Value& out) {
  return AnyBlock(target, [&](ParamBlock2& block) {
    const ParamRow* row = block.GetDesc().FindByName(name);
    if (!row) return false;
    out = row->Is(kTab) ? Value::Object(new TabObject(block, *row))
                        : FromFP(block.GetValue(row->id, ScriptTime()), TypeOf(*row));
    return true;
  });
}

// The value for `row`, checked as far as it can be before anything is written.
FPValue Accepted(ParamBlock2& block, const ParamRow& row, const Value& value) {
  if (row.Is(kReadOnly)) Fail(L"`" + WStr(row.name) + L"` is read-only");
  auto converted = ToFP(value, TypeOf(row));
  if (!converted) WrongValue(ExpectedText(TypeOf(row)) + L" for `" + row.name + L"`", value);
  ReferenceTarget* candidate = converted->ToTarget();
  if (candidate && row.validator && !row.validator->Validate(block.GetOwner(), row.id, candidate))
    Fail(Describe(value) + L" is not accepted for `" + row.name + L"`");
  if (candidate && !row.Is(kWeak) && candidate->TestForLoop(&block))
    Fail(L"`" + WStr(row.name) + L"` refuses " + Describe(value) + L": it would depend on itself");
  return std::move(*converted);
}

void Write(ParamBlock2& block, const ParamRow& row, const FPValue& value, int tab) {
  if (!block.SetFPValue(row.id, ScriptTime(), value, tab)) Fail(L"`" + WStr(row.name) + L"` does not take that value");
}

bool SetParameter(ReferenceTarget& target, const WStr& name, const Value& value) {
  return AnyBlock(target, [&](ParamBlock2& block) {
    const ParamRow* row = block.GetDesc().FindByName(name);
    if (!row) return false;
    if (row->Is(kTab))
      TabObject(block, *row).Assign(value);
    else
      Write(block, *row, Accepted(block, *row, value), 0);
    return true;
  });
}

bool GetSubAnim(ReferenceTarget& target, const WStr& name, Value& out) {
  for (int i = 0; i < target.NumSubs(); ++i) {
    if (!MatchesSubName(target.SubAnimName(i), name)) continue;
    out = Value::Object(new SubAnimObject(&target, i));
    return true;
  }
  return false;
}

// Properties that a kind of object has whatever its class; `out` and `value` as in Get and Set.
bool GetBuiltin(ReferenceTarget& target, const WStr& name, Value& out) {
  if (INode* node = target.AsNode()) return GetByRow(NodeProperties(), *node, name, out);
  if (Control* control = target.AsControl()) return GetByRow(ControlProperties(), *control, name, out);
  return GetByRow(NamedProperties(target), target, name, out);
}
bool SetBuiltin(ReferenceTarget& target, const WStr& name, const Value& value) {
  if (INode* node = target.AsNode()) return SetByRow(NodeProperties(), *node, name, value);
  if (Control* control = target.AsControl()) return SetByRow(ControlProperties(), *control, name, value);
  return SetByRow(NamedProperties(target), target, name, value);
}

void AppendAttributes(ReferenceTarget& target, std::vector<ReferenceTarget*>& path) {
  const CustAttribContainer* container = target.GetCustAttribContainer();
  for (int i = 0; container && i < container->GetNumCustAttribs(); ++i)
    if (container->GetCustAttrib(i)) path.push_back(container->GetCustAttrib(i));
}

void RequireAlive(ReferenceTarget& target) {
  INode* node = target.AsNode();
  if (node && !node->IsInScene() && !node->IsRootNode()) Fail(L"the node `" + node->GetName() + L"` is deleted");
}

}  // namespace

void WrongValue(const WStr& expected, const Value& value) {
  Fail(L"expected " + expected + L", got " + Describe(value));
}

Value WrapTarget(ReferenceTarget* target) { return target ? Value::Object(new TargetObject(target)) : Value(); }

ReferenceTarget* TargetOf(const Value& value) {
  if (!value.Is(Kind::Object)) return nullptr;
  if (const auto* object = dynamic_cast<const TargetObject*>(&value.AsObject())) return object->target();
  if (const auto* sub = dynamic_cast<const SubAnimObject*>(&value.AsObject())) return sub->target();
  return nullptr;
}

Control* ControlOf(const Value& value) {
  ReferenceTarget* target = TargetOf(value);
  if (!target) return nullptr;
  return target->AsNode() ? target->AsNode()->GetTMController() : target->AsControl();
}

bool GetOwn(ReferenceTarget& target, const WStr& name, Value& out) {
  if (GetParameter(target, name, out)) return true;
  for (int i = 0; i < target.NumInterfaces(); ++i) {
    FPInterface& interface = *target.GetInterfaceAt(i);
    if (GetPublished(&target, interface, name, out)) return true;
    if (EqualsNoCase(interface.GetDesc().scriptName, name)) {
      out = Value::Object(new InterfaceObject(&target, interface));
      return true;
    }
  }
  if (target.AsControl() && GetControlPart(*target.AsControl(), name, out)) return true;
  return GetSubAnim(target, name, out);
}

bool SetOwn(ReferenceTarget& target, const WStr& name, const Value& value) {
  const auto setPublished = [&] {
    for (int i = 0; i < target.NumInterfaces(); ++i)
      if (SetPublished(*target.GetInterfaceAt(i), name, value)) return true;
    return false;
  };
  // A published property does more than the parameter of its name that it stands for: it knows the names of an
  // enumeration, and what else a write entails.
  if (setPublished() || SetParameter(target, name, value)) return true;
  if (target.AsControl() && TargetOf(value) && SetControlPart(*target.AsControl(), name, value)) return true;
  Value sub;
  if (!GetSubAnim(target, name, sub)) return false;
  const ReferenceTarget* given = TargetOf(value);
  return sub.AsObject().Set(given ? L"controller" : L"value", value);
}

std::vector<ReferenceTarget*> LookupPath(ReferenceTarget& target) {
  std::vector<ReferenceTarget*> path;
  INode* node = target.AsNode();
  if (node) {
    // A node's own sub-animatables come last: its parts are reached by property.
    if (Object* base = node->GetBaseObject()) path.push_back(base);
    for (Modifier* modifier : node->Modifiers()) path.push_back(modifier);
  } else {
    path.push_back(&target);
  }
  AppendAttributes(target, path);
  for (size_t i = 0, n = path.size(); node && i < n; ++i) AppendAttributes(*path[i], path);
  if (node) path.push_back(node);
  return path;
}

// --- TargetObject -------------------------------------------------------------------------------------------

WStr TargetObject::ClassName() const { return target_->GetClassName(); }

WStr TargetObject::Text() const {
  if (INode* node = target_->AsNode())
    return (node->IsInScene() || node->IsRootNode() ? L"$'" : L"<deleted>'") + node->GetName() + L"'";
  return L"<" + ClassName() + L">";
}

void TargetObject::AppendJson(WStr& out) const {
  if (INode* node = target_->AsNode()) return AppendJsonString(out, node->GetName());
  out += L"{\"class\":";
  AppendJsonString(out, ClassName());
  if (Control* control = target_->AsControl()) out += L",\"value\":" + ToJson(ControlValue(*control, ScriptTime()));
  Value name;
  if (!target_->AsControl() && GetBuiltin(*target_.Get(), L"name", name)) {
    out += L",\"name\":";
    out += ToJson(name);
  }
  out += L"}";
}

bool TargetObject::SameAs(const HostObject& b) const {
  const auto* other = dynamic_cast<const TargetObject*>(&b);
  return other && other->target_ == target_;
}

bool TargetObject::Get(const WStr& name, Value& out) {
  RequireAlive(*target_);
  if (GetBuiltin(*target_, name, out)) return true;
  for (ReferenceTarget* target : LookupPath(*target_))
    if (GetOwn(*target, name, out)) return true;
  return false;
}

bool TargetObject::Set(const WStr& name, const Value& value) {
  RequireAlive(*target_);
  if (SetBuiltin(*target_, name, value)) return true;
  for (ReferenceTarget* target : LookupPath(*target_))
    if (SetOwn(*target, name, value)) return true;
  return false;
}

std::vector<WStr> TargetObject::PropertyNames() {
  std::vector<WStr> names;
  const auto addRows = [&](const auto& rows) {
    for (const auto& row : rows) names.push_back(row.name);
  };
  if (target_->AsNode())
    addRows(NodeProperties());
  else if (target_->AsControl())
    addRows(ControlProperties());
  else
    addRows(NamedProperties(*target_));
  for (ReferenceTarget* target : LookupPath(*target_)) {
    AnyBlock(*target, [&](ParamBlock2& block) {
      for (const ParamRow& row : block.GetDesc().rows)
        if (row.name[0]) names.push_back(row.name);
      return false;
    });
    for (int i = 0; i < target->NumInterfaces(); ++i) AppendPublishedNames(*target->GetInterfaceAt(i), names);
  }
  return names;
}

// --- TabObject ----------------------------------------------------------------------------------------------

WStr TabObject::Text() const {
  Value array = Value::Array();
  for (int i = 0; i < block_->Count(row_.id); ++i)
    array.AsArray().Append(FromFP(block_->GetValue(row_.id, ScriptTime(), i), TypeOf(row_)));
  return QuotedText(array);
}
void TabObject::AppendJson(WStr& out) const {
  out += L'[';
  for (int i = 0; i < block_->Count(row_.id); ++i) {
    if (i) out += L',';
    out += ToJson(FromFP(block_->GetValue(row_.id, ScriptTime(), i), TypeOf(row_)));
  }
  out += L']';
}
bool TabObject::SameAs(const HostObject& b) const {
  const auto* other = dynamic_cast<const TabObject*>(&b);
  return other && other->block_ == block_ && &other->row_ == &row_;
}
bool TabObject::Get(const WStr& name, Value& out) {
  if (name != L"count") return false;
  out = Value::Int(Count());
  return true;
}
bool TabObject::Set(const WStr& name, const Value& value) {
  if (name != L"count") return false;
  const auto count = ToInt(value);
  constexpr int64_t kMost = 1'000'000;
  if (!count || *count < 0 || *count > kMost) WrongValue(L"a count from 0", value);
  return block_->SetCount(row_.id, static_cast<int>(*count));
}
Value TabObject::Item(int64_t i) {
  return FromFP(block_->GetValue(row_.id, ScriptTime(), static_cast<int>(i)), TypeOf(row_));
}
bool TabObject::SetAt(const Value& key, const Value& value) {
  const auto i = ToInt(key);
  if (!i || *i < 1 || *i > Count())
    Fail(L"index " + Describe(key) + L" is out of range 1 to " + std::to_wstring(Count()));
  Write(*block_, row_, Accepted(*block_, row_, value), static_cast<int>(*i - 1));
  return true;
}
bool TabObject::Append(const Value& value) {
  const auto count = static_cast<int>(Count());
  const FPValue accepted = Accepted(*block_, row_, value);
  if (!block_->SetCount(row_.id, count + 1)) return false;
  Write(*block_, row_, accepted, count);
  return true;
}
bool TabObject::DeleteItem(int64_t i) { return block_->Delete(row_.id, static_cast<int>(i)); }
void TabObject::Assign(const Value& value) {
  const bool list = value.Is(Kind::Array) || (value.Is(Kind::Object) && value.AsObject().Count() >= 0);
  if (!list) WrongValue(L"an array for `" + WStr(row_.name) + L"`", value);
  const Value array = Convert(value, ConversionType::Array);
  std::vector<FPValue> accepted;  // all or nothing
  for (const Value& item : array.AsArray().items()) accepted.push_back(Accepted(*block_, row_, item));
  block_->SetCount(row_.id, static_cast<int>(accepted.size()));
  for (size_t i = 0; i < accepted.size(); ++i) Write(*block_, row_, accepted[i], static_cast<int>(i));
}

// --- NamedList ----------------------------------------------------------------------------------------------

WStr NamedList::Text() const {
  WStr text = L"#(";
  for (size_t i = 0; i < entries_.size(); ++i) text += (i ? L", " : L"") + entries_[i].name;
  return text + L")";
}
void NamedList::AppendJson(WStr& out) const {
  out += L'[';
  for (size_t i = 0; i < entries_.size(); ++i) {
    if (i) out += L',';
    out += ToJson(entries_[i].value);
  }
  out += L']';
}
bool NamedList::GetAt(const Value& key, Value& out) { return key.IsText() && Get(ToLower(key.AsText()), out); }
bool NamedList::Get(const WStr& name, Value& out) {
  for (const Entry& entry : entries_) {
    if (!EqualsNoCase(entry.name, name)) continue;
    out = entry.value;
    return true;
  }
  return false;
}

}  // namespace corvanta::script
