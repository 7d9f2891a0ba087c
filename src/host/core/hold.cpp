// SPDX-License-Identifier: MIT
#include "host/core/hold.h"

#include <cassert>

namespace corvanta {

Hold theHold;

void Hold::Begin() {
  if (running_) return;
  if (depth_ == 0) open_.clear();
  marks_.push_back(open_.size());
  ++depth_;
  ++stamp_;
}

void Hold::Accept(const WStr& name) {
  if (running_) return;
  assert(depth_ > 0 && "Accept without Begin");
  if (depth_ == 0) return;
  marks_.pop_back();
  ++stamp_;
  if (--depth_ > 0) return;
  ClearUndone();
  Step step{name, std::move(open_), name.size() * sizeof(wchar_t)};
  open_.clear();
  for (const auto& record : step.records) step.bytes += record->Size();
  bytes_ += step.bytes;
  done_.push_back(std::move(step));
  TrimToLimit();
}

void Hold::Cancel() {
  if (running_) return;
  assert(depth_ > 0 && "Cancel without Begin");
  if (depth_ == 0) return;
  TakeBack(marks_.back());
  marks_.pop_back();
  ++stamp_;
  --depth_;
}

void Hold::Restore() {
  if (running_ || depth_ == 0) return;
  TakeBack(marks_.back());
  ++stamp_;
}

void Hold::Put(std::unique_ptr<RestoreObj> record) {
  if (Holding()) open_.push_back(std::move(record));
}

// Records run with nothing recorded and with undo told as running: hooks that would write further parameters keep
// still, since the records of those writes restore them.
void Hold::TakeBack(size_t mark) {
  running_ = undoRunning_ = true;
  while (open_.size() > mark) {
    open_.back()->Restore(false);
    open_.pop_back();
  }
  running_ = undoRunning_ = false;
}

bool Hold::Undo() {
  if (depth_ > 0 || running_ || done_.empty()) return false;
  Step step = std::move(done_.back());
  done_.pop_back();
  running_ = undoRunning_ = true;
  for (auto it = step.records.rbegin(); it != step.records.rend(); ++it) (*it)->Restore(true);
  running_ = undoRunning_ = false;
  ++stamp_;
  bytes_ -= step.bytes;
  undone_.push_back(std::move(step));
  return true;
}

bool Hold::Redo() {
  if (depth_ > 0 || running_ || undone_.empty()) return false;
  Step step = std::move(undone_.back());
  undone_.pop_back();
  running_ = redoRunning_ = true;
  for (const auto& record : step.records) record->Redo();
  running_ = redoRunning_ = false;
  ++stamp_;
  bytes_ += step.bytes;
  done_.push_back(std::move(step));
  return true;
}

void Hold::Flush() {
  if (depth_ > 0 || running_) return;
  ClearUndone();
  // Newest first: what a later step made refers to what an earlier one made.
  while (!done_.empty()) done_.pop_back();
  bytes_ = 0;
}

void Hold::ClearUndone() {
  while (!undone_.empty()) undone_.pop_back();
}

void Hold::TrimToLimit() {
  size_t drop = 0;
  while (bytes_ > byteLimit_ && drop + 1 < done_.size()) bytes_ -= done_[drop++].bytes;
  done_.erase(done_.begin(), done_.begin() + static_cast<std::ptrdiff_t>(drop));
}

}  // namespace corvanta
