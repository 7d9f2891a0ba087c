// SPDX-License-Identifier: MIT
#include "host/scene/subdivision_modifier.h"

#include "host/core/class_desc.h"
#include "host/scene/node.h"

namespace corvanta {

namespace {

constexpr ParamRow kRows[] = {
    // id                             name         type             flags  default range label
    {SubdivisionModifier::kLevels,
     L"levels",
     ParamType::Int,
     kNone,
     1,
     {0, SubdivisionModifier::kMaxLevels},
     L"Levels"},
    {SubdivisionModifier::kEnabled, L"enabled", ParamType::Bool, kNone, true, {}, L"Enabled"},
};

const ClassDesc kDesc = {L"Subdivision",
                         L"Subdivision",
                         kModifierSuper,
                         SubdivisionModifier::kClassId,
                         L"Standard",
                         true,
                         [](bool loading) -> ReferenceTarget* { return new SubdivisionModifier(loading); }};
const HostClassRegistrar kRegistrar([] { ClassDirectory::Get().Register(&kDesc); });

}  // namespace

const ParamBlockDesc2& SubdivisionModifier::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"parameters", kRows);
  return desc;
}

SubdivisionModifier::SubdivisionModifier(bool loading) : BlockOwner(BlockDesc(), loading) {}

int SubdivisionModifier::GetLevels() const { return block_ ? std::clamp(block_->GetInt(kLevels), 0, kMaxLevels) : 0; }

void SubdivisionModifier::ModifyMesh(TimeValue, INode*, MeshState& state) {
  const int levels = GetLevels();
  if (levels == 0 || !block_->GetBool(kEnabled) || state.points.size() != state.mesh->points.size()) return;
  if (source_ != state.mesh || sourceLevels_ != levels) {
    subdivision_ = Subdivide(*state.mesh, levels);
    source_ = state.mesh;
    sourceLevels_ = levels;
  }
  subdivision_.MovePoints(state.points, points_);
  state.points.swap(points_);
  state.mesh = subdivision_.mesh;
}

}  // namespace corvanta
