// SPDX-License-Identifier: MIT
// Pictures by software: no window, no graphics driver, the same pixels on every machine with the same fonts.
// Primitives are gathered and drawn at the end in passes (solid faces, lines, see-through faces from far to near,
// what lies on top in the order of the calls, text), so the order in which objects draw themselves does not matter.
#pragma once

#include <QImage>
#include <string>
#include <vector>

#include "host/core/wstr.h"
#include "host/view/draw.h"
#include "host/view/frame_buffer.h"
#include "host/view/projection.h"

namespace corvanta {

struct Backdrop {
  Colour top{0.30f, 0.32f, 0.34f};
  Colour bottom{0.17f, 0.18f, 0.19f};
};

/// Draws into an image. Text needs a QGuiApplication and at least one font: see `CanDrawText`.
class SoftwareWindow final : public GraphicsWindow {
 public:
  explicit SoftwareWindow(const Camera& camera, const Backdrop& backdrop = {});
  ~SoftwareWindow() override;

  void Polyline(std::span<const Point3> points, bool closed = false) override;
  void Triangles(const TriangleList& mesh) override;
  void Marker(const Point3& p, MarkerKind kind, float size) override;
  void Text(Point2 screen, std::wstring_view text, TextAnchor anchor = TextAnchor::Left) override;
  void WorldText(const Point3& p, std::wstring_view text, TextAnchor anchor = TextAnchor::Left) override;

  /// The picture of all calls since the window was made or last finished, 32 bits a pixel, of the camera's size.
  /// Afterwards the window is empty and may draw the next picture.
  QImage Finish();

 private:
  struct Face {
    RasterVertex v[3];
    RasterInk ink;
  };
  struct Line {
    RasterVertex a, b;
    RasterInk ink;
    float width;
    bool butt;
  };
  struct Label {
    Point2 at;
    float key;
    bool depthTest;
    std::wstring text;
    TextAnchor anchor;
    uint32_t rgb;
    float size;
  };
  struct OnTop {
    bool isFace;
    size_t index;
  };
  RasterInk Ink() const;
  void AddFace(const Face& face);
  void AddLine(const Line& line);
  void AddSegment(const Point3& a, const Point3& b, bool butt);
  void AddTriangle(const Point3 world[3], const float shade[3]);
  void AddDisc(const RasterVertex& centre, float radius);
  void DrawPasses();
  void DrawLabels(QImage& image) const;

  Backdrop backdrop_;
  Projector projector_;
  FrameBuffer buffer_;
  std::vector<Face> solidFaces_, clearFaces_, topFaces_;
  std::vector<Line> lines_, topLines_;
  std::vector<OnTop> topOrder_;
  std::vector<Label> labels_;
  std::vector<Point3> worldPoints_;  // scratch of Polyline and Triangles
  std::vector<float> shades_;
};

/// Whether a drawn letter would be seen: an application object lives and a font is installed.
bool CanDrawText();

/// Writes the whole file or none. On failure returns false and `error` says what and where in one line.
bool SavePng(const QImage& image, const WStr& path, WStr& error);

}  // namespace corvanta
