// SPDX-License-Identifier: MIT
#include "host/core/param_desc.h"

#include <algorithm>
#include <cassert>

namespace corvanta {

bool IsFloatType(ParamType type) {
  return type == ParamType::Float || type == ParamType::World || type == ParamType::Percent || type == ParamType::Angle;
}
bool IsIntType(ParamType type) {
  return type == ParamType::Int || type == ParamType::Bool || type == ParamType::Index || type == ParamType::Time;
}
bool IsTextType(ParamType type) { return type == ParamType::String || type == ParamType::FileName; }
bool IsTargetType(ParamType type) { return type == ParamType::Node || type == ParamType::RefTarg; }

ParamDimension ParamRow::Dimension() const {
  switch (type) {
    case ParamType::Angle:
      return ParamDimension::Angle;
    case ParamType::Percent:
      return ParamDimension::Percent;
    case ParamType::World:
      return ParamDimension::World;
    default:
      return ParamDimension::Plain;
  }
}

ParamBlockDesc2::ParamBlockDesc2(int blockId, const wchar_t* name, std::span<const ParamRow> rows)
    : blockId(blockId), name(name), rows(rows) {
  ParamID last = -1;
  for (const ParamRow& row : rows) last = std::max(last, row.id);
  index_.assign(static_cast<size_t>(last + 1), -1);
  for (size_t i = 0; i < rows.size(); ++i) {
    assert(rows[i].id >= 0 && index_[static_cast<size_t>(rows[i].id)] < 0 && "a parameter ID is used twice");
    index_[static_cast<size_t>(rows[i].id)] = static_cast<int16_t>(i);
  }
}

const ParamRow* ParamBlockDesc2::FindByName(const WStr& scriptName) const {
  if (scriptName.empty()) return nullptr;
  const auto found =
      std::find_if(rows.begin(), rows.end(), [&](const ParamRow& row) { return EqualsNoCase(row.name, scriptName); });
  return found == rows.end() ? nullptr : &*found;
}

}  // namespace corvanta
