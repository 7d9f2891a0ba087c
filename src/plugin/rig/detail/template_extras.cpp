// SPDX-License-Identifier: MIT
// Rows of points that the user adds: ears, a cape, a second tail.
#include <algorithm>

#include "plugin/rig/detail/template_builder.h"
#include "plugin/rig/point_place.h"

namespace tavrilon::detail {
namespace {

/// The point that an extra of this side hangs on: the name with the side's prefix first, then as it stands.
int ParentOf(const TemplateBuilder& t, const WStr& name, int side) {
  if (name.empty()) return -1;
  const int sided = FindPoint(t.points(), PointName(name, side));
  return sided >= 0 ? sided : FindPoint(t.points(), name);
}

Point3 PlaceOf(const TemplateBuilder& t, int point) {
  if (point < 0) return {};
  return t.points()[point].IsInBetween() ? PointPlaces(t.points())[point] : t.points()[point].position;
}

/// The step from point to point: to the back on the centre line, outward on the sides.
Point3 StepOf(int side) {
  constexpr float kStep = .06f;
  return side == kSideCenter ? Point3{0, kStep, 0} : Point3{side == kSideRight ? -kStep : kStep, 0, 0};
}

void AddExtra(TemplateBuilder& t, const RigExtra& extra, int component) {
  const int controls = std::clamp(extra.num_controls, 1, 99), bones = std::clamp(extra.num_bones, 1, 99);
  const bool center = extra.side == kSideCenter;
  // A pair is told by its right side; a left side alone is the right one seen in the mirror.
  const SidePair parent = {ParentOf(t, extra.parent, center ? kSideCenter : kSideRight),
                           ParentOf(t, extra.parent, center ? kSideCenter : kSideLeft)};
  Point3 origin = PlaceOf(t, extra.side == kSideLeft ? parent.left : parent.right);
  if (extra.side == kSideLeft) origin.x = -origin.x;
  const Point3 step = StepOf(center ? kSideCenter : kSideRight);
  const Block block{{}, extra.side};
  std::vector<int> right, left;
  SidePair last = parent;
  for (int i = 0; i <= controls; ++i) {
    const bool end = i == controls;
    const SidePair point = t.AddPair({end ? extra.name + L"_end" : extra.name, end ? -1 : i, component,
                                      origin + step * static_cast<float>(i), last, kPointSmooth},
                                     block);
    if (i > 0) t.SetAim(last, point);
    if (point.right >= 0) right.push_back(point.right);
    if (point.left >= 0) left.push_back(point.left);
    last = point;
  }
  if (!extra.use_bones) return;
  const WStr word = extra.name + L"_bone";
  t.AddRowBones(word, component, bones, right);
  if (!center) t.AddRowBones(word, component, bones, left);
}

}  // namespace

void AddExtras(TemplateBuilder& t, const std::vector<RigExtra>& extras) {
  for (size_t i = 0; i < extras.size(); ++i)
    if (extras[i].side >= kSideRight && extras[i].side <= kSideCenter)
      AddExtra(t, extras[i], kFirstExtraComponent + static_cast<int>(i));
}

}  // namespace tavrilon::detail
