// SPDX-License-Identifier: MIT
// Which place a name means, settled while parsing: locals of the function, variables of enclosing functions,
// globals of the session.
#pragma once

#include <deque>
#include <memory>
#include <unordered_map>
#include <vector>

#include "host/script/nodes.h"

namespace corvanta::script {

/// A local variable and everything that must know when it becomes boxed.
struct Variable {
  WStr name;
  int slot = 0;
  bool boxed = false;
  std::vector<LocalNode*> uses;
  std::vector<bool*> flags;  // of its declaration; they live as long as the parse
};

/// The function that is being parsed.
class FunctionScope {
 public:
  explicit FunctionScope(FunctionScope* outer) : outer_(outer) {}
  FunctionScope(const FunctionScope&) = delete;
  FunctionScope& operator=(const FunctionScope&) = delete;

  void OpenBlock() { blocks_.emplace_back(); }
  void CloseBlock();
  /// A new variable of the present block; hides others of its name.
  Variable& Declare(const WStr& name);
  /// The variable of this function that `name` means, or null.
  Variable* Find(const WStr& name);
  /// A node for `name` when it is a local or can be captured, else null.
  std::unique_ptr<Assignable> Resolve(const WStr& name, Pos pos);
  /// A use of `variable`.
  static std::unique_ptr<LocalNode> Use(Variable& variable, Pos pos);
  /// From now on the variable lives in a cell.
  static void Box(Variable& variable);

  const std::vector<Capture>& captures() const { return captures_; }
  int slotCount() const { return slotCount_; }
  FunctionScope* outer() const { return outer_; }
  int loopDepth = 0;

 private:
  int CaptureIndex(const WStr& name);
  FunctionScope* outer_;
  std::deque<Variable> variables_;
  std::unordered_map<WStr, std::vector<Variable*>> visible_;  // the innermost last
  std::unordered_map<WStr, int> captureIndex_;
  std::vector<std::vector<Variable*>> blocks_;
  std::vector<Capture> captures_;
  int slotCount_ = 0;
};

}  // namespace corvanta::script
