// SPDX-License-Identifier: MIT
#include "host/view/raster.h"

#include <algorithm>
#include <cmath>

#include "host/view/light.h"
#include "host/view/marker.h"

namespace corvanta {
namespace {

constexpr float kScale = FrameBuffer::kSamples;
// Lines are drawn this many samples nearer than they are, so that the edges of a face are seen on the face.
constexpr double kLineBias = 3;
constexpr float kMaxLineWidth = 64, kMaxMarker = 256;

float Limit(float value, float low, float high, float otherwise) {
  return std::isfinite(value) ? std::clamp(value, low, high) : otherwise;
}

uint32_t Rgb(const Colour& c) { return PackColour({Limit(c.r, 0, 1, 0), Limit(c.g, 0, 1, 0), Limit(c.b, 0, 1, 0)}); }

RasterVertex ToRaster(const ScreenVertex& v, double key) {
  return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(std::clamp(key, -1e30, 1e30)),
          static_cast<float>(v.shade)};
}

float MeanKey(const RasterVertex* v) { return v[0].key + v[1].key + v[2].key; }

}  // namespace

SoftwareWindow::SoftwareWindow(const Camera& camera, const Backdrop& backdrop)
    : GraphicsWindow(camera), backdrop_(backdrop), projector_(camera, kScale) {}

SoftwareWindow::~SoftwareWindow() = default;

RasterInk SoftwareWindow::Ink() const {
  const DrawState& s = State();
  return {Rgb(s.colour), static_cast<int>(Limit(s.opacity, 0, 1, 1) * 256 + 0.5f), s.depthTest};
}

void SoftwareWindow::AddFace(const Face& face) {
  if (face.ink.alpha == 0) return;
  if (face.ink.depthTest) return (face.ink.alpha == 256 ? solidFaces_ : clearFaces_).push_back(face);
  topOrder_.push_back({true, topFaces_.size()});
  topFaces_.push_back(face);
}

void SoftwareWindow::AddLine(const Line& line) {
  if (line.ink.alpha == 0) return;
  if (line.ink.depthTest) return lines_.push_back(line);
  topOrder_.push_back({false, topLines_.size()});
  topLines_.push_back(line);
}

void SoftwareWindow::AddSegment(const Point3& a, const Point3& b, bool butt) {
  ScreenVertex v[2];
  if (!projector_.Segment(a, b, v)) return;
  AddLine({ToRaster(v[0], projector_.Nearer(v[0].key, kLineBias)),
           ToRaster(v[1], projector_.Nearer(v[1].key, kLineBias)), Ink(),
           Limit(State().lineWidth, 0.5f, kMaxLineWidth, 1) * kScale, butt});
}

void SoftwareWindow::Polyline(std::span<const Point3> points, bool closed) {
  if (points.size() < 2) return;
  worldPoints_.clear();
  for (const Point3& p : points) worldPoints_.push_back(ToWorld(p));
  // Round ends close the joints; see-through ones would show there twice and are cut instead.
  const bool butt = State().opacity < 1;
  for (size_t i = 0; i + 1 < worldPoints_.size(); ++i) AddSegment(worldPoints_[i], worldPoints_[i + 1], butt);
  if (closed && points.size() > 2) AddSegment(worldPoints_.back(), worldPoints_.front(), butt);
}

void SoftwareWindow::AddTriangle(const Point3 world[3], const float shade[3]) {
  ScreenVertex v[Projector::kMaxCorners];
  const int count = projector_.Triangle(world, shade, v);
  for (int i = 2; i < count; ++i)
    AddFace({{ToRaster(v[0], v[0].key), ToRaster(v[i - 1], v[i - 1].key), ToRaster(v[i], v[i].key)}, Ink()});
}

void SoftwareWindow::Triangles(const TriangleList& mesh) {
  worldPoints_.clear();
  for (const Point3& p : mesh.points) worldPoints_.push_back(ToWorld(p));
  const Headlight light(GetCamera(), State().transform);
  const bool smooth = State().shaded && mesh.normals.size() == mesh.points.size();
  const int count = static_cast<int>(mesh.points.size());
  for (const auto& corners : mesh.triangles) {
    if (!std::all_of(corners.begin(), corners.end(), [&](int i) { return i >= 0 && i < count; })) continue;
    Point3 world[3];
    for (int i = 0; i < 3; ++i) world[i] = worldPoints_[corners[i]];
    const bool back = light.IsBack(world);
    if (back && State().cullBack) continue;
    float shade[3] = {1, 1, 1};
    if (State().shaded && !smooth) shade[0] = shade[1] = shade[2] = light.OnFace(world);
    for (int i = 0; smooth && i < 3; ++i) shade[i] = light.OnNormal(mesh.normals[corners[i]], back);
    AddTriangle(world, shade);
  }
}

void SoftwareWindow::AddDisc(const RasterVertex& centre, float radius) {
  constexpr int kSides = 16;
  const RasterInk ink = Ink();
  const auto at = [&](int i) {
    const float angle = kTwoPi * static_cast<float>(i % kSides) / kSides;
    return RasterVertex{centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle), centre.key, 1};
  };
  for (int i = 0; i < kSides; ++i) AddFace({{centre, at(i), at(i + 1)}, ink});
}

void SoftwareWindow::Marker(const Point3& p, MarkerKind kind, float size) {
  ScreenVertex v;
  if (!projector_.Point(ToWorld(p), v)) return;
  const RasterVertex centre = ToRaster(v, projector_.Nearer(v.key, kLineBias));
  const float radius = Limit(size, 1, kMaxMarker, 4) * kScale * 0.5f;
  if (kind == MarkerKind::Dot) return AddDisc(centre, radius);
  const float width = Limit(State().lineWidth, 0.5f, kMaxLineWidth, 1) * kScale;
  for (const MarkerStroke& s : MarkerStrokes(kind)) {
    RasterVertex a = centre, b = centre;
    a.x += s.ax * radius, a.y += s.ay * radius, b.x += s.bx * radius, b.y += s.by * radius;
    AddLine({a, b, Ink(), width, State().opacity < 1});
  }
}

void SoftwareWindow::DrawPasses() {
  const auto fill = [this](const Face& f) { buffer_.FillTriangle(f.v[0], f.v[1], f.v[2], f.ink); };
  const auto line = [this](const Line& l) { buffer_.DrawLine(l.a, l.b, l.width, l.butt, l.ink); };
  for (const Face& f : solidFaces_) fill(f);
  for (const Line& l : lines_) line(l);
  std::stable_sort(clearFaces_.begin(), clearFaces_.end(),
                   [](const Face& a, const Face& b) { return MeanKey(a.v) < MeanKey(b.v); });
  for (const Face& f : clearFaces_) fill(f);
  for (const OnTop& top : topOrder_) top.isFace ? fill(topFaces_[top.index]) : line(topLines_[top.index]);
}

QImage SoftwareWindow::Finish() {
  const int width = GetCamera().Width(), height = GetCamera().Height();
  buffer_.Resize(width, height);
  buffer_.Clear(Rgb(backdrop_.top), Rgb(backdrop_.bottom));
  DrawPasses();
  QImage image(width, height, QImage::Format_RGB32);
  for (int y = 0; y < height; ++y) buffer_.ResolveRow(y, reinterpret_cast<uint32_t*>(image.scanLine(y)));
  DrawLabels(image);
  for (auto* faces : {&solidFaces_, &clearFaces_, &topFaces_}) faces->clear();
  lines_.clear(), topLines_.clear(), topOrder_.clear(), labels_.clear();
  return image;
}

}  // namespace corvanta
