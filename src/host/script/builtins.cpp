// SPDX-License-Identifier: MIT
#include "host/script/builtins.h"

#include <unordered_map>

#include "host/script/script_error.h"

namespace corvanta::script {

namespace {

/// A class of plain values, such as Point3.
class NativeClass final : public ClassObject {
 public:
  explicit NativeClass(const BuiltinRow& row) : ClassObject(row.name), row_(row) {}
  Value Call(const CallArgs& args) override {
    if (!row_.body) FailWith(L"%s values are not made by a call; convert with `as`", row_.name);
    const int given = static_cast<int>(args.Count());
    if (given < row_.minArgs || given > row_.maxArgs)
      args.WrongCount(row_.minArgs == row_.maxArgs
                          ? std::to_wstring(row_.minArgs)
                          : std::to_wstring(row_.minArgs) + L" to " + std::to_wstring(row_.maxArgs));
    args.CheckKeywords({});
    return row_.body(args);
  }

 private:
  const BuiltinRow& row_;
};

using Table = std::unordered_map<WStr, Value>;

Table MakeTable() {
  Table table;
  for (const auto rows : {MathsBuiltins(), TransformBuiltins(), StringBuiltins(), ArrayBuiltins(), CoreBuiltins()})
    for (const BuiltinRow& row : rows)
      table[ToLower(row.name)] =
          Value::Heap(Kind::Callable, new NativeFunction(row.name, row.body, row.minArgs, row.maxArgs));
  for (const BuiltinRow& row : ClassBuiltins())
    table[ToLower(row.name)] = Value::Heap(Kind::Class, new NativeClass(row));
  table[L"pi"] = Value::Float(3.14159265358979323846);
  return table;
}

// Made once and never freed: values of scripts may outlive the program's other statics.
const Table& Builtins() {
  static const Table& table = *new Table(MakeTable());
  return table;
}

}  // namespace

bool FindBuiltin(const WStr& name, Value& out) {
  const auto found = Builtins().find(name);
  if (found == Builtins().end()) return false;
  out = found->second;
  return true;
}

Value ClassValue(const WStr& name) {
  const auto found = Builtins().find(ToLower(name));
  if (found != Builtins().end() && found->second.Is(Kind::Class)) return found->second;
  return Value::Heap(Kind::Class, new ClassObject(name));
}

std::vector<WStr> BuiltinNames() {
  std::vector<WStr> names;
  for (const auto& [name, value] : Builtins()) names.push_back(name);
  return names;
}

}  // namespace corvanta::script
