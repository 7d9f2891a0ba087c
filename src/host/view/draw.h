// SPDX-License-Identifier: MIT
// What an object's Display draws with. The same calls fill a picture, are recorded for a test, or are tested against
// the mouse, so an object is drawn and picked by one function.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "host/maths/colour.h"
#include "host/view/camera.h"

namespace corvanta {

class INode;

enum class MarkerKind { Cross, Plus, Dot, Box, Circle, Diamond };
enum class TextAnchor { Left, Centre, Right };

/// A triangle mesh in local space. `normals` is empty for flat faces, or has one normal a point for smooth ones.
/// A triangle whose index is out of range is left out.
struct TriangleList {
  std::span<const Point3> points;
  std::span<const std::array<int, 3>> triangles;
  std::span<const Point3> normals = {};
};

/// What holds for the calls that follow. Sizes are pixels.
struct DrawState {
  Matrix3 transform;  ///< local to world
  Colour colour{1, 1, 1};
  float opacity = 1;  ///< of lines and faces, 0 to 1
  float lineWidth = 1;
  float textSize = 13;
  bool depthTest = true;  ///< off: on top of everything, in the order of the calls
  bool shaded = true;     ///< faces by a headlight; off: plain colour
  bool cullBack = false;  ///< leave out faces that run clockwise on the screen
  INode* node = nullptr;  ///< whom a hit belongs to
  int subIndex = -1;      ///< part of the node that a hit belongs to, -1 for the whole
};

/// The drawing interface. Points that are not finite, and what hangs on them, are left out.
class GraphicsWindow {
 public:
  explicit GraphicsWindow(const Camera& camera) : camera_(camera) {}
  virtual ~GraphicsWindow();
  GraphicsWindow(const GraphicsWindow&) = delete;
  GraphicsWindow& operator=(const GraphicsWindow&) = delete;

  const Camera& GetCamera() const { return camera_; }
  const DrawState& State() const { return state_; }
  void SetState(const DrawState& state) { state_ = state; }

  void SetTransform(const Matrix3& localToWorld) { state_.transform = localToWorld; }
  void SetColour(const Colour& colour) { state_.colour = colour; }
  void SetColour(uint32_t rgb) { state_.colour = UnpackColour(rgb); }
  void SetOpacity(float opacity) { state_.opacity = opacity; }
  void SetLineWidth(float pixels) { state_.lineWidth = pixels; }
  void SetTextSize(float pixels) { state_.textSize = pixels; }
  void SetDepthTest(bool on) { state_.depthTest = on; }
  void SetShaded(bool on) { state_.shaded = on; }
  void SetCullBack(bool on) { state_.cullBack = on; }
  void SetHitTag(INode* node, int subIndex = -1) { state_.node = node, state_.subIndex = subIndex; }

  /// Lines through local points; `closed` joins the last to the first. One point alone draws nothing.
  virtual void Polyline(std::span<const Point3> points, bool closed = false) = 0;
  virtual void Triangles(const TriangleList& mesh) = 0;
  /// A mark of constant size about a local point; `size` is its width in pixels.
  virtual void Marker(const Point3& p, MarkerKind kind, float size) = 0;
  /// Text whose base line starts (ends, is centred) at a screen point; always on top.
  virtual void Text(Point2 screen, std::wstring_view text, TextAnchor anchor = TextAnchor::Left) = 0;
  /// Text at a local point; hidden with the point when the depth test is on.
  virtual void WorldText(const Point3& p, std::wstring_view text, TextAnchor anchor = TextAnchor::Left) = 0;

  void Segment(const Point3& a, const Point3& b);
  /// The twelve edges of a box.
  void BoxEdges(const Box3& box);

 protected:
  Point3 ToWorld(const Point3& local) const { return local * state_.transform; }

 private:
  Camera camera_;
  DrawState state_;
};

/// Gives the window back its state at the end of a scope.
class DrawScope {
 public:
  explicit DrawScope(GraphicsWindow& window) : window_(window), saved_(window.State()) {}
  ~DrawScope() { window_.SetState(saved_); }
  DrawScope(const DrawScope&) = delete;
  DrawScope& operator=(const DrawScope&) = delete;

 private:
  GraphicsWindow& window_;
  DrawState saved_;
};

}  // namespace corvanta
