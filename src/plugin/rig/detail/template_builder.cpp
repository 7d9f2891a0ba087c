// SPDX-License-Identifier: MIT
#include "plugin/rig/detail/template_builder.h"

#include <algorithm>
#include <cmath>

namespace tavrilon::detail {

TemplateBuilder::TemplateBuilder(const TemplateParams& params, const RigPoints& saved) : params_(params) {
  for (const RigPoint& point : saved)
    if (!point.IsInBetween()) saved_.try_emplace(point.name, &point);
}

int TemplateBuilder::Add(RigPoint point) {
  if (points_.size() >= kMaxTemplatePoints) return -1;
  if (!point.IsInBetween()) {
    point.origin.at = point.position;
    const auto kept = saved_.find(point.name);
    if (kept != saved_.end()) {
      if (kept->second->position != kept->second->origin.at) point.position = kept->second->position;
      point.selected = kept->second->selected;
    } else {
      point.selected = point.component != 0 && point.component == params_[rig_param::kSelectedComponent];
    }
  }
  points_.push_back(std::move(point));
  return static_cast<int>(points_.size()) - 1;
}

SidePair TemplateBuilder::AddPair(const NewPoint& p, const Block& block) {
  const auto make = [&](int side, int sideFlag, int parent, const Matrix3& matrix) {
    RigPoint point;
    point.component = p.component;
    point.name = PointName(p.word, side, p.index);
    point.flags = p.flags + sideFlag;
    point.position = p.position * matrix;
    point.parent = parent;
    return Add(std::move(point));
  };
  if (block.side == kSideCenter) return Center(make(kSideCenter, 0, p.parent.right, block.right));
  SidePair pair;
  if (block.side != kSideLeft) pair.right = make(kSideRight, kPointRight, p.parent.right, block.right);
  if (block.side != kSideRight) pair.left = make(kSideLeft, kPointLeft, p.parent.left, block.Left());
  if (pair.right >= 0 && pair.left >= 0) {
    points_[pair.right].mirror = pair.left;
    points_[pair.left].mirror = pair.right;
  }
  return pair;
}

void TemplateBuilder::SetAim(const SidePair& from, const SidePair& to) {
  if (from.right >= 0) points_[from.right].aim = to.right;
  if (from.left >= 0) points_[from.left].aim = to.left;
}

void TemplateBuilder::SetSecondParent(const SidePair& of, const SidePair& parent) {
  if (of.right >= 0) points_[of.right].secondParent = parent.right;
  if (of.left >= 0) points_[of.left].secondParent = parent.left;
}

std::vector<SidePair> TemplateBuilder::AddRows(std::initializer_list<BlockRow> rows, const Block& block, int pair,
                                               const SidePair& parent) {
  std::vector<SidePair> added;
  for (const BlockRow& row : rows) {
    const SidePair& above = row.parent < 0 ? parent : added[row.parent];
    added.push_back(AddPair({row.word, pair, row.component, row.position, above, 0}, block));
  }
  size_t i = 0;
  for (const BlockRow& row : rows) {
    if (row.aim >= 0) SetAim(added[i], added[row.aim]);
    ++i;
  }
  return added;
}

std::vector<int> TemplateBuilder::AddRow(const CenterRow& row) {
  std::vector<int> added;
  const Block center{{}, kSideCenter};
  int parent = row.parent;
  for (int i = 0; i < row.count; ++i) {
    parent = AddPair({row.word, i, row.component, row.position(i), Center(parent), kPointSmooth}, center).right;
    if (parent < 0) break;
    if (!added.empty()) points_[added.back()].aim = parent;
    added.push_back(parent);
  }
  return added;
}

void TemplateBuilder::AddRowBones(const WStr& word, int component, int count, const std::vector<int>& row) {
  if (row.empty()) return;
  const int spans = static_cast<int>(row.size()) - 1;
  for (int j = 0; j < count; ++j) {
    const float t = static_cast<float>(spans) * j / count;
    const int k = std::clamp(static_cast<int>(t), 0, std::max(spans - 1, 0));
    const RigPoint& above = points_[row[k]];
    RigPoint point;
    point.component = component;
    point.name = PointName(word, above.Side(), j);
    point.flags = kPointInBetween | (above.flags & kPointSideMask);
    point.fraction = t - static_cast<float>(k);
    point.parent = row[k];
    if (Add(std::move(point)) < 0) return;
  }
}

}  // namespace tavrilon::detail
