// SPDX-License-Identifier: MIT
// Undo. One user action is one step: Begin, changes that record themselves, Accept. A record is taken once a step:
// the first write of a place wins, and `Stamp` tells whether a place has been recorded since the last mark.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "host/core/wstr.h"

namespace corvanta {

/// One recorded change.
class RestoreObj {
 public:
  virtual ~RestoreObj() = default;
  /// Puts the old state back. `isUndo` is true when a redo may follow: keep the present state for it first.
  virtual void Restore(bool isUndo) = 0;
  virtual void Redo() = 0;
  /// Bytes held, for the memory limit of the list.
  virtual size_t Size() const { return sizeof(*this); }
  virtual WStr Description() const { return L"Change"; }
};

/// The undo list and the open step. One instance: `theHold`.
class Hold {
 public:
  /// Opens a step, or a mark inside the open one.
  void Begin();
  /// Closes the innermost Begin. At depth 0 the records become one undo step with this name, also when there are
  /// none, and the redo list is dropped.
  void Accept(const WStr& name);
  /// Takes back all records since the matching Begin, drops them, and closes it.
  void Cancel();
  /// The same, but the mark stays open and recording goes on.
  void Restore();

  /// Takes the record; it is destroyed at once while not holding.
  void Put(std::unique_ptr<RestoreObj> record);
  /// True inside a step that is not suspended and no undo is running: changes must record themselves.
  bool Holding() const { return depth_ > 0 && suspended_ == 0 && !running_; }
  bool Suspended() const { return suspended_ > 0; }
  /// Nest by counter; they work outside a step too.
  void Suspend() { ++suspended_; }
  void Resume() {
    if (suspended_ > 0) --suspended_;
  }
  int Depth() const { return depth_; }
  int SuspendCount() const { return suspended_; }

  /// Changes with every mark: a place stamped with the present value has been recorded since the mark.
  uint32_t Stamp() const { return stamp_; }
  /// True when `stamp` is not the present one and a record is wanted; stamps it.
  bool FirstTouch(uint32_t& stamp) {
    if (!Holding() || stamp == stamp_) return false;
    stamp = stamp_;
    return true;
  }

  /// False when there is nothing to undo or a step is open.
  bool Undo();
  bool Redo();
  bool UndoRunning() const { return undoRunning_; }
  bool RedoRunning() const { return redoRunning_; }
  int NumUndo() const { return static_cast<int>(done_.size()); }
  int NumRedo() const { return static_cast<int>(undone_.size()); }
  /// Name of the step that Undo would take back; empty without one.
  WStr UndoName() const { return done_.empty() ? WStr() : done_.back().name; }
  WStr RedoName() const { return undone_.empty() ? WStr() : undone_.back().name; }
  /// Bytes that the recorded steps hold; older steps are dropped above the limit (256 MiB by default).
  size_t Bytes() const { return bytes_; }
  void SetByteLimit(size_t limit) { byteLimit_ = limit; }
  /// Forgets all steps, for a scene reset. Not while a step is open.
  void Flush();

 private:
  struct Step {
    WStr name;
    std::vector<std::unique_ptr<RestoreObj>> records;
    size_t bytes = 0;
  };
  void TakeBack(size_t mark);
  void TrimToLimit();
  void ClearUndone();

  int depth_ = 0;
  int suspended_ = 0;
  bool running_ = false;
  bool undoRunning_ = false;
  bool redoRunning_ = false;
  uint32_t stamp_ = 1;
  size_t bytes_ = 0;
  size_t byteLimit_ = size_t{256} << 20;
  std::vector<std::unique_ptr<RestoreObj>> open_;
  std::vector<size_t> marks_;
  std::vector<Step> done_;
  std::vector<Step> undone_;
};

extern Hold theHold;

/// Begin in the constructor unless a step is open already; Accept with the name in the destructor.
class HoldScope {
 public:
  explicit HoldScope(const wchar_t* name = L"Parameter Change") : name_(name), opened_(!theHold.Holding()) {
    if (opened_) theHold.Begin();
  }
  ~HoldScope() {
    if (opened_) theHold.Accept(name_);
  }
  HoldScope(const HoldScope&) = delete;

 private:
  const wchar_t* name_;
  bool opened_;
};

/// Suspends the hold for its lifetime.
class HoldSuspend {
 public:
  HoldSuspend() { theHold.Suspend(); }
  ~HoldSuspend() { theHold.Resume(); }
  HoldSuspend(const HoldSuspend&) = delete;
};

/// Takes off every suspension for its lifetime: what happens inside is recorded.
class HoldResume {
 public:
  HoldResume() : count_(theHold.SuspendCount()) {
    for (int i = 0; i < count_; ++i) theHold.Resume();
  }
  ~HoldResume() {
    for (int i = 0; i < count_; ++i) theHold.Suspend();
  }
  HoldResume(const HoldResume&) = delete;

 private:
  int count_;
};

}  // namespace corvanta
