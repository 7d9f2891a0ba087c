// SPDX-License-Identifier: MIT
#include "host/view/recorder.h"

#include <algorithm>

namespace corvanta {

Primitive& RecordingWindow::Add(PrimitiveKind kind, std::span<const Point3> points) {
  Primitive& primitive = primitives_.emplace_back();
  primitive.kind = kind;
  primitive.state = State();
  for (const Point3& p : points) primitive.points.push_back(ToWorld(p));
  return primitive;
}

void RecordingWindow::Polyline(std::span<const Point3> points, bool closed) {
  Add(PrimitiveKind::Polyline, points).closed = closed;
}

void RecordingWindow::Triangles(const TriangleList& mesh) {
  Add(PrimitiveKind::Triangles, mesh.points).triangles.assign(mesh.triangles.begin(), mesh.triangles.end());
}

void RecordingWindow::Marker(const Point3& p, MarkerKind kind, float size) {
  Primitive& primitive = Add(PrimitiveKind::Marker, {&p, 1});
  primitive.marker = kind, primitive.size = size;
}

void RecordingWindow::Text(Point2 screen, std::wstring_view text, TextAnchor anchor) {
  Primitive& primitive = Add(PrimitiveKind::Text, {});
  primitive.screen = screen, primitive.text = text, primitive.anchor = anchor;
}

void RecordingWindow::WorldText(const Point3& p, std::wstring_view text, TextAnchor anchor) {
  Primitive& primitive = Add(PrimitiveKind::WorldText, {&p, 1});
  primitive.text = text, primitive.anchor = anchor;
}

int RecordingWindow::Count(PrimitiveKind kind) const {
  return static_cast<int>(
      std::count_if(primitives_.begin(), primitives_.end(), [kind](const Primitive& p) { return p.kind == kind; }));
}

Box3 RecordingWindow::Bounds() const {
  Box3 box;
  for (const Primitive& primitive : primitives_)
    for (const Point3& p : primitive.points) box += p;
  return box;
}

bool RecordingWindow::HasText(std::wstring_view text) const {
  return std::any_of(primitives_.begin(), primitives_.end(), [text](const Primitive& p) { return p.text == text; });
}

}  // namespace corvanta
