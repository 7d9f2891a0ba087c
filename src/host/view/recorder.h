// SPDX-License-Identifier: MIT
// Remembers what was drawn, for tests of Display functions.
#pragma once

#include <vector>

#include "host/core/wstr.h"
#include "host/view/draw.h"

namespace corvanta {

enum class PrimitiveKind { Polyline, Triangles, Marker, Text, WorldText };

/// One call with the state that it was made in. `points` are in world space.
struct Primitive {
  PrimitiveKind kind;
  DrawState state;
  std::vector<Point3> points;
  std::vector<std::array<int, 3>> triangles;
  bool closed = false;
  MarkerKind marker = MarkerKind::Cross;
  float size = 0;  ///< of a marker
  WStr text;
  Point2 screen;  ///< of a text
  TextAnchor anchor = TextAnchor::Left;
};

class RecordingWindow final : public GraphicsWindow {
 public:
  explicit RecordingWindow(const Camera& camera = Camera()) : GraphicsWindow(camera) {}

  const std::vector<Primitive>& Primitives() const { return primitives_; }
  int Count(PrimitiveKind kind) const;
  /// Around all points recorded, world space.
  Box3 Bounds() const;
  /// Whether this very text was drawn.
  bool HasText(std::wstring_view text) const;
  void Clear() { primitives_.clear(); }

  void Polyline(std::span<const Point3> points, bool closed = false) override;
  void Triangles(const TriangleList& mesh) override;
  void Marker(const Point3& p, MarkerKind kind, float size) override;
  void Text(Point2 screen, std::wstring_view text, TextAnchor anchor = TextAnchor::Left) override;
  void WorldText(const Point3& p, std::wstring_view text, TextAnchor anchor = TextAnchor::Left) override;

 private:
  Primitive& Add(PrimitiveKind kind, std::span<const Point3> points);
  std::vector<Primitive> primitives_;
};

}  // namespace corvanta
