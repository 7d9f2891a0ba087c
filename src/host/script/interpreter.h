// SPDX-License-Identifier: MIT
// Runs script texts. One interpreter is one session: its texts share their globals.
#pragma once

#include <deque>
#include <memory>
#include <unordered_map>
#include <vector>

#include "host/script/script_error.h"
#include "host/script/script_host.h"

namespace corvanta::script {

struct FunctionCode;

struct Limits {
  /// Loop passes and calls; 0 is without end. For tests and fuzzing.
  int64_t steps = 0;
  int callDepth = 1000;
};

/// What a run ended with.
struct RunResult {
  bool ok = false;
  bool interrupted = false;
  Value value;
  /// `ScriptError::Report` of a failed run, and its message alone.
  WStr report, message;
  Pos pos;
};

/// Places for local variables and arguments, kept in chunks so that pointers into it stay.
class ValueStack {
 public:
  Value* Push(size_t count);
  /// Gives back the last `count` places pushed.
  void Pop(Value* values, size_t count);

 private:
  struct Chunk {
    std::unique_ptr<Value[]> values;
    size_t size = 0, used = 0;
  };
  std::vector<Chunk> chunks_;
  size_t top_ = 0;
};

class Interpreter {
 public:
  explicit Interpreter(ScriptHost& host, Limits limits = {});
  ~Interpreter();
  Interpreter(const Interpreter&) = delete;
  Interpreter& operator=(const Interpreter&) = delete;

  /// Parses and runs `text`; never throws. `sourceName` is what messages call it. Use the value before
  /// the interpreter goes: arrays and functions are emptied with it, since they may hold each other.
  RunResult Run(const WStr& text, const WStr& sourceName);
  /// The same for use inside a script (`execute`, `fileIn`): errors travel on.
  Value Execute(const WStr& text, const WStr& sourceName);
  /// Calls a function value from outside a script; throws `ScriptError`.
  Value Call(Callable& function, std::span<const Value> args);
  /// Sets a global of the session.
  void Define(const WStr& name, const Value& value);

  ScriptHost& host() { return host_; }
  ValueStack& stack() { return stack_; }
  /// The innermost interpreter that runs, or null.
  static Interpreter* Current();
  /// The message of the error that the innermost `catch` handles; empty outside of one.
  const WStr& CaughtMessage() const { return caught_; }
  WStr ExchangeCaught(WStr message) { return std::exchange(caught_, std::move(message)); }

  /// Counts one loop pass or call; throws when the run was interrupted or used up its steps.
  void Step() {
    if (--slice_ <= 0) CheckLimits();
  }
  /// Throws when calls are nested too deeply or use too much stack. Paired with `LeaveCall`.
  void EnterCall();
  void LeaveCall() { --depth_; }

  /// The place of global `name` (lower case); makes an unset one.
  int GlobalIndex(const WStr& name);
  Value& Global(int index) { return globals_[static_cast<size_t>(index)].value; }
  const WStr& GlobalName(int index) const { return globals_[static_cast<size_t>(index)].name; }

 private:
  struct GlobalEntry {
    WStr name;
    Value value;
  };
  void CheckLimits();
  Value RunCode(const std::shared_ptr<const FunctionCode>& code);

  ContainerList containers_;
  ScriptHost& host_;
  Limits limits_;
  ValueStack stack_;
  std::deque<GlobalEntry> globals_;
  std::unordered_map<WStr, int> globalIndex_;
  WStr caught_;
  int64_t stepsLeft_;
  int slice_ = 0;
  int depth_ = 0;
};

/// Ends the script that runs, with a message; safe to call from a signal handler or another thread.
void InterruptScripts();
/// Asked now and then while a script runs; true ends it. Null asks nothing.
void SetInterruptCheck(bool (*isInterrupted)());

}  // namespace corvanta::script
