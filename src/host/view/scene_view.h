// SPDX-License-Identifier: MIT
// A whole scene in a view: drawing, bounds, picking.
#pragma once

#include <QImage>
#include <functional>
#include <vector>

#include "host/scene/scene.h"
#include "host/view/hit_test.h"
#include "host/view/raster.h"

namespace corvanta {

/// What of a scene is drawn and how. A node is seen when it is not hidden (by itself, its layer, or a visibility track
/// at or below 0) and `filter` agrees; an empty filter takes every node.
struct SceneViewOptions {
  TimeValue time = 0;
  std::function<bool(INode&)> filter;
  bool grid = true;
  bool axisMark = true;
  bool viewName = true;
  bool brackets = true;    ///< corners about selected geometry
  float lineWidth = 1.5f;  ///< pixels, of objects that set no width of their own
};

inline constexpr uint32_t kSelectedColour = 0xFFFFFF, kFrozenColour = 0x5C6266;

bool IsNodeSeen(INode& node, const SceneViewOptions& options);
/// The node's object with its offset and colour: white when selected, grey when frozen, else the wire colour.
void DisplayNode(GraphicsWindow& window, INode& node, TimeValue t, float lineWidth = 1.5f);
/// Nodes in the order of creation, the selected ones after the others, each followed by its transform controller's
/// Display. That is called with the identity as transform for every node seen: a controller that draws only for
/// selected nodes asks the node. Grid and marks as told.
void DisplayScene(GraphicsWindow& window, Scene& scene, const SceneViewOptions& options);
/// Around the objects seen, in the world. Objects whose box is not finite are left out.
Box3 SceneBounds(Scene& scene, const SceneViewOptions& options);
/// Turns the camera to the objects seen; it fits closer than by SceneBounds. False when there are none.
bool FrameScene(Camera& camera, Scene& scene, const SceneViewOptions& options);
QImage DrawScene(Scene& scene, const Camera& camera, const SceneViewOptions& options, const Backdrop& backdrop = {});

/// What the objects seen have in the region, best first; frozen nodes are not hit. See HitTestWindow::Hits.
std::vector<HitRecord> HitTestNodes(Scene& scene, const Camera& camera, const HitRegion& region,
                                    const SceneViewOptions& options, const HitOptions& hitOptions = {});
/// The node that a click means, or null.
INode* PickNode(Scene& scene, const Camera& camera, Point2 screen, const SceneViewOptions& options);
/// Each node hit once, best first.
std::vector<INode*> PickNodes(Scene& scene, const Camera& camera, const HitRegion& region,
                              const SceneViewOptions& options);

}  // namespace corvanta
