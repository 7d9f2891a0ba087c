// SPDX-License-Identifier: MIT
// Drawing of the host's own objects. It stands here and not with their classes, so that the scene needs no window.
#include "host/scene/bone_object.h"
#include "host/scene/point_helper.h"
#include "host/view/backdrop.h"
#include "host/view/draw.h"
#include "host/view/mesh_display.h"

namespace corvanta {
namespace {

// A bone's corners: 0 the joint, 1 to 4 around the shoulder, 5 to 8 around the far end.
constexpr std::array<int, 3> kBoneFaces[] = {{0, 2, 1}, {0, 3, 2}, {0, 4, 3}, {0, 1, 4}, {1, 2, 6},
                                             {1, 6, 5}, {2, 3, 7}, {2, 7, 6}, {3, 4, 8}, {3, 8, 7},
                                             {4, 1, 5}, {4, 5, 8}, {5, 6, 7}, {5, 7, 8}};
constexpr int kBoneEdges[][2] = {{0, 1}, {0, 2}, {0, 3}, {0, 4}, {1, 2}, {2, 3}, {3, 4}, {4, 1},
                                 {1, 5}, {2, 6}, {3, 7}, {4, 8}, {5, 6}, {6, 7}, {7, 8}, {8, 5}};

struct FinRow {
  BoneObject::Param param;
  int axis;  // 1 across the width, 2 across the height
  float sign;
};
constexpr FinRow kFins[] = {{BoneObject::kSideFins, 1, 1},
                            {BoneObject::kSideFins, 1, -1},
                            {BoneObject::kFrontFin, 2, 1},
                            {BoneObject::kBackFin, 2, -1}};

struct BoneForm {
  float length, half[2], end;
  /// Half the width (axis 1) or height (axis 2) at a part of the length beyond the shoulder.
  float HalfAt(float part, int axis) const { return half[axis - 1] * (1 + (end - 1) * part); }
};

Colour Darker(const Colour& c) { return {c.r * 0.4f, c.g * 0.4f, c.b * 0.4f}; }

// A plate of half the bone's own thickness that stands off its side.
void DrawFin(GraphicsWindow& view, const BoneForm& bone, const FinRow& fin) {
  const float height = bone.half[fin.axis - 1] * 0.8f;
  const auto point = [&](float part, float off) {
    Point3 p{bone.length * (0.1f + 0.9f * part), 0, 0};
    p[fin.axis] = fin.sign * (bone.HalfAt(part, fin.axis) + off);
    return p;
  };
  const Point3 points[] = {point(0.1f, 0), point(0.9f, 0), point(0.75f, height), point(0.2f, height)};
  constexpr std::array<int, 3> kFaces[] = {{0, 1, 2}, {0, 2, 3}};
  view.Triangles({points, kFaces});
  const DrawScope scope(view);
  view.SetColour(Darker(view.State().colour));
  view.Polyline(points, true);
}

// The factor that gives a helper its size in pixels, whatever its distance and scale.
float ConstantSize(GraphicsWindow& view) {
  const Matrix3& tm = view.State().transform;
  const float scale = Length(tm.row[0]);
  return scale > 0 ? view.GetCamera().PixelSize(tm.GetTrans()) / scale : 1;
}

void DrawCross(GraphicsWindow& view, float h) {
  view.Segment({-h, 0, 0}, {h, 0, 0});
  view.Segment({0, -h, 0}, {0, h, 0});
  view.Segment({0, 0, -h}, {0, 0, h});
}

void DrawTripod(GraphicsWindow& view, float h) {
  const DrawScope scope(view);
  for (int i = 0; i < 3; ++i) {
    Point3 end;
    end[i] = h;
    view.SetColour(kAxisColours[i]);
    view.Segment({}, end);
  }
}

}  // namespace

void DerivedObject::Display(TimeValue t, INode* node, GraphicsWindow& view) {
  if (!base_) return;
  const ModifiedDisplay display = Stack(t, node);
  if (display.hidden) return;
  const DrawScope scope(view);
  view.SetTransform(display.tm * view.State().transform);
  if (KeptMesh* mesh = GetKeptMesh(t, node))
    DrawMesh(t, node, *mesh, view);
  else
    base_->Display(t, node, view);
}

void PointHelper::Display(TimeValue t, INode*, GraphicsWindow& view) {
  if (!block_) return;
  const DrawScope scope(view);
  float h = block_->GetFloat(kSize, t) * 0.5f;
  if (block_->GetBool(kConstantScreenSize)) h *= ConstantSize(view);
  if (block_->GetBool(kDrawOnTop)) view.SetDepthTest(false);
  if (block_->GetBool(kCross)) DrawCross(view, h);
  if (block_->GetBool(kBox)) view.BoxEdges({{-h / 2, -h / 2, -h / 2}, {h / 2, h / 2, h / 2}});
  if (block_->GetBool(kCenterMarker)) view.Marker({}, MarkerKind::Plus, 7);
  if (block_->GetBool(kAxisTripod)) DrawTripod(view, h);
}

void BoneObject::Display(TimeValue t, INode*, GraphicsWindow& view) {
  if (!block_) return;
  BoneForm bone{block_->GetFloat(kLength, t), {}, 1 - block_->GetFloat(kTaper, t)};
  for (int i = 0; i < 2; ++i) {
    bone.half[i] = block_->GetFloat(i == 0 ? kWidth : kHeight, t) * 0.5f;
    if (bone.half[i] <= 0) bone.half[i] = std::abs(bone.length) * 0.05f;
  }
  Point3 points[9];
  for (int i = 0; i < 8; ++i) {
    // Counterclockwise about X from the corner of least Y and Z.
    const float y = i % 4 == 1 || i % 4 == 2 ? 1.0f : -1.0f, z = i % 4 >= 2 ? 1.0f : -1.0f, part = i < 4 ? 0.0f : 1.0f;
    points[1 + i] = {bone.length * (i < 4 ? 0.1f : 1), y * bone.HalfAt(part, 1), z * bone.HalfAt(part, 2)};
  }
  view.Triangles({points, kBoneFaces});
  for (const FinRow& fin : kFins)
    if (block_->GetBool(fin.param)) DrawFin(view, bone, fin);
  const DrawScope scope(view);
  view.SetColour(Darker(view.State().colour));
  view.SetLineWidth(1);  // wider edges would cover a slim bone
  for (const auto& edge : kBoneEdges) view.Segment(points[edge[0]], points[edge[1]]);
}

}  // namespace corvanta
