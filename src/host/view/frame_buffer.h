// SPDX-License-Identifier: MIT
// Colour and depth samples of a picture, four a pixel, and the two shapes that everything is made of: a triangle and
// a thick line. Positions are samples; vertices come clipped from a Projector. Pixels depend on nothing but the calls.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace corvanta {

/// A vertex to be filled; see ScreenVertex.
struct RasterVertex {
  float x = 0, y = 0, key = 0, shade = 1;
};

/// How samples are written. `alpha` runs from 0 to 256.
struct RasterInk {
  uint32_t rgb = 0;
  int alpha = 256;
  bool depthTest = true;
};

class FrameBuffer {
 public:
  static constexpr int kSamples = 2;  ///< a pixel is kSamples wide and high

  /// Sizes in pixels. Keeps its memory when the size stays.
  void Resize(int width, int height);
  int Width() const { return width_; }
  int Height() const { return height_; }

  /// Empties the depth and fills the colour from `top` to `bottom`, 0xRRGGBB.
  void Clear(uint32_t top, uint32_t bottom);
  /// Samples whose middle lies in the triangle, either way round; an edge shared by two belongs to one of them.
  /// Opaque ones fill the depth.
  void FillTriangle(const RasterVertex& a, const RasterVertex& b, const RasterVertex& c, const RasterInk& ink);
  /// A line of `width` samples with smooth edges; its ends are round, or cut off with `butt`.
  void DrawLine(const RasterVertex& a, const RasterVertex& b, float width, bool butt, const RasterInk& ink);

  /// The average of a pixel's samples, 0xffRRGGBB, for the row `y` of pixels.
  void ResolveRow(int y, uint32_t* out) const;
  /// The key at a sample, or minus infinity; also outside of the picture.
  float KeyAt(float x, float y) const;

 private:
  struct LineSetup;
  void LineColumn(const LineSetup& line, int column);
  void Cover(const LineSetup& line, size_t at, float key, float cover);

  int width_ = 0, height_ = 0;    // samples
  std::vector<uint32_t> colour_;  // 0x00RRGGBB
  std::vector<float> key_;
};

/// `alpha` 0 gives `under`, 256 gives `over`; each component is rounded to nearest.
inline uint32_t BlendRgb(uint32_t under, uint32_t over, int alpha) {
  const uint32_t a = static_cast<uint32_t>(alpha), b = 256 - a;
  const uint32_t rb = ((under & 0xff00ff) * b + (over & 0xff00ff) * a + 0x800080) >> 8;
  const uint32_t g = ((under & 0x00ff00) * b + (over & 0x00ff00) * a + 0x008000) >> 8;
  return (rb & 0xff00ff) | (g & 0x00ff00);
}

}  // namespace corvanta
