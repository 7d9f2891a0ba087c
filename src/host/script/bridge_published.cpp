// SPDX-License-Identifier: MIT
// Published interfaces: functions with positional and keyword arguments, properties.
#include "host/core/tab.h"
#include "host/scene/core_interface.h"
#include "host/script/bridge_object.h"
#include "host/script/text.h"

namespace corvanta::script {

namespace {

// Errors of the program's own kind become errors of the script.
template <class Call>
FPStatus Guarded(const WStr& name, Call call) {
  try {
    return call();
  } catch (const ScriptError&) {
    throw;
  } catch (const std::exception& error) {
    Fail(name + L": " + FromUtf8(error.what()));
  }
}

void Check(FPStatus status, const WStr& name, const FPValue& result) {
  if (status == FPStatus::NoSuchFunction) Fail(name + L": the interface has no such function");
  if (status == FPStatus::OK) return;
  const WStr reason = result.ToWStr();
  Fail(reason.empty() ? name + L" failed" : name + L": " + reason);
}

/// What functions of objects do, they do at the scene's time: within `at time` that time is moved for the call.
class CallTime {
 public:
  CallTime() : before_(GetCOREInterface()->GetTime()), during_(ScriptTime()) {
    if (during_ != before_) GetCOREInterface()->SetTime(during_, false);
  }
  // A function that moved the time itself keeps it.
  ~CallTime() {
    if (during_ != before_ && GetCOREInterface()->GetTime() == during_) GetCOREInterface()->SetTime(before_, false);
  }
  CallTime(const CallTime&) = delete;
  CallTime& operator=(const CallTime&) = delete;

 private:
  const TimeValue before_, during_;
};

/// A function of an interface that is bound to its object.
class PublishedFunction final : public Callable {
 public:
  PublishedFunction(ReferenceTarget* owner, FPInterface& interface, const FPFunctionDesc& desc)
      : owner_(owner), interface_(interface), desc_(desc), name_(desc.name) {}
  const WStr& Name() const override { return name_; }

  Value Call(const CallArgs& args) override {
    if (args.Count() > desc_.params.size()) args.WrongCount(desc_.params.empty() ? L"no" : CountText());
    CheckKeywordNames(args);
    std::vector<FPValue> values;
    for (size_t i = 0; i < desc_.params.size(); ++i) values.push_back(Argument(args, i));
    FPValue result;
    const CallTime time;
    Check(Guarded(name_, [&] { return interface_.Invoke(desc_.id, ScriptTime(), result, values); }), name_, result);
    if (desc_.result == FPType::Void) return Value::Ok();
    return FromFP(result, desc_.result, interface_.GetDesc().FindEnum(desc_.enumId));
  }

 private:
  WStr CountText() const {
    size_t needed = 0;
    for (const FPParamDesc& p : desc_.params) needed += !p.defaultValue;
    WStr text = std::to_wstring(needed);
    if (needed < desc_.params.size()) text += L" to " + std::to_wstring(desc_.params.size());
    return text;
  }

  void CheckKeywordNames(const CallArgs& args) const {
    for (const WStr& keyword : args.Keywords()) {
      WStr known;
      bool found = false;
      for (const FPParamDesc& p : desc_.params) {
        found = found || EqualsNoCase(p.name, keyword);
        known += (known.empty() ? L"" : L", ") + WStr(p.name) + L":";
      }
      if (!found) Fail(name_ + L" has no keyword " + keyword + L":" + (known.empty() ? L"" : L"; it knows " + known));
    }
  }

  FPValue Argument(const CallArgs& args, size_t i) const {
    const FPParamDesc& param = desc_.params[i];
    const Value* value = args.Keyword(ToLower(param.name));
    if (i < args.Count()) {
      if (value) Fail(name_ + L": " + param.name + L" is given twice");
      value = &args[i];
    }
    if (!value) {
      if (param.defaultValue) return *param.defaultValue;
      Fail(name_ + L" takes " + CountText() + L" arguments, `" + param.name + L"` is missing");
    }
    const FPEnumDesc* enumeration = interface_.GetDesc().FindEnum(param.enumId);
    auto converted = ToFP(*value, param.type, enumeration);
    if (!converted)
      Fail(L"expected " + ExpectedText(param.type, enumeration) + L" for `" + param.name + L"` of " + name_ +
           L", got " + Describe(*value));
    return std::move(*converted);
  }

  const Ref<ReferenceTarget> owner_;
  FPInterface& interface_;
  const FPFunctionDesc& desc_;
  const WStr name_;
};

}  // namespace

bool GetPublished(ReferenceTarget* owner, FPInterface& interface, const WStr& name, Value& out) {
  const FPInterfaceDesc& desc = interface.GetDesc();
  if (const FPPropertyDesc* property = desc.FindProperty(name)) {
    FPValue result;
    Check(Guarded(property->name, [&] { return interface.Invoke(property->getId, ScriptTime(), result, {}); }),
          property->name, result);
    out = FromFP(result, property->type, desc.FindEnum(property->enumId));
    return true;
  }
  const FPFunctionDesc* function = desc.FindFunction(name);
  if (function) out = Value::Heap(Kind::Callable, new PublishedFunction(owner, interface, *function));
  return function != nullptr;
}

bool SetPublished(FPInterface& interface, const WStr& name, const Value& value) {
  const FPInterfaceDesc& desc = interface.GetDesc();
  const FPPropertyDesc* property = desc.FindProperty(name);
  if (!property) return false;
  if (property->setId < 0) Fail(L"`" + WStr(property->name) + L"` is read-only");
  const FPEnumDesc* enumeration = desc.FindEnum(property->enumId);
  auto converted = ToFP(value, property->type, enumeration);
  if (!converted) WrongValue(ExpectedText(property->type, enumeration) + L" for `" + property->name + L"`", value);
  FPValue result;
  const std::span<const FPValue> args(&*converted, 1);
  Check(Guarded(property->name, [&] { return interface.Invoke(property->setId, ScriptTime(), result, args); }),
        property->name, result);
  return true;
}

void AppendPublishedNames(const FPInterface& interface, std::vector<WStr>& names) {
  for (const FPPropertyDesc& property : interface.GetDesc().properties) names.push_back(property.name);
  for (const FPFunctionDesc& function : interface.GetDesc().functions) names.push_back(function.name);
}

void InterfaceObject::AppendJson(WStr& out) const { AppendJsonString(out, interface_.GetDesc().scriptName); }
bool InterfaceObject::SameAs(const HostObject& b) const {
  const auto* other = dynamic_cast<const InterfaceObject*>(&b);
  return other && &other->interface_ == &interface_;
}
bool InterfaceObject::Get(const WStr& name, Value& out) { return GetPublished(owner_.Get(), interface_, name, out); }
bool InterfaceObject::Set(const WStr& name, const Value& value) { return SetPublished(interface_, name, value); }
std::vector<WStr> InterfaceObject::PropertyNames() {
  std::vector<WStr> names;
  AppendPublishedNames(interface_, names);
  return names;
}

}  // namespace corvanta::script
