// SPDX-License-Identifier: MIT
#include "host/script/primitives.h"

#include "host/script/bridge_values.h"
#include "host/script/primitive_table.h"
#include "host/script/script_error.h"

namespace corvanta {

using script::Fail;
using script::Value;

namespace {

const wchar_t* OrdinalOf(size_t i) {
  static const wchar_t* const kWords[] = {L"first", L"second", L"third",   L"fourth",
                                          L"fifth", L"sixth",  L"seventh", L"eighth"};
  return i < std::size(kWords) ? kWords[i] : L"last";
}

/// Calls a registered body from a script.
class PrimitiveFunction final : public script::Callable {
 public:
  PrimitiveFunction(WStr name, PrimitiveBody body) : name_(std::move(name)), body_(std::move(body)) {}
  const WStr& Name() const override { return name_; }

  Value Call(const script::CallArgs& args) override {
    std::vector<FPValue> values;
    std::vector<PrimitiveArgs::Keyword> keywords;
    for (size_t i = 0; i < args.Count(); ++i) values.push_back(Converted(args[i]));
    for (size_t i = 0; i < args.Keywords().size(); ++i)
      keywords.push_back({args.Keywords()[i], Converted(args.KeywordValue(i))});
    const PrimitiveBody body = body_;  // it may unregister itself
    try {
      return script::FromFP(body(PrimitiveArgs(name_, std::move(values), std::move(keywords))), FPType::Any);
    } catch (const script::ScriptError&) {
      throw;
    } catch (const std::exception& error) {
      Fail(name_ + L": " + FromUtf8(error.what()));
    }
  }

 private:
  FPValue Converted(const Value& value) const {
    auto converted = script::ToFP(value, FPType::Any);
    if (!converted) Fail(name_ + L" cannot take " + script::Describe(value));
    return std::move(*converted);
  }
  WStr name_;
  PrimitiveBody body_;
};

}  // namespace

namespace script {

std::map<WStr, Value>& Primitives() {
  static auto* table = new std::map<WStr, Value>;
  return *table;
}

}  // namespace script

const FPValue* PrimitiveArgs::Find(const WStr& name) const {
  for (const Keyword& keyword : keywords_)
    if (EqualsNoCase(keyword.name, name)) return &keyword.value;
  return nullptr;
}

void PrimitiveArgs::RequireCount(size_t count) const {
  if (Count() != count)
    Fail(function_ + L" takes " + std::to_wstring(count) + L" arguments, got " + std::to_wstring(Count()));
}

void PrimitiveArgs::Expected(const wchar_t* kind, size_t i, const WStr& note) const {
  Fail(L"Expected a " + WStr(kind) + L" for the " + OrdinalOf(i) + L" argument" + note + L", in function " + function_);
}

INode* PrimitiveArgs::Node(size_t i, const WStr& role) const {
  if (i >= Count()) Expected(L"Node", i, {});
  if (values_[i].IsVoid()) Fail(L"Expected a valid Node for " + role + L", in function " + function_);
  INode* node = values_[i].ToNode();
  if (!node) Expected(L"Node", i, {});
  return node;
}

float PrimitiveArgs::Number(size_t i, const WStr& note) const {
  if (i >= Count() || !(values_[i].As<int>() || values_[i].As<float>())) Expected(L"Number", i, note);
  return values_[i].ToFloat();
}

bool PrimitiveArgs::Bool(size_t i, const WStr& note) const {
  if (i >= Count() || !values_[i].As<bool>()) Expected(L"Bool", i, note);
  return values_[i].ToBool();
}

void RegisterScriptPrimitive(const WStr& name, PrimitiveBody body) {
  script::Primitives()[ToLower(name)] =
      Value::Heap(script::Kind::Callable, new PrimitiveFunction(name, std::move(body)));
}
void UnregisterScriptPrimitive(const WStr& name) { script::Primitives().erase(ToLower(name)); }
void ThrowScriptError(const WStr& message) { Fail(message); }

}  // namespace corvanta
