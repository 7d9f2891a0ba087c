// SPDX-License-Identifier: MIT
// The tree that a text is parsed to and that runs as it stands: names are bound to places while parsing, so
// that running looks nothing up.
#pragma once

#include <memory>
#include <vector>

#include "host/script/interpreter.h"

namespace corvanta::script {

class Assignable;
struct FunctionCode;
class ScriptFunction;

/// How a statement ended: `return`, `exit` and `continue` travel up by this mark.
enum class Signal : uint8_t { None, Return, Exit, Continue };

/// One running call.
struct Frame {
  Interpreter& vm;
  Value* slots;
  ScriptFunction* function;
  Signal signal = Signal::None;
};

class Node {
 public:
  explicit Node(Pos at) : pos(at) {}
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;
  virtual ~Node() = default;
  virtual Value Eval(Frame& frame) const = 0;
  /// Non-null for what can stand left of `=`.
  virtual const Assignable* AsAssignable() const { return nullptr; }
  /// True where `return`, `exit` and `continue` may pass through.
  virtual bool PassesSignals() const { return false; }

  const Pos pos;
  /// Levels of nodes from here down. The parser bounds it, since running and deleting recurse.
  uint32_t height = 1;
};
using NodePtr = std::unique_ptr<Node>;

/// Where an assignment goes: the object and key of a property or an item, nothing for variables.
struct Place {
  Value object, key;
};

/// A node that can be assigned to. Location is found once, so `a[f()] += 1` calls f once.
class Assignable : public Node {
 public:
  using Node::Node;
  const Assignable* AsAssignable() const override { return this; }
  virtual Place Locate(Frame& frame) const { return {}; }
  virtual Value Load(Frame& frame, const Place& place) const = 0;
  virtual void Store(Frame& frame, const Place& place, const Value& value) const = 0;
  Value Eval(Frame& frame) const override { return Load(frame, Locate(frame)); }
};

/// A parameter of a script function.
struct Parameter {
  WStr name;
  int slot = 0;
  bool keyword = false;
  bool byReference = false;
  bool boxed = false;  // captured by an inner function
  NodePtr defaultValue;
};

/// A captured variable: a place of the enclosing call or one of its own captures.
struct Capture {
  WStr name;
  bool fromSlot = false;
  int index = 0;
};

struct FunctionCode {
  WStr name;
  SourcePtr source;
  std::vector<Parameter> parameters;
  std::vector<Capture> captures;
  int slotCount = 0;
  int positionalCount = 0;
  NodePtr body;
};

class ScriptFunction final : public Callable {
 public:
  ScriptFunction(std::shared_ptr<const FunctionCode> code, std::vector<Value> captured)
      : code_(std::move(code)), captured_(std::move(captured)) {}
  const WStr& Name() const override { return code_->name; }
  Value Call(const CallArgs& args) override;
  CellObject& Captured(int index) const { return captured_[static_cast<size_t>(index)].AsCell(); }
  void Clear() override { captured_.clear(); }

 private:
  void BindParameters(Frame& frame, const CallArgs& args) const;
  std::shared_ptr<const FunctionCode> code_;
  std::vector<Value> captured_;
};

/// The cell in `slot`, made when there is none yet.
CellObject& CellIn(Value& slot);
/// Throws unless `value` is a boolean.
bool Truth(const Value& value, Pos pos);

}  // namespace corvanta::script
