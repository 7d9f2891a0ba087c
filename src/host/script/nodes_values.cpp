// SPDX-License-Identifier: MIT
// Variables, properties, operators and calls.
#include "host/script/builtins.h"
#include "host/script/call_args.h"
#include "host/script/nodes.h"
#include "host/script/text.h"

namespace corvanta::script {

namespace {

// Runs `body`; an error without a place gets `pos`.
template <class Body>
auto At(Pos pos, Body body) {
  try {
    return body();
  } catch (ScriptError& error) {
    error.SetPos(pos);
    throw;
  }
}

WStr Listed(const std::vector<WStr>& names) {
  constexpr size_t kShown = 12;
  WStr text;
  for (size_t i = 0; i < names.size() && i < kShown; ++i) text += (i ? L", " : L"") + names[i];
  if (names.size() > kShown) text += L", ...";
  return text;
}

[[noreturn]] void NoProperty(const Value& object, const WStr& name) {
  if (object.IsUndefined()) Fail(L"undefined has no property `" + name + L"`");
  WStr message = Describe(object) + L" has no property `" + name + L"`";
  if (object.Is(Kind::Object)) {
    const WStr names = Listed(object.AsObject().PropertyNames());
    if (!names.empty()) message += L"; it has " + names;
  }
  Fail(message);
}

Value GetProperty(const Value& object, const WStr& name) {
  Value out;
  if (object.Is(Kind::Object)) {
    HostObject& host = object.AsObject();
    if (host.Get(name, out)) return out;
    if (name == L"count" && host.Count() >= 0) return Value::Int(host.Count());
  } else if (GetValueProperty(object, name, out)) {
    return out;
  }
  NoProperty(object, name);
}

Value GetItem(const Value& object, const Value& key) {
  if (!object.Is(Kind::Object)) return GetIndex(object, key);
  Value out;
  HostObject& host = object.AsObject();
  if (host.GetAt(key, out)) return out;
  const auto i = ToInt(key);
  if (host.Count() < 0 || !i) Fail(Describe(object) + L" has no item " + Describe(key));
  if (*i < 1 || *i > host.Count())
    Fail(L"index " + std::to_wstring(*i) + L" is out of range 1 to " + std::to_wstring(host.Count()));
  return host.Item(*i - 1);
}

// Writes a changed copy of a point, matrix, ... back to where it came from.
void WriteBack(Frame& frame, const Node& owner, const Value& changed) {
  const Assignable* target = owner.AsAssignable();
  if (!target) Fail(L"a part of a value that has no name cannot be assigned");
  target->Store(frame, target->Locate(frame), changed);
}

}  // namespace

CellObject& CellIn(Value& slot) {
  if (!slot.Is(Kind::Cell)) {
    auto* cell = new CellObject;
    cell->value = slot;
    slot = Value::Heap(Kind::Cell, cell);
  }
  return slot.AsCell();
}

bool Truth(const Value& value, Pos pos) {
  if (value.Is(Kind::Bool)) return value.AsBool();
  throw ScriptError(L"expected true or false, got " + Describe(value), pos);
}

Value ArrayNode::Eval(Frame& frame) const {
  Value array = Value::Array();
  for (const NodePtr& item : items) array.AsArray().Append(item->Eval(frame));
  return array;
}

Value PointNode::Eval(Frame& frame) const {
  float c[4] = {};
  for (size_t i = 0; i < items.size(); ++i) {
    const Value v = items[i]->Eval(frame);
    if (!v.IsNumber()) throw ScriptError(L"expected a number in a point, got " + Describe(v), items[i]->pos);
    c[i] = static_cast<float>(v.Number());
  }
  if (items.size() == 2) return Value::Of(Point2{c[0], c[1]});
  if (items.size() == 3) return Value::Of(Point3{c[0], c[1], c[2]});
  return Value::Of(Point4{c[0], c[1], c[2], c[3]});
}

Value GlobalNode::LoadUnset(Frame& frame) const {
  const WStr& name = frame.vm.GlobalName(index);
  Value builtin;  // a class that no variable hides
  if (FindBuiltin(name, builtin)) return builtin;
  if (frame.vm.host().FindGlobal(name) != GlobalUse::None)
    return At(pos, [&] { return frame.vm.host().GetGlobal(name); });
  throw ScriptError(L"unknown name `" + name + L"`", pos);
}

Value GlobalNode::HiddenClass(Frame& frame) const {
  const WStr& name = frame.vm.GlobalName(index);
  Value builtin;
  if (FindBuiltin(name, builtin)) return builtin.Is(Kind::Class) ? builtin : Value();
  const bool hidden = frame.vm.host().FindGlobal(name) == GlobalUse::Shadowed;
  return hidden ? frame.vm.host().GetGlobal(name) : Value();
}

Value HostGlobalNode::Load(Frame& frame, const Place&) const {
  return At(pos, [&] { return frame.vm.host().GetGlobal(name); });
}
void HostGlobalNode::Store(Frame& frame, const Place&, const Value& value) const {
  At(pos, [&] { frame.vm.host().SetGlobal(name, value); });
}

Value LocalDeclaration::Eval(Frame& frame) const {
  Value last;
  for (const Entry& entry : entries) {
    last = entry.init ? entry.init->Eval(frame) : Value();
    if (frame.signal != Signal::None) return last;
    Value& slot = frame.slots[entry.slot];
    if (entry.boxed) {
      slot = Value();
      CellIn(slot).value = last;
    } else {
      slot = last;
    }
  }
  return last;
}

Value ReferenceNode::Eval(Frame& frame) const {
  if (const auto* local = dynamic_cast<const LocalNode*>(variable.get())) {
    CellIn(frame.slots[local->slot]);
    return frame.slots[local->slot];
  }
  if (const auto* captured = dynamic_cast<const CapturedNode*>(variable.get()))
    return Value::Heap(Kind::Cell, &frame.function->Captured(captured->index));
  Value& global = frame.vm.Global(static_cast<const GlobalNode&>(*variable).index);
  if (global.Is(Kind::Unset)) global = Value();
  CellIn(global);
  return global;
}

Value PropertyNode::Load(Frame&, const Place& place) const {
  return At(pos, [&] { return GetProperty(place.object, name); });
}

void PropertyNode::Store(Frame& frame, const Place& place, const Value& value) const {
  At(pos, [&] {
    if (place.object.Is(Kind::Object)) {
      if (!place.object.AsObject().Set(name, value)) NoProperty(place.object, name);
      return;
    }
    Value changed = place.object;
    if (!SetValueProperty(changed, name, value)) NoProperty(place.object, name);
    WriteBack(frame, *object, changed);
  });
}

Value IndexNode::Load(Frame&, const Place& place) const {
  return At(pos, [&] { return GetItem(place.object, place.key); });
}

void IndexNode::Store(Frame& frame, const Place& place, const Value& value) const {
  At(pos, [&] {
    if (place.object.Is(Kind::Object)) {
      if (!place.object.AsObject().SetAt(place.key, value))
        Fail(L"cannot set item " + Describe(place.key) + L" of " + Describe(place.object));
      return;
    }
    Value changed = place.object;
    SetIndex(changed, place.key, value);
    if (!changed.Is(Kind::Array)) WriteBack(frame, *object, changed);
  });
}

Value AssignNode::Eval(Frame& frame) const {
  const Assignable& place = *target->AsAssignable();
  const Place where = place.Locate(frame);
  Value result = value->Eval(frame);
  if (frame.signal == Signal::None) place.Store(frame, where, result);
  return result;
}

Value UpdateNode::Eval(Frame& frame) const {
  const Assignable& place = *target->AsAssignable();
  const Place where = place.Locate(frame);
  const Value operand = value->Eval(frame);
  if (frame.signal != Signal::None) return operand;
  const Value before = place.Load(frame, where);
  Value result = At(pos, [&] { return Apply(op, before, operand); });
  place.Store(frame, where, result);
  return result;
}

Value BinaryNode::Eval(Frame& frame) const {
  const Value a = left->Eval(frame);
  const Value b = right->Eval(frame);
  // The usual pairs without a further call.
  if (a.Is(Kind::Int) && b.Is(Kind::Int)) {
    const int64_t x = a.AsInt(), y = b.AsInt();
    int64_t r = 0;
    switch (op) {
      case BinaryOp::Add:
        if (!__builtin_add_overflow(x, y, &r)) return Value::Int(r);
        break;
      case BinaryOp::Subtract:
        if (!__builtin_sub_overflow(x, y, &r)) return Value::Int(r);
        break;
      case BinaryOp::Multiply:
        if (!__builtin_mul_overflow(x, y, &r)) return Value::Int(r);
        break;
      case BinaryOp::Less:
        return Value::Bool(x < y);
      case BinaryOp::Greater:
        return Value::Bool(x > y);
      case BinaryOp::Equal:
        return Value::Bool(x == y);
      default:
        break;
    }
  } else if (a.Is(Kind::Float) && b.IsNumber()) {
    const double x = a.AsFloat(), y = b.Number();
    switch (op) {
      case BinaryOp::Add:
        return Value::Float(x + y);
      case BinaryOp::Subtract:
        return Value::Float(x - y);
      case BinaryOp::Multiply:
        return Value::Float(x * y);
      case BinaryOp::Divide:
        return Value::Float(x / y);
      default:
        break;
    }
  }
  try {
    return Apply(op, a, b);
  } catch (ScriptError& error) {
    error.SetPos(pos);
    throw;
  }
}

Value LogicalNode::Eval(Frame& frame) const {
  const bool first = Truth(left->Eval(frame), left->pos);
  if (first != isAnd) return Value::Bool(first);
  return Value::Bool(Truth(right->Eval(frame), right->pos));
}

Value NegateNode::Eval(Frame& frame) const {
  const Value v = operand->Eval(frame);
  return At(pos, [&] { return Negate(v); });
}

Value ConvertNode::Eval(Frame& frame) const {
  const Value v = operand->Eval(frame);
  return At(pos, [&] { return Convert(v, type); });
}

void CallNode::NotCallable(const Value& value) const {
  if (value.IsUndefined()) throw ScriptError(calleeText + L" is undefined and cannot be called", pos);
  WStr message = calleeText + L" is " + Describe(value) + L", not a function";
  if (minusArgument && args.size() == 1) message += L"; for a subtraction write a blank on both sides of `-`";
  throw ScriptError(message, pos);
}

// A variable may have the name of a class, as in `rig = Rig()`: where it is called, the class is meant.
Value CallNode::HiddenClass(const Value& value, Frame& frame) const {
  const auto* variable = dynamic_cast<const GlobalNode*>(callee.get());
  Value hidden = variable ? variable->HiddenClass(frame) : Value();
  if (!hidden.Is(Kind::Class)) NotCallable(value);
  return hidden;
}

Value CallNode::Eval(Frame& frame) const {
  Value function = callee->Eval(frame);
  if (!function.Is(Kind::Callable) && !function.Is(Kind::Class)) function = HiddenClass(function, frame);
  struct Arguments {
    Arguments(ValueStack& s, size_t n) : stack(s), count(n), values(s.Push(n)) {}
    ~Arguments() { stack.Pop(values, count); }
    ValueStack& stack;
    const size_t count;
    Value* values;
  } arguments(frame.vm.stack(), args.size());
  for (size_t i = 0; i < args.size(); ++i) arguments.values[i] = args[i]->Eval(frame);
  frame.vm.Step();
  return At(pos, [&] {
    return function.AsCallable().Call(CallArgs(function.AsCallable(), {arguments.values, args.size()}, keywords));
  });
}

}  // namespace corvanta::script
