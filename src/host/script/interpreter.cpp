// SPDX-License-Identifier: MIT
#include "host/script/interpreter.h"

#include <atomic>

#include "host/script/call_args.h"
#include "host/script/operators.h"
#include "host/script/parser.h"

namespace corvanta::script {

namespace {

// Steps between two looks at the interrupt flag and the budget.
constexpr int kSlice = 4096;
// Of the usual 8 MB; what a single call adds is bounded by the height of its tree.
constexpr std::ptrdiff_t kStackBytes = 3 << 20;
constexpr size_t kChunkValues = 4096;

std::atomic<bool> g_interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "set from a signal handler");
bool (*g_interruptCheck)() = nullptr;
Interpreter* g_current = nullptr;
const char* g_stackBase = nullptr;  // of the outermost run

/// Makes an interpreter the current one for its block, and the outermost one the base of the stack measure.
class Running {
 public:
  explicit Running(Interpreter* vm) : outer_(std::exchange(g_current, vm)) {
    if (!outer_) g_stackBase = static_cast<const char*>(__builtin_frame_address(0));
    SetTicksPerFrame(vm->host().TicksPerFrame());
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() { g_current = outer_; }

 private:
  Interpreter* outer_;
};

}  // namespace

void InterruptScripts() { g_interrupted.store(true, std::memory_order_relaxed); }
void SetInterruptCheck(bool (*isInterrupted)()) { g_interruptCheck = isInterrupted; }

WStr ScriptHost::ReadScript(const WStr& path) { FailWith(L"cannot read `%s`", path.c_str()); }

Value* ValueStack::Push(size_t count) {
  while (top_ < chunks_.size() && chunks_[top_].used + count > chunks_[top_].size) {
    if (chunks_[top_].used == 0) {  // too small and empty: a larger one takes its place
      chunks_.resize(top_);
      break;
    }
    ++top_;
  }
  if (top_ == chunks_.size()) {
    const size_t size = std::max(count, kChunkValues);
    chunks_.push_back({std::unique_ptr<Value[]>(new Value[size]), size, 0});
  }
  Chunk& chunk = chunks_[top_];
  Value* values = chunk.values.get() + chunk.used;
  chunk.used += count;
  return values;
}

void ValueStack::Pop(Value* values, size_t count) {
  for (size_t i = 0; i < count; ++i) values[i] = Value();
  if (count == 0) return;  // it may stand in any chunk
  while (chunks_[top_].used == 0) --top_;
  chunks_[top_].used -= count;
}

Interpreter::Interpreter(ScriptHost& host, Limits limits) : host_(host), limits_(limits), stepsLeft_(limits.steps) {}

Interpreter::~Interpreter() {
  for (GlobalEntry& global : globals_) global.value = Value();
}

Interpreter* Interpreter::Current() { return g_current; }

int Interpreter::GlobalIndex(const WStr& name) {
  const auto [found, fresh] = globalIndex_.try_emplace(name, static_cast<int>(globals_.size()));
  if (fresh) globals_.push_back({name, Value::Unset()});
  return found->second;
}

void Interpreter::Define(const WStr& name, const Value& value) { Global(GlobalIndex(ToLower(name))) = value; }

void Interpreter::CheckLimits() {
  if (g_interrupted.exchange(false) || (g_interruptCheck && g_interruptCheck()))
    throw ScriptError(L"interrupted", ScriptError::Class::Interrupted);
  if (limits_.steps > 0) {
    if (stepsLeft_ <= 0) throw ScriptError(L"the script took more than its steps", ScriptError::Class::Interrupted);
    slice_ = static_cast<int>(std::min<int64_t>(stepsLeft_, kSlice));
    stepsLeft_ -= slice_;
  } else {
    slice_ = kSlice;
  }
}

void Interpreter::EnterCall() {
  const auto* here = static_cast<const char*>(__builtin_frame_address(0));
  if (depth_ >= limits_.callDepth || g_stackBase - here > kStackBytes)
    FailWith(L"calls are nested deeper than %d, does a function call itself without end?", depth_);
  ++depth_;
}

Value Interpreter::RunCode(const std::shared_ptr<const FunctionCode>& code) {
  const Value program = Value::Heap(Kind::Callable, new ScriptFunction(code, {}));
  return program.AsCallable().Call(CallArgs(program.AsCallable(), {}, {}));
}

RunResult Interpreter::Run(const WStr& text, const WStr& sourceName) {
  RunResult result;
  const Running running(this);
  if (g_current == this && limits_.steps > 0) stepsLeft_ = limits_.steps, slice_ = 0;
  try {
    const auto source = std::make_shared<const Source>(Source{sourceName, text});
    result.value = RunCode(Parse(*this, source));
    result.ok = true;
  } catch (const ScriptError& error) {
    result.report = error.Report();
    result.message = error.message();
    result.pos = error.pos();
    result.interrupted = error.kind() == ScriptError::Class::Interrupted;
  } catch (const std::exception& error) {
    result.message = FromUtf8(error.what());
    result.report = sourceName + L": " + result.message;
  }
  return result;
}

Value Interpreter::Execute(const WStr& text, const WStr& sourceName) {
  const Running running(this);
  EnterCall();  // before the parser uses stack of its own
  struct Leave {
    Interpreter* vm;
    ~Leave() { vm->LeaveCall(); }
  } leave{this};
  return RunCode(Parse(*this, std::make_shared<const Source>(Source{sourceName, text})));
}

Value Interpreter::Call(Callable& function, std::span<const Value> args) {
  const Running running(this);
  Step();
  return function.Call(CallArgs(function, args, {}));
}

}  // namespace corvanta::script
