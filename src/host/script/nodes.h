// SPDX-License-Identifier: MIT
// The kinds of nodes: values, variables, operators, calls, control flow, contexts.
#pragma once

#include "host/script/node.h"
#include "host/script/operators.h"

namespace corvanta::script {

// Values.

class ConstantNode final : public Node {
 public:
  ConstantNode(Pos pos, Value v) : Node(pos), value(std::move(v)) {}
  Value Eval(Frame&) const override { return value; }
  const Value value;
};

class ArrayNode final : public Node {
 public:
  using Node::Node;
  Value Eval(Frame& frame) const override;
  std::vector<NodePtr> items;
};

class PointNode final : public Node {
 public:
  using Node::Node;
  Value Eval(Frame& frame) const override;
  std::vector<NodePtr> items;
};

class PathNode final : public Node {
 public:
  PathNode(Pos pos, WStr p, bool q) : Node(pos), pattern(std::move(p)), quoted(q) {}
  Value Eval(Frame& frame) const override { return frame.vm.host().FindNodes(pattern, quoted); }
  const WStr pattern;
  const bool quoted;
};

/// A function definition: makes the function and, when it has a target, stores it there.
class FunctionNode final : public Node {
 public:
  using Node::Node;
  Value Eval(Frame& frame) const override;
  std::shared_ptr<FunctionCode> code;
  std::unique_ptr<Assignable> target;
};

// Variables.

class LocalNode final : public Assignable {
 public:
  LocalNode(Pos pos, int s) : Assignable(pos), slot(s) {}
  Value Eval(Frame& frame) const override { return Load(frame, {}); }
  Value Load(Frame& frame, const Place&) const override {
    Value& v = frame.slots[slot];
    return boxed ? CellIn(v).value : v;
  }
  void Store(Frame& frame, const Place&, const Value& value) const override {
    Value& v = frame.slots[slot];
    if (boxed)
      CellIn(v).value = value;
    else
      v = value;
  }
  const int slot;
  bool boxed = false;  // set when an inner function or a reference takes the variable
};

/// Begins the life of a local: a fresh cell for each pass of a loop.
class LocalDeclaration final : public Node {
 public:
  using Node::Node;
  Value Eval(Frame& frame) const override;
  bool PassesSignals() const override { return true; }
  struct Entry {
    int slot = 0;
    bool boxed = false;
    NodePtr init;
  };
  std::deque<Entry> entries;  // the parser keeps pointers into it
};

class CapturedNode final : public Assignable {
 public:
  CapturedNode(Pos pos, int i) : Assignable(pos), index(i) {}
  Value Load(Frame& frame, const Place&) const override { return frame.function->Captured(index).value; }
  void Store(Frame& frame, const Place&, const Value& value) const override {
    frame.function->Captured(index).value = value;
  }
  const int index;
};

class GlobalNode final : public Assignable {
 public:
  GlobalNode(Pos pos, int i) : Assignable(pos), index(i) {}
  Value Eval(Frame& frame) const override { return Load(frame, {}); }
  Value Load(Frame& frame, const Place&) const override {
    const Value& v = frame.vm.Global(index);
    if (v.kind() == Kind::Cell) return v.AsCell().value;
    if (v.kind() == Kind::Unset) return LoadUnset(frame);
    return v;
  }
  /// The class of this name, which a variable may hide; undefined without one.
  Value HiddenClass(Frame& frame) const;
  void Store(Frame& frame, const Place&, const Value& value) const override {
    Value& v = frame.vm.Global(index);
    if (v.kind() == Kind::Cell)
      v.AsCell().value = value;
    else
      v = value;
  }
  const int index;

