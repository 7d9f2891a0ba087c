// SPDX-License-Identifier: MIT
// Functions, control flow and contexts.
#include <cmath>

#include "host/script/call_args.h"
#include "host/script/nodes.h"
#include "host/script/text.h"

namespace corvanta::script {

namespace {

// Runs `close` at the end of the block, also when it is left by an error.
template <class Close>
class AtExit {
 public:
  explicit AtExit(Close close) : close_(close) {}
  AtExit(const AtExit&) = delete;
  AtExit& operator=(const AtExit&) = delete;
  ~AtExit() { close_(); }

 private:
  Close close_;
};

}  // namespace

// Functions.

void ScriptFunction::BindParameters(Frame& frame, const CallArgs& args) const {
  size_t next = 0;
  for (const Parameter& parameter : code_->parameters) {
    Value& slot = frame.slots[parameter.slot];
    if (parameter.keyword) {
      const Value* given = args.Keyword(parameter.name);
      slot = given ? *given : parameter.defaultValue ? parameter.defaultValue->Eval(frame) : Value();
    } else {
      slot = args[next++];
    }
    if (parameter.byReference) {
      if (!slot.Is(Kind::Cell)) args.Wrong(next - 1, L"a variable with `&`");
    } else {
      if (slot.Is(Kind::Cell)) slot = Value(slot.AsCell().value);
      if (parameter.boxed) CellIn(slot);
    }
  }
}

Value ScriptFunction::Call(const CallArgs& args) {
  if (args.Count() != static_cast<size_t>(code_->positionalCount))
    args.WrongCount(std::to_wstring(code_->positionalCount));
  for (const WStr& keyword : args.Keywords()) {
    bool known = false;
    for (const Parameter& p : code_->parameters) known = known || (p.keyword && p.name == keyword);
    if (!known) Fail(Name() + L" has no keyword " + keyword + L":");
  }
  Interpreter& vm = *Interpreter::Current();
  vm.EnterCall();
  const AtExit leave([&] { vm.LeaveCall(); });
  const auto count = static_cast<size_t>(code_->slotCount);
  const Value self = Value::Heap(Kind::Callable, this);  // a function may replace its own name while it runs
  Value* slots = vm.stack().Push(count);
  const AtExit pop([&] { vm.stack().Pop(slots, count); });
  Frame frame{vm, slots, this};
  BindParameters(frame, args);
  try {
    return code_->body->Eval(frame);
  } catch (ScriptError& error) {
    error.SetSource(code_->source);
    throw;
  }
}

Value FunctionNode::Eval(Frame& frame) const {
  std::vector<Value> captured;
  for (const Capture& capture : code->captures) {
    if (capture.fromSlot) {
      CellIn(frame.slots[capture.index]);
      captured.push_back(frame.slots[capture.index]);
    } else {
      captured.push_back(Value::Heap(Kind::Cell, &frame.function->Captured(capture.index)));
    }
  }
  Value function = Value::Heap(Kind::Callable, new ScriptFunction(code, std::move(captured)));
  if (target) target->Store(frame, {}, function);
  return function;
}

// Control flow.

Value BlockNode::Eval(Frame& frame) const {
  Value last;
  for (const NodePtr& statement : statements) {
    last = statement->Eval(frame);
    if (frame.signal != Signal::None) break;
  }
  return last;
}

Value IfNode::Eval(Frame& frame) const {
  if (Truth(condition->Eval(frame), condition->pos)) return then->Eval(frame);
  return otherwise ? otherwise->Eval(frame) : Value();
}

Value WhileNode::Eval(Frame& frame) const {
  bool run = bodyFirst || Truth(condition->Eval(frame), condition->pos);
  while (run) {
    frame.vm.Step();
    Value value = body->Eval(frame);
    if (frame.signal == Signal::Return) return value;
    const bool exited = std::exchange(frame.signal, Signal::None) == Signal::Exit;
    run = !exited && Truth(condition->Eval(frame), condition->pos);
  }
  return Value::Ok();
}

struct ForNode::Pass {
  Frame& frame;
  Value result;  // the collected array, or what a `return` in the body gives
};

// False ends the loop.
bool ForNode::RunBody(Pass& pass, const Value& item) const {
  Frame& frame = pass.frame;
  frame.vm.Step();
  frame.slots[slot] = item;
  if (boxed) CellIn(frame.slots[slot]);
  if (whileCondition && !Truth(whileCondition->Eval(frame), whileCondition->pos)) return false;
  if (where && !Truth(where->Eval(frame), where->pos)) return true;
  Value value = body->Eval(frame);
  switch (frame.signal) {
    case Signal::None:
      if (collect) pass.result.AsArray().Append(value);
      return true;
    case Signal::Continue:
      frame.signal = Signal::None;
      return true;
    case Signal::Exit:
      frame.signal = Signal::None;
      return false;
    case Signal::Return:
      pass.result = std::move(value);
      return false;
  }
  return false;
}

void ForNode::CountWhole(Pass& pass, int64_t first, int64_t last, int64_t step) const {
  for (int64_t i = first; step > 0 ? i <= last : i >= last;) {
    if (!RunBody(pass, Value::Int(i)) || __builtin_add_overflow(i, step, &i)) return;
  }
}

void ForNode::Count(Pass& pass) const {
  const Value first = from->Eval(pass.frame), last = to->Eval(pass.frame);
  const Value step = by ? by->Eval(pass.frame) : Value::Int(1);
  const auto isTime = [](const Value& v) { return v.Is(Kind::Time); };
  for (const auto& [value, node] : {std::pair(&first, &from), std::pair(&last, &to), std::pair(&step, &by)})
    if (!value->IsNumber() && !isTime(*value))
      throw ScriptError(L"expected a number or a time in the range, got " + Describe(*value), (*node)->pos);
  if (isTime(first) || isTime(last)) {
    const int64_t a = *ToTime(first), b = *ToTime(last), s = *ToTime(step);
    if (s == 0) throw ScriptError(L"the step of a loop must not be zero", by ? by->pos : pos);
    for (int64_t t = a; s > 0 ? t <= b : t >= b; t += s)
      if (!RunBody(pass, Value::Time(static_cast<TimeValue>(t)))) return;
    return;
  }
  if (isTime(step)) throw ScriptError(L"expected a number as step, got " + Describe(step), by->pos);
  if (step.Number() == 0) throw ScriptError(L"the step of a loop must not be zero", by->pos);
  if (first.Is(Kind::Int) && step.Is(Kind::Int) && last.Is(Kind::Int)) {
    CountWhole(pass, first.AsInt(), last.AsInt(), step.AsInt());
    return;
  }
  // Multiplied, not summed, so that steps such as 0.1 reach the end; a hair is allowed for it.
  const double a = first.Number(), b = last.Number(), s = step.Number();
  const double passes = std::floor((b - a) / s + 1e-9);
  for (double i = 0; i <= passes; ++i)
    if (!RunBody(pass, Value::Float(a + i * s))) return;
}

void ForNode::Walk(Pass& pass) const {
  const Value items = from->Eval(pass.frame);
  if (items.Is(Kind::Array)) {
    // The array may change under the loop.
    for (size_t i = 0; i < items.AsArray().Count(); ++i)
      if (!RunBody(pass, Value(items.AsArray()[i]))) return;
  } else if (items.Is(Kind::Object) && items.AsObject().Count() >= 0) {
    for (int64_t i = 0; i < items.AsObject().Count(); ++i)
      if (!RunBody(pass, items.AsObject().Item(i))) return;
  } else {
    throw ScriptError(L"expected an array to walk, got " + Describe(items), from->pos);
  }
}

Value ForNode::Eval(Frame& frame) const {
  Pass pass{frame, collect ? Value::Array() : Value::Ok()};
  if (to)
    Count(pass);
  else
    Walk(pass);
  return std::move(pass.result);
}

Value CaseNode::Eval(Frame& frame) const {
  const Value value = subject ? subject->Eval(frame) : Value::Bool(true);
  const Branch* fallback = nullptr;
  for (const Branch& branch : branches) {
    if (!branch.label) {
      fallback = &branch;
      continue;
    }
    const Value label = branch.label->Eval(frame);
    if (subject ? Equal(value, label) : Truth(label, branch.label->pos)) return branch.body->Eval(frame);
  }
  return fallback ? fallback->body->Eval(frame) : Value();
}

Value TryNode::Eval(Frame& frame) const {
  try {
    return body->Eval(frame);
  } catch (const ScriptError& error) {
    if (error.kind() != ScriptError::Class::Error) throw;
    WStr outer = frame.vm.ExchangeCaught(error.message());
    const AtExit restore([&] { frame.vm.ExchangeCaught(std::move(outer)); });
    return handler->Eval(frame);
  }
}

Value ThrowNode::Eval(Frame& frame) const {
  if (!text) {
    if (frame.vm.CaughtMessage().empty()) throw ScriptError(L"`throw` without a text stands outside of `catch`", pos);
    throw ScriptError(frame.vm.CaughtMessage(), pos);
  }
  throw ScriptError(PlainText(text->Eval(frame)), pos);
}

Value JumpNode::Eval(Frame& frame) const {
  Value result = value ? value->Eval(frame) : Value();
  if (frame.signal == Signal::None) frame.signal = signal;
  return result;
}

// Contexts.

Value ContextNode::Eval(Frame& frame) const {
  ScriptHost& host = frame.vm.host();
  const WStr name = label ? PlainText(label->Eval(frame)) : WStr(L"Script");
  const Value set = setting->Eval(frame);
  if (kind == ContextKind::Time) {
    const auto time = ToTime(set);
    if (!time) throw ScriptError(L"expected a time such as 10f, got " + Describe(set), setting->pos);
    host.PushTime(*time);
    const AtExit pop([&] { host.PopTime(); });
    return body->Eval(frame);
  }
  const bool on = Truth(set, setting->pos);
  if (kind == ContextKind::Animate) {
    host.PushAnimate(on);
    const AtExit pop([&] { host.PopAnimate(); });
    return body->Eval(frame);
  }
  if (kind == ContextKind::Redraw) {
    host.PushRedraw(on);
    const AtExit pop([&] { host.PopRedraw(); });
    return body->Eval(frame);
  }
  if (!on) {
    host.SuspendUndo();
    const AtExit resume([&] { host.ResumeUndo(); });
    return body->Eval(frame);
  }
  host.BeginUndo();
  const AtExit accept([&] { host.AcceptUndo(name); });
  return body->Eval(frame);
}

}  // namespace corvanta::script
