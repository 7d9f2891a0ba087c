// SPDX-License-Identifier: MIT
// Undo for objects whose references are a list: one record holds the whole list, before and after.
#pragma once

#include <vector>

#include "host/core/hold.h"
#include "host/core/reference.h"

namespace corvanta {

/// `Owner` has `State ListState() const` and `void PutListState(const State&)`; the state keeps its entries in `Ref`s.
template <class Owner, class State>
class EntriesRestore final : public RestoreObj {
 public:
  explicit EntriesRestore(Owner* owner) : owner_(owner), kept_(owner->ListState()) {}
  void Restore(bool) override { Swap(); }
  void Redo() override { Swap(); }

 private:
  void Swap() {
    State present = owner_->ListState();
    owner_->PutListState(kept_);
    kept_ = std::move(present);
  }
  Ref<Owner> owner_;
  State kept_;
};

}  // namespace corvanta
