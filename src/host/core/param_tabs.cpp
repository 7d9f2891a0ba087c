// SPDX-License-Identifier: MIT
// Tab parameters: growing, shrinking, inserting and deleting entries.
#include <algorithm>

#include "host/core/detail/param_cells.h"

namespace corvanta {

namespace {
// A tab of more entries than this is a damaged file or a runaway script, and a weak slot's tag has 16 bits for it.
constexpr int kMaxTab = 65535;
}  // namespace

void ParamBlock2::ResizeTab(int index, int count) {
  const ParamRow& row = Row(index);
  std::vector<Cell>& cells = tabs_[static_cast<size_t>(index)]->cells;
  count = std::clamp(count, 0, kMaxTab);
  while (static_cast<int>(cells.size()) > count) {
    ClearCell(row, cells.back());
    cells.pop_back();
  }
  while (static_cast<int>(cells.size()) < count) {
    cells.emplace_back();
    InitCell(row, cells.back(), index, static_cast<int>(cells.size()) - 1);
  }
}

bool ParamBlock2::SetCount(ParamID id, int count) {
  const ParamRow* row = GetParamDef(id);
  if (!row || !row->Is(kTab) || count < 0 || count > kMaxTab) return false;
  const int index = IDtoIndex(id);
  const int before = Count(id);
  if (count == before) return true;
  RecordWholeTab(index);
  ResizeTab(index, count);
  if (row->accessor) {
    const bool grown = count > before;
    row->accessor->TabChanged(grown ? TabChange::Appended : TabChange::Deleted, *this, owner_, id,
                              grown ? before : count, grown ? count - before : before - count);
  }
  Changed(index, std::max(0, count - 1), 0, false);
  return true;
}

void ParamBlock2::RetagTab(int index) {
  if (!Row(index).Is(kWeak)) return;
  std::vector<Cell>& cells = tabs_[static_cast<size_t>(index)]->cells;
  for (size_t k = 0; k < cells.size(); ++k) cells[k].weak->tag = index << 16 | static_cast<int>(k);
}

bool ParamBlock2::Insert(ParamID id, int at, const FPValue& value) {
  const ParamRow* row = GetParamDef(id);
  if (!row || !row->Is(kTab) || Count(id) >= kMaxTab) return false;
  if (at < 0 || at > Count(id)) throw CorvantaSDK::Util::TabOutOfRangeException();
  const int index = IDtoIndex(id);
  RecordWholeTab(index);
  std::vector<Cell>& cells = tabs_[static_cast<size_t>(index)]->cells;
  ResizeTab(index, Count(id) + 1);
  std::rotate(cells.begin() + at, cells.end() - 1, cells.end());
  RetagTab(index);
  if (row->accessor) row->accessor->TabChanged(TabChange::Inserted, *this, owner_, id, at, 1);
  if (SetFPValue(id, 0, value, at)) return true;
  Changed(index, at, 0, false);  // the value was refused, the entry is there all the same
  return false;
}

bool ParamBlock2::Delete(ParamID id, int at, int count) {
  const ParamRow* row = GetParamDef(id);
  if (!row || !row->Is(kTab)) return false;
  if (at < 0 || count < 0 || at + count > Count(id)) throw CorvantaSDK::Util::TabOutOfRangeException();
  const int index = IDtoIndex(id);
  RecordWholeTab(index);
  std::vector<Cell>& cells = tabs_[static_cast<size_t>(index)]->cells;
  std::rotate(cells.begin() + at, cells.begin() + at + count, cells.end());
  ResizeTab(index, Count(id) - count);
  RetagTab(index);
  if (row->accessor) row->accessor->TabChanged(TabChange::Deleted, *this, owner_, id, at, count);
  Changed(index, at, 0, false);
  return true;
}

}  // namespace corvanta
