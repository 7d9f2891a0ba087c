// SPDX-License-Identifier: MIT
// Editing the points of a template in the viewport: drawing, picking, selecting and moving them.
#include <algorithm>

#include "host/view/draw.h"
#include "host/view/hit_test.h"
#include "plugin/rig/detail/rig_edit.h"
#include "plugin/shapes/gizmo.h"

namespace tavrilon {

using namespace corvanta;

namespace {

/// Pixels.
constexpr float kCrossSize = 4, kSelectedSize = 6, kDotSize = 2;
const Colour kSelectedColour = {1, 1, 1};

rig_param::ID ColourOf(const RigPoint& point) {
  switch (point.Side()) {
    case kSideRight:
      return rig_param::kColor2;
    case kSideLeft:
      return rig_param::kColor4;
    default:
      return rig_param::kColor6;
  }
}

}  // namespace

void RigSystem::Display(TimeValue t, INode* node, GraphicsWindow& view) {
  const float size = Size();
  if (!IsActive() || !(size > 0)) return;
  DrawScope scope(view);
  if (block_->GetBool(rig_param::kDrawOnTop)) view.SetDepthTest(false);
  const PointPlaces& places = Places();
  const bool editing = subObjLevel_ == kRigPointLevel;
  for (int i = 0; i < static_cast<int>(places.size()); ++i) {
    const RigPoint& point = Points()[static_cast<size_t>(i)];
    const bool selected = editing && point.selected && !point.IsInBetween();
    // Lines and dots belong to the whole object; only crosses are picked as points.
    view.SetHitTag(node);
    view.SetColour(block_->GetColour(ColourOf(point)));
    if (point.IsInBetween()) {
      view.Marker(places[i] * size, MarkerKind::Dot, kDotSize);
      continue;
    }
    if (point.parent >= 0) view.Segment(places[point.parent] * size, places[i] * size);
    if (editing) view.SetHitTag(node, i);
    if (selected) view.SetColour(kSelectedColour);
    view.Marker(places[i] * size, MarkerKind::Cross, selected ? kSelectedSize : kCrossSize);
  }
}

Box3 RigSystem::GetLocalBoundBox(TimeValue, INode*) { return IsActive() && Size() > 0 ? PointBox() : Box3(); }

void RigSystem::ActivateSubobjSel(int level) {
  HelperObject::ActivateSubobjSel(level == kRigPointLevel && IsActive() ? level : kRigObjectLevel);
}

void RigSystem::SetSelected(const wchar_t* name, const std::function<bool(const RigPoint&, bool)>& selected) {
  ChangePoints(name, [&](RigPoints& points) {
    for (RigPoint& point : points)
      if (!point.IsInBetween()) point.selected = selected(point, point.selected != 0);
  });
}

void RigSystem::SelectComponent(int component) {
  SetSelected(L"Select Points", [&](const RigPoint& p, bool) { return component != 0 && p.component == component; });
}

// A click also chooses the point's component in the list, without selecting the rest of it.
void RigSystem::SelectSubComponent(std::span<const HitRecord> hits, bool selected, bool all, bool invert) {
  if (subObjLevel_ != kRigPointLevel || !IsActive()) return;
  std::vector<int> hit;
  for (const HitRecord& record : hits)
    if (record.subIndex >= 0 && record.subIndex < static_cast<int>(Points().size()) && (all || hit.empty()))
      hit.push_back(record.subIndex);
  if (hit.empty()) return;
  HoldScope hold(L"Select Points");
  ChangePoints(L"Select Points", [&](RigPoints& points) {
    for (int i : hit) {
      int& mark = points[static_cast<size_t>(i)].selected;
      mark = invert ? !mark : selected;
    }
  });
  const RigPoint& first = Points()[static_cast<size_t>(hit.front())];
  if (!first.selected || block_->GetInt(rig_param::kSelectedComponent) == first.component) return;
  QuietParameters quiet(*this);
  block_->SetValue(rig_param::kSelectedComponent, 0, first.component);
}

void RigSystem::ClearSelection(int level) {
  if (level == kRigPointLevel) SetSelected(L"Select Points", [](const RigPoint&, bool) { return false; });
}

void RigSystem::SelectAll(int level) {
  if (level == kRigPointLevel) SetSelected(L"Select Points", [](const RigPoint&, bool) { return true; });
}

void RigSystem::InvertSelection(int level) {
  if (level == kRigPointLevel) SetSelected(L"Select Points", [](const RigPoint&, bool was) { return !was; });
}

int RigSystem::NumSelected() const {
  return static_cast<int>(std::count_if(Points().begin(), Points().end(),
                                        [](const RigPoint& p) { return p.selected && !p.IsInBetween(); }));
}

std::vector<Point3> RigSystem::GetSubObjectCenters(TimeValue t, INode* node) {
  std::vector<Point3> centers;
  const Matrix3 tm = node ? node->GetObjectTM(t) : Matrix3();
  for (int i = 0; i < static_cast<int>(Points().size()); ++i) {
    const RigPoint& point = Points()[static_cast<size_t>(i)];
    if (point.selected && !point.IsInBetween()) centers.push_back(Places()[i] * Size() * tm);
  }
  return centers;
}

std::vector<Matrix3> RigSystem::GetSubObjectTMs(TimeValue t, INode* node) {
  std::vector<Matrix3> tms;
  for (const Point3& center : GetSubObjectCenters(t, node)) {
    tms.push_back(node ? node->GetObjectTM(t) : Matrix3());
    tms.back().SetTrans(center);
  }
  return tms;
}

/// With its own origin asked for, the tool works about the middle of the selected points.
Matrix3 RigSystem::AboutSelection(const Matrix3& parent, Matrix3 axis, bool localOrigin) const {
  Point3 sum;
  int count = 0;
  for (int i = 0; i < static_cast<int>(Points().size()); ++i) {
    const RigPoint& point = Points()[static_cast<size_t>(i)];
    if (!point.selected || point.IsInBetween()) continue;
    sum += Places()[i];
    ++count;
  }
  if (localOrigin && count > 0) axis.SetTrans(sum / static_cast<float>(count) * Size() * parent);
  return axis;
}

void RigSystem::Move(TimeValue, const Matrix3& parent, const Matrix3& axis, const Point3& v, bool) {
  MoveSelected(parent, WorldMove(axis, v));
}

void RigSystem::Rotate(TimeValue, const Matrix3& parent, const Matrix3& axis, const Quat& q, bool localOrigin) {
  MoveSelected(parent, WorldRotate(AboutSelection(parent, axis, localOrigin), q));
}

void RigSystem::Scale(TimeValue, const Matrix3& parent, const Matrix3& axis, const Point3& s, bool localOrigin) {
  MoveSelected(parent, WorldScale(AboutSelection(parent, axis, localOrigin), s));
}

}  // namespace tavrilon
