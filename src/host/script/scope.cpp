// SPDX-License-Identifier: MIT
#include "host/script/scope.h"

namespace corvanta::script {

void FunctionScope::CloseBlock() {
  for (Variable* variable : blocks_.back()) visible_[variable->name].pop_back();
  blocks_.pop_back();
}

Variable& FunctionScope::Declare(const WStr& name) {
  Variable& variable = variables_.emplace_back();
  variable.name = name;
  variable.slot = slotCount_++;
  visible_[name].push_back(&variable);
  blocks_.back().push_back(&variable);
  return variable;
}

Variable* FunctionScope::Find(const WStr& name) {
  const auto found = visible_.find(name);
  return found == visible_.end() || found->second.empty() ? nullptr : found->second.back();
}

std::unique_ptr<LocalNode> FunctionScope::Use(Variable& variable, Pos pos) {
  auto node = std::make_unique<LocalNode>(pos, variable.slot);
  node->boxed = variable.boxed;
  if (!variable.boxed) variable.uses.push_back(node.get());
  return node;
}

void FunctionScope::Box(Variable& variable) {
  variable.boxed = true;
  for (LocalNode* use : variable.uses) use->boxed = true;
  for (bool* flag : variable.flags) *flag = true;
  variable.uses.clear();
}

int FunctionScope::CaptureIndex(const WStr& name) {
  if (const auto known = captureIndex_.find(name); known != captureIndex_.end()) return known->second;
  if (!outer_) return -1;
  Capture capture{name, true, 0};
  if (Variable* variable = outer_->Find(name)) {
    Box(*variable);
    capture.index = variable->slot;
  } else {
    capture.fromSlot = false;
    capture.index = outer_->CaptureIndex(name);
    if (capture.index < 0) return -1;
  }
  captures_.push_back(capture);
  return captureIndex_[name] = static_cast<int>(captures_.size() - 1);
}

std::unique_ptr<Assignable> FunctionScope::Resolve(const WStr& name, Pos pos) {
  if (Variable* variable = Find(name)) return Use(*variable, pos);
  const int index = CaptureIndex(name);
  if (index >= 0) return std::make_unique<CapturedNode>(pos, index);
  return nullptr;
}

}  // namespace corvanta::script
