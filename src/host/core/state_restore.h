// SPDX-License-Identifier: MIT
// Undo of plain state: an object keeps what lies outside references and blocks in one copyable struct, and records it
// with one call before the first change of a step.
#pragma once

#include "host/core/hold.h"
#include "host/core/reference.h"

namespace corvanta {

/// Swaps a member struct of `Owner` with the kept copy, then tells dependents.
template <class Owner, class State>
class StateRestore final : public RestoreObj {
 public:
  StateRestore(Owner* owner, State Owner::*member) : owner_(owner), member_(member), kept_(owner->*member) {}
  void Restore(bool) override { Swap(); }
  void Redo() override { Swap(); }
  size_t Size() const override { return sizeof(*this); }

 private:
  void Swap() {
    std::swap(owner_.Get()->*member_, kept_);
    owner_->StateRestored();
  }
  Ref<Owner> owner_;
  State Owner::*member_;
  State kept_;
};

/// Records `owner->*member` once a step. `Owner` has a public `StateRestored()`, which drops caches and notifies.
template <class Owner, class State>
void RecordState(Owner* owner, State Owner::*member) {
  if (theHold.FirstTouch(owner->heldStamp)) theHold.Put(std::make_unique<StateRestore<Owner, State>>(owner, member));
}

}  // namespace corvanta
