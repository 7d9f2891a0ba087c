// SPDX-License-Identifier: MIT
// Copies of parameter entries, for undo. What a copy refers to stays alive with it.
#pragma once

#include <cstring>

#include "host/core/hold.h"
#include "host/core/param_block.h"
#include "host/core/tab.h"

namespace corvanta {

/// The content of one entry, away from its block.
struct ParamBlock2::CellCopy {
  float p[3] = {};
  Matrix3 matrix;
  WStr text;
  Ref<ReferenceTarget> target;
  Ref<Control> control;
};

/// Undo of one entry: swaps it with the copy.
class ParamRestore final : public RestoreObj {
 public:
  ParamRestore(ParamBlock2* block, int index, int tab, ParamBlock2::CellCopy kept)
      : block_(block), index_(index), tab_(tab), kept_(std::move(kept)) {}
  void Restore(bool) override { Swap(); }
  void Redo() override { Swap(); }
  size_t Size() const override { return sizeof *this + kept_.text.size() * sizeof(wchar_t); }

 private:
  void Swap();
  Ref<ParamBlock2> block_;
  int index_, tab_;
  ParamBlock2::CellCopy kept_;
};

/// Undo of a tab's size and all its entries.
class ParamTabRestore final : public RestoreObj {
 public:
  ParamTabRestore(ParamBlock2* block, int index) : block_(block), index_(index), kept_(Copy()) {}
  void Restore(bool) override { Swap(); }
  void Redo() override { Swap(); }
  size_t Size() const override { return sizeof *this + kept_.size() * sizeof(ParamBlock2::CellCopy); }

 private:
  std::vector<ParamBlock2::CellCopy> Copy() const;
  void Swap();
  Ref<ParamBlock2> block_;
  int index_;
  std::vector<ParamBlock2::CellCopy> kept_;
};

}  // namespace corvanta
