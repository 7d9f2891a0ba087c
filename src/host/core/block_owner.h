// SPDX-License-Identifier: MIT
// Objects whose only reference is their parameter block.
#pragma once

#include "host/core/param_block.h"

namespace corvanta {

/// Reference 0 and the one sub-animatable are the block. A constructor makes it unless the object is being loaded.
template <class Base>
class BlockOwner : public Base {
 public:
  int NumRefs() const override { return 1; }
  ReferenceTarget* GetReference(int which) const override { return which == 0 ? block_ : nullptr; }
  int NumSubs() const override { return 1; }
  Animatable* SubAnim(int i) override { return block_; }
  WStr SubAnimName(int i) override { return L"Parameters"; }

 protected:
  /// Without a block, as for loading.
  BlockOwner() = default;
  BlockOwner(const ParamBlockDesc2& desc, bool loading) {
    if (!loading) this->BindReference(0, new ParamBlock2(desc));
  }
  void SetReference(int which, ReferenceTarget* target) override {
    if (which == 0) block_ = static_cast<ParamBlock2*>(target);
  }

  ParamBlock2* block_ = nullptr;
};

}  // namespace corvanta
