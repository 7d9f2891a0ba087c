// SPDX-License-Identifier: MIT
// Drawing of control objects. Picking draws the same things into a hit-testing window.
#include <algorithm>
#include <cwchar>

#include "host/scene/node.h"
#include "host/view/backdrop.h"
#include "host/view/draw.h"
#include "plugin/shapes/control_core.h"
#include "plugin/shapes/control_params.h"
#include "plugin/shapes/shape_type.h"

namespace tavrilon {

using namespace corvanta;

namespace {

constexpr uint32_t kSelectedEdgeColour = 0xFF3030;
// Opacity of the letters of the mode that does not lead.
constexpr float kIdleLetters = 0.35f;

/// Turns the axes of `tm` so that the shape's facing axis looks at the viewer and its up at the top of the screen.
/// Place and lengths of the axes stay.
Matrix3 FaceViewer(const Matrix3& tm, const Camera& camera, int axis) {
  const int facing = std::clamp(axis, 0, 2), right = (facing + 1) % 3, up = (facing + 2) % 3;
  Matrix3 turned = tm;
  turned.SetRow(right, camera.Right() * Length(tm.GetRow(right)));
  turned.SetRow(up, camera.Up() * Length(tm.GetRow(up)));
  turned.SetRow(facing, -camera.Forward() * Length(tm.GetRow(facing)));
  return turned;
}

Matrix3 KeepScreenSize(const Matrix3& tm, const Camera& camera) {
  Matrix3 sized = tm;
  const float pixel = camera.PixelSize(tm.GetTrans());
  for (int i = 0; i < 3; ++i) sized.SetRow(i, Normalize(tm.GetRow(i)) * pixel);
  return sized;
}

}  // namespace

float IKFKBlendOf(INode* node, TimeValue t) {
  Control* control = node ? node->GetTMController() : nullptr;
  for (int i = 0; control && i < control->NumRefs(); ++i) {
    auto* block = dynamic_cast<ParamBlock2*>(control->GetReference(i));
    if (!block) continue;
    for (const ParamRow& row : block->GetDesc().rows)
      if (std::wcscmp(row.name, L"ikfk_blend") == 0) return block->GetFloat(row.id, t);
  }
  return 1;
}

Matrix3 ControlCore::DrawTM(TimeValue t, const GraphicsWindow& view) const {
  Matrix3 tm = view.State().transform;
  if (Flag(kControlFaceCamera)) tm = FaceViewer(tm, view.GetCamera(), block->GetInt(kControlAxis));
  if (Flag(kControlConstantScreenSize)) tm = KeepScreenSize(tm, view.GetCamera());
  return tm;
}

void ControlCore::Display(TimeValue t, INode* node, GraphicsWindow& view) {
  if (!block) return;
  DrawScope scope(view);
  if (Flag(kControlDrawOnTop)) view.SetDepthTest(false);
  {
    DrawScope shape(view);
    view.SetTransform(DrawTM(t, view));
    DrawStrokes(t, node, view);
    if (Flag(kControlOffsetLine)) DrawOffsetLine(t, node, view);
    if (owner_.SubObjLevel() == kGizmoLevel) DrawGizmoAxes(t, node, view);
  }
  if (HasSelector()) DrawSelector(t, node, view);
}

void ControlCore::DrawStrokes(TimeValue t, INode* node, GraphicsWindow& view) {
  const Cache& cache = Refresh(t);
  const int type = block->GetInt(kControlType);
  const bool isTripod = type == static_cast<int>(ShapeType::AxisTripod);
  const bool isIKFK = type == static_cast<int>(ShapeType::IKFK);
  const int leadingPart = isIKFK && IKFKBlendOf(node, t) < 0.5f ? 1 : 0;
  DrawScope scope(view);
  const float opacity = view.State().opacity;
  for (size_t i = 0; i < cache.outline.size(); ++i) {
    const Spline& stroke = cache.outline[i];
    if (isTripod) view.SetColour(kAxisColours[stroke.part]);
    if (isIKFK) view.SetOpacity(stroke.part == leadingPart ? opacity : opacity * kIdleLetters);
    view.Polyline(cache.polylines[i], stroke.closed);
  }
}

void ControlCore::DrawOffsetLine(TimeValue t, INode* node, GraphicsWindow& view) const {
  const Point3 centre = DrawnGizmo(t).GetTrans();
  if (centre == Point3()) return;
  DrawScope scope(view);
  const Point3 from = centre * view.State().transform;
  const Point3 to = node ? node->GetNodeTM(t).GetTrans() : view.State().transform.GetTrans();
  view.SetTransform(Matrix3());
  view.Segment(from, to);
}

void ControlCore::DrawGizmoAxes(TimeValue t, INode* node, GraphicsWindow& view) {
  DrawScope scope(view);
  view.SetHitTag(node, kGizmoPart);
  const Matrix3 gizmo = DrawnGizmo(t);
  Interval ignored = FOREVER;
  const Point3 half = HalfExtents(ReadInput(t, ignored));
  const float length = std::max({half.x, half.y, half.z});
  for (int axis = 0; axis < 3; ++axis) {
    view.SetColour(kAxisColours[axis]);
    view.Segment(gizmo.GetTrans(), gizmo.GetTrans() + gizmo.GetRow(axis) * length);
  }
}

void ControlCore::DrawSelector(TimeValue t, INode* node, GraphicsWindow& view) {
  const Selector& selector = RefreshSelector(t);
  const bool polygons = owner_.SubObjLevel() == kPolygonLevel;
  DrawScope scope(view);
  view.SetTransform(SelectorNode()->GetObjectTM(t));
  view.SetShaded(false);
  view.SetCullBack(Flag(kSelectorIgnoreBackfacing));
  if (Flag(kSelectorUseWireColor) && node)
    view.SetColour(node->GetWireColor());
  else
    view.SetColour(block->GetColour(kSelectorColor));
  const float opacities[] = {block->GetFloat(kSelectorUnselOpacity, t), block->GetFloat(kSelectorSelOpacity, t)};
  for (const int selected : {0, 1}) {
    const FaceSet& set = selector.sets[selected];
    if (set.faces.empty()) continue;
    if (polygons) view.SetHitTag(node, selected ? kSelectedFacePart : kUnselectedFacePart);
    view.SetOpacity(opacities[selected]);
    view.Triangles({selector.mesh.points, set.faces});
  }
  if (!polygons) return;
  view.SetColour(kSelectedEdgeColour);
  view.SetOpacity(1);
  view.SetHitTag(node, -1);
  for (const Face& f : selector.sets[1].faces) {
    const auto point = [&](int i) {
      return i >= 0 && i < static_cast<int>(selector.mesh.points.size()) ? selector.mesh.points[i] : Point3();
    };
    const Point3 edges[] = {point(f[0]), point(f[1]), point(f[2])};
    view.Polyline(edges, true);
  }
}

}  // namespace tavrilon