 private:
  Value LoadUnset(Frame& frame) const;
};

/// A name that belongs to the host, such as `selection` or `sliderTime`.
class HostGlobalNode final : public Assignable {
 public:
  HostGlobalNode(Pos pos, WStr n) : Assignable(pos), name(std::move(n)) {}
  Value Load(Frame& frame, const Place&) const override;
  void Store(Frame& frame, const Place&, const Value& value) const override;
  const WStr name;
};

/// `&x`: the variable itself as an argument.
class ReferenceNode final : public Node {
 public:
  using Node::Node;
  Value Eval(Frame& frame) const override;
  NodePtr variable;  // LocalNode (boxed), CapturedNode or GlobalNode
};

class PropertyNode final : public Assignable {
 public:
  PropertyNode(Pos pos, NodePtr o, WStr n) : Assignable(pos), object(std::move(o)), name(std::move(n)) {}
  Place Locate(Frame& frame) const override { return {object->Eval(frame), {}}; }
  Value Load(Frame& frame, const Place& place) const override;
  void Store(Frame& frame, const Place& place, const Value& value) const override;
  const NodePtr object;
  const WStr name;
};

class IndexNode final : public Assignable {
 public:
  IndexNode(Pos pos, NodePtr o, NodePtr k) : Assignable(pos), object(std::move(o)), key(std::move(k)) {}
  Place Locate(Frame& frame) const override {
    Value base = object->Eval(frame);
    return {std::move(base), key->Eval(frame)};
  }
  Value Load(Frame& frame, const Place& place) const override;
  void Store(Frame& frame, const Place& place, const Value& value) const override;
  const NodePtr object, key;
};

// Operators and calls.

class AssignNode final : public Node {
 public:
  AssignNode(Pos pos, NodePtr t, NodePtr v) : Node(pos), target(std::move(t)), value(std::move(v)) {}
  Value Eval(Frame& frame) const override;
  bool PassesSignals() const override { return true; }
  const NodePtr target, value;
};

class UpdateNode final : public Node {
 public:
  UpdateNode(Pos pos, BinaryOp o, NodePtr t, NodePtr v) : Node(pos), op(o), target(std::move(t)), value(std::move(v)) {}
  Value Eval(Frame& frame) const override;
  bool PassesSignals() const override { return true; }
  const BinaryOp op;
  const NodePtr target, value;
};

class BinaryNode final : public Node {
 public:
  BinaryNode(Pos pos, BinaryOp o, NodePtr l, NodePtr r) : Node(pos), op(o), left(std::move(l)), right(std::move(r)) {}
  Value Eval(Frame& frame) const override;
  const BinaryOp op;
  const NodePtr left, right;
};

class LogicalNode final : public Node {
 public:
  LogicalNode(Pos pos, bool a, NodePtr l, NodePtr r) : Node(pos), isAnd(a), left(std::move(l)), right(std::move(r)) {}
  Value Eval(Frame& frame) const override;
  const bool isAnd;
  const NodePtr left, right;
};

class NotNode final : public Node {
 public:
  NotNode(Pos pos, NodePtr o) : Node(pos), operand(std::move(o)) {}
  Value Eval(Frame& frame) const override { return Value::Bool(!Truth(operand->Eval(frame), operand->pos)); }
  const NodePtr operand;
};

class NegateNode final : public Node {
 public:
  NegateNode(Pos pos, NodePtr o) : Node(pos), operand(std::move(o)) {}
  Value Eval(Frame& frame) const override;
  const NodePtr operand;
};

class ConvertNode final : public Node {
 public:
  ConvertNode(Pos pos, NodePtr o, ConversionType t) : Node(pos), operand(std::move(o)), type(t) {}
  Value Eval(Frame& frame) const override;
  const NodePtr operand;
  const ConversionType type;
};

class CallNode final : public Node {
 public:
  CallNode(Pos pos, NodePtr c) : Node(pos), callee(std::move(c)) {}
  Value Eval(Frame& frame) const override;
  const NodePtr callee;
  std::vector<NodePtr> args;  // positional, then one for each keyword
  std::vector<WStr> keywords;
  WStr calleeText;             // for messages
  bool minusArgument = false;  // `x -1`, which may have been meant as a subtraction

 private:
  /// What a variable hides that cannot be called itself.
  Value HiddenClass(const Value& value, Frame& frame) const;
  [[noreturn]] void NotCallable(const Value& value) const;
};

// Control flow.

class BlockNode final : public Node {
 public:
  using Node::Node;
  Value Eval(Frame& frame) const override;
  bool PassesSignals() const override { return true; }
  std::vector<NodePtr> statements;
};

class IfNode final : public Node {
 public:
  using Node::Node;
  Value Eval(Frame& frame) const override;
  bool PassesSignals() const override { return true; }
  NodePtr condition, then, otherwise;
};

class WhileNode final : public Node {
 public:
  using Node::Node;
  Value Eval(Frame& frame) const override;
  bool PassesSignals() const override { return true; }
  NodePtr condition, body;
  bool bodyFirst = false;
};

class ForNode final : public Node {
 public:
  using Node::Node;
  Value Eval(Frame& frame) const override;
  bool PassesSignals() const override { return true; }
  int slot = 0;
  bool boxed = false;
  bool collect = false;
  NodePtr from, to, by;  // `to` is null for a walk over `from`
  NodePtr where, whileCondition, body;

 private:
  struct Pass;
  void Count(Pass& pass) const;
  void CountWhole(Pass& pass, int64_t first, int64_t last, int64_t step) const;
  void Walk(Pass& pass) const;
  bool RunBody(Pass& pass, const Value& item) const;
};

class CaseNode final : public Node {
 public:
  using Node::Node;
  Value Eval(Frame& frame) const override;
  bool PassesSignals() const override { return true; }
  struct Branch {
    NodePtr label;  // null is `default`
    NodePtr body;
  };
  NodePtr subject;  // null: the first label that is true
  std::vector<Branch> branches;
};

class TryNode final : public Node {
 public:
  using Node::Node;
  Value Eval(Frame& frame) const override;
  bool PassesSignals() const override { return true; }
  NodePtr body, handler;
};

class ThrowNode final : public Node {
 public:
  using Node::Node;
  Value Eval(Frame& frame) const override;
  NodePtr text;  // null: the error at hand again
};

class JumpNode final : public Node {
 public:
  JumpNode(Pos pos, Signal s) : Node(pos), signal(s) {}
  Value Eval(Frame& frame) const override;
  bool PassesSignals() const override { return true; }
  const Signal signal;
  NodePtr value;
};

// Contexts.

enum class ContextKind : uint8_t { Undo, Time, Animate, Redraw };

class ContextNode final : public Node {
 public:
  ContextNode(Pos pos, ContextKind k) : Node(pos), kind(k) {}
  Value Eval(Frame& frame) const override;
  bool PassesSignals() const override { return true; }
  const ContextKind kind;
  NodePtr label;    // undo only, may be null
  NodePtr setting;  // a boolean, or the time
  NodePtr body;
};

class MacroNode final : public Node {
 public:
  using Node::Node;
  Value Eval(Frame& frame) const override {
    frame.vm.host().DefineMacro(macro);
    return Value::Ok();
  }
  MacroDefinition macro;
};

}  // namespace corvanta::script
