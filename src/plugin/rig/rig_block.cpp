// SPDX-License-Identifier: MIT
#include "plugin/rig/rig_block.h"

#include <algorithm>

#include "plugin/rig/rig_system.h"

namespace tavrilon {

using namespace corvanta;

namespace {

RigSystem* RigOf(ReferenceTarget* owner) { return dynamic_cast<RigSystem*>(owner); }

/// Rebuilds the template after a write.
class InitPtsAccessor final : public PBAccessor {
 public:
  void Set(ParamBlock2&, ReferenceTarget* owner, ParamID id, int, TimeValue) override {
    if (RigSystem* rig = RigOf(owner)) rig->ParameterChanged(static_cast<rig_param::ID>(id));
  }
};

/// Selects the points of the component that was chosen in the list.
class StructureAccessor final : public PBAccessor {
 public:
  void Set(ParamBlock2& block, ReferenceTarget* owner, ParamID id, int, TimeValue) override {
    if (RigSystem* rig = RigOf(owner)) rig->ParameterChanged(static_cast<rig_param::ID>(id));
  }
};

PBAccessor* AccessorOf(rig_param::ID id) {
  static InitPtsAccessor initPts;
  static StructureAccessor structure;
  if (id == rig_param::kRigName) return nullptr;
  return id == rig_param::kSelectedComponent ? static_cast<PBAccessor*>(&structure) : &initPts;
}

ParamType TypeOf(RigParamKind kind) {
  switch (kind) {
    case RigParamKind::NodeTab:
      return ParamType::Node;
    case RigParamKind::Bool:
      return ParamType::Bool;
    case RigParamKind::Int:
      return ParamType::Int;
    case RigParamKind::Index:
      return ParamType::Index;
    case RigParamKind::World:
      return ParamType::World;
    case RigParamKind::Colour:
      return ParamType::Colour;
    case RigParamKind::Text:
      return ParamType::String;
  }
  return ParamType::None;
}

/// The first rollup ends before the solvers' switches, the second with the colours; the face's two switches are there
/// too.
RigRollup RollupOf(rig_param::ID id) {
  using namespace rig_param;
  if (id <= kMirrorRelativeToParent) return kRigParamsRollup;
  const bool general = id <= kEndBones || id == kFace || id == kMorpherBased;
  return general ? kRigGeneralRollup : kRigComponentsRollup;
}

ParamDefault DefaultOf(const RigParamRow& row) {
  if (row.kind == RigParamKind::Text) return kDefaultRigName;
  return {row.initial.r, row.initial.g, row.initial.b};
}

std::span<const ParamRow> Rows() {
  static const std::vector<ParamRow> rows = [] {
    std::vector<ParamRow> all;
    for (const RigParamRow& row : kRigParamRows) {
      ParamRow out{static_cast<ParamID>(row.id), row.name, TypeOf(row.kind)};
      out.flags = row.kind == RigParamKind::NodeTab ? kTab : kNone;
      out.def = DefaultOf(row);
      out.range = {row.range.min, row.range.max};
      out.label = row.label;
      out.map = RollupOf(row.id);
      out.accessor = AccessorOf(row.id);
      all.push_back(out);
    }
    return all;
  }();
  return rows;
}

}  // namespace

const ParamBlockDesc2& RigBlock() {
  static const ParamBlockDesc2 desc(0, L"params", Rows());
  return desc;
}

TemplateParams ReadTemplateParams(const ParamBlock2& block) {
  TemplateParams params;
  for (const RigParamRow& row : kRigParamRows)
    if (row.kind == RigParamKind::Int || row.kind == RigParamKind::Bool || row.kind == RigParamKind::Index)
      params[row.id] = block.GetInt(static_cast<ParamID>(row.id));
  return params;
}

bool ClampRigParam(rig_param::ID id, int& value) {
  for (const RigParamRow& row : kRigParamRows) {
    if (row.id != id) continue;
    if (row.kind == RigParamKind::Bool) value = value != 0;
    if (row.kind == RigParamKind::Int && row.range.max > row.range.min)
      value = std::clamp(value, static_cast<int>(row.range.min), static_cast<int>(row.range.max));
    return id != rig_param::kHelperType || (value >= 0 && value < kRigTypeCount);
  }
  return false;
}

}  // namespace tavrilon
