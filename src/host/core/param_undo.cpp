// SPDX-License-Identifier: MIT
// Undo of parameter writes and of tab changes. Both swap the present content with the kept one, so the same code undoes
// and redoes.
#include "host/core/detail/param_cells.h"

namespace corvanta {

ParamBlock2::CellCopy ParamBlock2::CopyCell(const ParamRow& row, const Cell& cell) const {
  CellCopy copy;
  if (IsTextType(row.type))
    copy.text = *cell.text;
  else if (row.Is(kWeak))
    copy.target = cell.weak->RawTarget();
  else if (IsTargetType(row.type))
    copy.target = cell.target;
  else if (row.type == ParamType::Matrix3)
    copy.matrix = *cell.matrix;
  else
    std::memcpy(copy.p, cell.p, sizeof copy.p);
  copy.control = cell.control;
  return copy;
}

void ParamBlock2::PutCell(const ParamRow& row, Cell& cell, const CellCopy& copy, int index, int tab) {
  if (IsTextType(row.type))
    *cell.text = copy.text;
  else if (IsTargetType(row.type))
    StoreTarget(index, tab, copy.target.Get());
  else if (row.type == ParamType::Matrix3)
    *cell.matrix = copy.matrix;
  else
    std::memcpy(cell.p, copy.p, sizeof cell.p);
  LoadController(row.id, tab, copy.control.Get());
}

void ParamBlock2::Record(int index, int tab, Cell& cell) {
  uint32_t stamp = cell.stamp;
  if (!theHold.FirstTouch(stamp)) return;
  cell.stamp = stamp & 0xFFFFFFF;
  theHold.Put(std::make_unique<ParamRestore>(this, index, tab, CopyCell(Row(index), cell)));
}

void ParamBlock2::RecordWholeTab(int index) {
  if (theHold.FirstTouch(tabs_[static_cast<size_t>(index)]->stamp))
    theHold.Put(std::make_unique<ParamTabRestore>(this, index));
}

void ParamBlock2::RecordTab(ParamID id) {
  const ParamRow* row = GetParamDef(id);
  if (row && row->Is(kTab)) RecordWholeTab(IDtoIndex(id));
}

void ParamRestore::Swap() {
  const ParamRow& row = block_->Row(index_);
  // A tab that is shorter at this point of the step has its own record, which brings the entry.
  if (row.Is(kTab) && tab_ >= block_->Count(row.id)) return;
  ParamBlock2::Cell& cell = *block_->FindForWrite(row.id, tab_);
  ParamBlock2::CellCopy present = block_->CopyCell(row, cell);
  block_->PutCell(row, cell, kept_, index_, tab_);
  kept_ = std::move(present);
  block_->Changed(index_, tab_, 0);
}

std::vector<ParamBlock2::CellCopy> ParamTabRestore::Copy() const {
  const ParamRow& row = block_->Row(index_);
  std::vector<ParamBlock2::CellCopy> copies;
  for (const ParamBlock2::Cell& cell : block_->tabs_[static_cast<size_t>(index_)]->cells)
    copies.push_back(block_->CopyCell(row, cell));
  return copies;
}

void ParamTabRestore::Swap() {
  const ParamRow& row = block_->Row(index_);
  std::vector<ParamBlock2::CellCopy> present = Copy();
  block_->ResizeTab(index_, static_cast<int>(kept_.size()));
  for (size_t k = 0; k < kept_.size(); ++k) {
    const int tab = static_cast<int>(k);
    block_->PutCell(row, *block_->FindForWrite(row.id, tab), kept_[k], index_, tab);
  }
  kept_ = std::move(present);
  if (row.accessor)
    row.accessor->TabChanged(TabChange::Resized, *block_, block_->GetOwner(), row.id, 0, block_->Count(row.id));
  block_->Changed(index_, 0, 0);
}

}  // namespace corvanta
