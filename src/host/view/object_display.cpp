// SPDX-License-Identifier: MIT
// Drawing of the host's own objects. It stands here and not with their classes, so that the scene needs no window.
#include "host/scene/bone_object.h"
#include "host/scene/point_helper.h"
#include "host/view/draw.h"

namespace corvanta {

void DerivedObject::Display(TimeValue t, INode* node, GraphicsWindow& view) {
  if (!base_) return;
  const ModifiedDisplay display = Stack(t, node);
  if (display.hidden) return;
  const DrawScope scope(view);
  view.SetTransform(display.tm * view.State().transform);
  base_->Display(t, node, view);
}

void PointHelper::Display(TimeValue t, INode*, GraphicsWindow& view) {
  if (!block_) return;
  const float h = block_->GetFloat(kSize, t) * 0.5f;
  const DrawScope scope(view);
  if (block_->GetBool(kDrawOnTop)) view.SetDepthTest(false);
  if (block_->GetBool(kCross)) {
    view.Segment({-h, 0, 0}, {h, 0, 0});
    view.Segment({0, -h, 0}, {0, h, 0});
    view.Segment({0, 0, -h}, {0, 0, h});
  }
  if (block_->GetBool(kBox)) view.BoxEdges({{-h / 2, -h / 2, -h / 2}, {h / 2, h / 2, h / 2}});
  if (block_->GetBool(kCenterMarker)) view.Marker({}, MarkerKind::Plus, 7);
  if (!block_->GetBool(kAxisTripod)) return;
  constexpr Colour kAxis[] = {{0.9f, 0.24f, 0.24f}, {0.24f, 0.78f, 0.24f}, {0.27f, 0.43f, 1}};
  for (int i = 0; i < 3; ++i) {
    Point3 end;
    end[i] = h;
    view.SetColour(kAxis[i]);
    view.Segment({}, end);
  }
}

void BoneObject::Display(TimeValue t, INode*, GraphicsWindow& view) {
  if (!block_) return;
  const float length = block_->GetFloat(kLength, t);
  float half[2] = {block_->GetFloat(kWidth, t) * 0.5f, block_->GetFloat(kHeight, t) * 0.5f};
  for (float& h : half)
    if (h <= 0) h = std::abs(length) * 0.05f;
  const float end = 1 - block_->GetFloat(kTaper, t);
  const float shoulder = length * 0.1f;
  const Point3 points[] = {{0, 0, 0},
                           {shoulder, -half[0], -half[1]},
                           {shoulder, half[0], -half[1]},
                           {shoulder, half[0], half[1]},
                           {shoulder, -half[0], half[1]},
                           {length, -half[0] * end, -half[1] * end},
                           {length, half[0] * end, -half[1] * end},
                           {length, half[0] * end, half[1] * end},
                           {length, -half[0] * end, half[1] * end}};
  constexpr std::array<int, 3> kFaces[] = {{0, 2, 1}, {0, 3, 2}, {0, 4, 3}, {0, 1, 4}, {1, 2, 6}, {1, 6, 5}, {2, 3, 7},
                                           {2, 7, 6}, {3, 4, 8}, {3, 8, 7}, {4, 1, 5}, {4, 5, 8}, {5, 6, 7}, {5, 7, 8}};
  view.Triangles({points, kFaces});
}

}  // namespace corvanta
