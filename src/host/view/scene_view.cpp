// SPDX-License-Identifier: MIT
#include "host/view/scene_view.h"

#include <algorithm>
#include <cmath>

#include "host/core/control.h"
#include "host/view/backdrop.h"

namespace corvanta {
namespace {

bool IsFinite(const Box3& box) {
  const Point3 d = box.max - box.min;
  return std::isfinite(d.x) && std::isfinite(d.y) && std::isfinite(d.z);
}

bool IsVisibleAt(INode& node, TimeValue t) {
  Control* track = node.GetVisController();
  if (!track || track->SuperClassID() != kFloatControlSuper) return true;
  float visible = 1;
  Interval valid = FOREVER;
  track->GetValue(t, visible, valid);
  return visible > 0;
}

// Three short lines at each corner.
void DrawBrackets(GraphicsWindow& window, const Box3& box) {
  constexpr float kShare = 0.2f;
  const Point3 size = box.max - box.min;
  for (int corner = 0; corner < 8; ++corner) {
    const Point3 from = box.Corner(corner);
    for (int axis = 0; axis < 3; ++axis) {
      Point3 to = from;
      to[axis] += (corner >> axis & 1 ? -kShare : kShare) * size[axis];
      window.Segment(from, to);
    }
  }
}

void DisplaySelectionMark(GraphicsWindow& window, INode& node, TimeValue t) {
  Object* object = node.GetBaseObject();
  if (!object || object->SuperClassID() != kGeomObjectSuper) return;
  const Box3 box = node.GetObjectRef()->GetLocalBoundBox(t, &node);
  if (box.IsEmpty() || !IsFinite(box)) return;
  const DrawScope scope(window);
  window.SetTransform(node.GetObjectTM(t));
  window.SetColour(kSelectedColour);
  window.SetLineWidth(1);
  DrawBrackets(window, box);
}

// The corners of every object's box in the world.
std::vector<Point3> SeenCorners(Scene& scene, const SceneViewOptions& options) {
  std::vector<Point3> corners;
  for (const Ref<INode>& node : scene.Nodes()) {
    if (!node->GetObjectRef() || !IsNodeSeen(*node, options)) continue;
    const Box3 box = node->GetObjectRef()->GetLocalBoundBox(options.time, node.Get());
    if (box.IsEmpty() || !IsFinite(box * node->GetObjectTM(options.time))) continue;
    for (int i = 0; i < 8; ++i) corners.push_back(box.Corner(i) * node->GetObjectTM(options.time));
  }
  return corners;
}

void DisplayController(GraphicsWindow& window, INode& node, TimeValue t) {
  Control* control = node.GetTMController();
  if (!control) return;
  const DrawScope scope(window);
  window.SetTransform({});
  control->Display(t, &node, window);
}

}  // namespace

bool IsNodeSeen(INode& node, const SceneViewOptions& options) {
  return !node.IsHidden() && IsVisibleAt(node, options.time) && (!options.filter || options.filter(node));
}

void DisplayNode(GraphicsWindow& window, INode& node, TimeValue t, float lineWidth) {
  Object* object = node.GetObjectRef();
  if (!object) return;
  const DrawScope scope(window);
  window.SetState({});
  window.SetLineWidth(lineWidth);
  window.SetTransform(node.GetObjectTM(t));
  window.SetColour(node.Selected() ? kSelectedColour : node.IsFrozen() ? kFrozenColour : node.GetWireColor());
  window.SetHitTag(&node);
  object->Display(t, &node, window);
}

void DisplayScene(GraphicsWindow& window, Scene& scene, const SceneViewOptions& options) {
  if (options.grid) DrawGrid(window);
  scene.Evaluate(options.time);
  for (bool selected : {false, true})
    for (const Ref<INode>& node : scene.Nodes()) {
      if (node->Selected() != selected || !IsNodeSeen(*node, options)) continue;
      DisplayNode(window, *node, options.time, options.lineWidth);
      if (selected && options.brackets) DisplaySelectionMark(window, *node, options.time);
      DisplayController(window, *node, options.time);
    }
  if (options.axisMark) DrawAxisMark(window);
  if (options.viewName) DrawViewName(window);
}

Box3 SceneBounds(Scene& scene, const SceneViewOptions& options) {
  Box3 bounds;
  for (const Point3& p : SeenCorners(scene, options)) bounds += p;
  return bounds;
}

bool FrameScene(Camera& camera, Scene& scene, const SceneViewOptions& options) {
  const std::vector<Point3> corners = SeenCorners(scene, options);
  camera.FramePoints(corners);
  return !corners.empty();
}

QImage DrawScene(Scene& scene, const Camera& camera, const SceneViewOptions& options, const Backdrop& backdrop) {
  SoftwareWindow window(camera, backdrop);
  DisplayScene(window, scene, options);
  return window.Finish();
}

std::vector<HitRecord> HitTestNodes(Scene& scene, const Camera& camera, const HitRegion& region,
                                    const SceneViewOptions& options, const HitOptions& hitOptions) {
  HitTestWindow window(camera, region, hitOptions);
  for (const Ref<INode>& node : scene.Nodes())
    if (IsNodeSeen(*node, options) && !node->IsFrozen()) DisplayNode(window, *node, options.time);
  return window.Hits();
}

std::vector<INode*> PickNodes(Scene& scene, const Camera& camera, const HitRegion& region,
                              const SceneViewOptions& options) {
  std::vector<INode*> nodes;
  for (const HitRecord& hit : HitTestNodes(scene, camera, region, options))
    if (hit.node && std::find(nodes.begin(), nodes.end(), hit.node) == nodes.end()) nodes.push_back(hit.node);
  return nodes;
}

INode* PickNode(Scene& scene, const Camera& camera, Point2 screen, const SceneViewOptions& options) {
  const std::vector<INode*> nodes = PickNodes(scene, camera, MakeHitRegion(screen), options);
  return nodes.empty() ? nullptr : nodes.front();
}

}  // namespace corvanta
