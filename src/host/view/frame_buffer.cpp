// SPDX-License-Identifier: MIT
#include "host/view/frame_buffer.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace corvanta {
namespace {

constexpr float kFarthest = -std::numeric_limits<float>::infinity();

uint32_t Shade(uint32_t rgb, float shade) {
  return BlendRgb(0, rgb, static_cast<int>(std::clamp(shade, 0.0f, 1.0f) * 256.0f + 0.5f));
}

// The first sample whose middle is at or after `edge`: with it as both start and end of spans no sample is lost or
// filled twice along a shared edge.
int FirstSample(float edge, int limit) { return std::clamp(static_cast<int>(std::ceil(edge - 0.5f)), 0, limit); }

// x of an edge at a row. The end points are always taken in the order of their height, so that both triangles of a
// shared edge find the same bits.
float EdgeX(const RasterVertex& top, const RasterVertex& bottom, float y) {
  return top.x + (bottom.x - top.x) * ((y - top.y) / (bottom.y - top.y));
}

// A value that is linear over the screen. In a sliver the slopes mean little, so it is kept within its corners.
struct Plane {
  double origin, dx, dy, low, high;
  Plane(const RasterVertex& a, const RasterVertex& b, const RasterVertex& c, float RasterVertex::*value, double area) {
    const double u = double(b.*value) - a.*value, v = double(c.*value) - a.*value;
    dx = (u * (double(c.y) - a.y) - v * (double(b.y) - a.y)) / area;
    dy = (v * (double(b.x) - a.x) - u * (double(c.x) - a.x)) / area;
    origin = a.*value - dx * a.x - dy * a.y;
    low = std::min({a.*value, b.*value, c.*value}), high = std::max({a.*value, b.*value, c.*value});
  }
  float At(double x, double y) const { return static_cast<float>(std::clamp(origin + dx * x + dy * y, low, high)); }
};

}  // namespace

void FrameBuffer::Resize(int width, int height) {
  width_ = width * kSamples, height_ = height * kSamples;
  colour_.resize(static_cast<size_t>(width_) * height_);
  key_.resize(colour_.size());
}

void FrameBuffer::Clear(uint32_t top, uint32_t bottom) {
  for (int y = 0; y < height_; ++y) {
    uint32_t* row = colour_.data() + static_cast<size_t>(y) * width_;
    std::fill(row, row + width_, BlendRgb(top, bottom, y * 256 / std::max(height_ - 1, 1)));
  }
  std::fill(key_.begin(), key_.end(), kFarthest);
}

void FrameBuffer::FillTriangle(const RasterVertex& va, const RasterVertex& vb, const RasterVertex& vc,
                               const RasterInk& ink) {
  const RasterVertex *a = &va, *b = &vb, *c = &vc;  // by height
  if (b->y < a->y) std::swap(a, b);
  if (c->y < a->y) std::swap(a, c);
  if (c->y < b->y) std::swap(b, c);
  const double area = (double(b->x) - a->x) * (double(c->y) - a->y) - (double(c->x) - a->x) * (double(b->y) - a->y);
  if (!(std::fabs(area) > 1e-9)) return;  // thinner than any sample
  const Plane keys(*a, *b, *c, &RasterVertex::key, area), shades(*a, *b, *c, &RasterVertex::shade, area);
  const bool flat = a->shade == b->shade && a->shade == c->shade, opaque = ink.alpha >= 256;
  const uint32_t flatRgb = Shade(ink.rgb, a->shade);
  const int lastRow = FirstSample(c->y, height_);
  for (int row = FirstSample(a->y, height_); row < lastRow; ++row) {
    const float y = static_cast<float>(row) + 0.5f;
    float left = EdgeX(*a, *c, y), right = y < b->y ? EdgeX(*a, *b, y) : EdgeX(*b, *c, y);
    if (left > right) std::swap(left, right);
    const int x0 = FirstSample(left, width_), x1 = FirstSample(right, width_);
    if (x0 >= x1) continue;
    const float steps = static_cast<float>(std::max(x1 - x0 - 1, 1));
    const float key = keys.At(x0 + 0.5, y), step = (keys.At(x1 - 0.5, y) - key) / steps;
    const float shade = shades.At(x0 + 0.5, y), shadeStep = (shades.At(x1 - 0.5, y) - shade) / steps;
    uint32_t* colours = colour_.data() + static_cast<size_t>(row) * width_ + x0;
    float* depths = key_.data() + static_cast<size_t>(row) * width_ + x0;
    for (int i = 0; i < x1 - x0; ++i) {
      const float k = key + step * static_cast<float>(i);
      if (ink.depthTest && k < depths[i]) continue;
      const uint32_t rgb = flat ? flatRgb : Shade(ink.rgb, shade + shadeStep * static_cast<float>(i));
      colours[i] = opaque ? rgb : BlendRgb(colours[i], rgb, ink.alpha);
      if (opaque && ink.depthTest) depths[i] = k;
    }
  }
}

// A line walked along the axis in which it is longer, called u; the other is v.
struct FrameBuffer::LineSetup {
  const RasterInk& ink;
  bool steep, butt;
  float u, v, key;               // start
  float length, half;            // length, and half the width
  float du, dv, slope, keyStep;  // unit direction, dv / du, change of the key by u
  float reach;                   // of the line from its middle, measured along v
  int limit;                     // samples along v
};

void FrameBuffer::LineColumn(const LineSetup& line, int column) {
  const float alongU = static_cast<float>(column) + 0.5f - line.u;
  const float middle = line.v + line.slope * alongU;
  const float key = line.key + line.keyStep * std::clamp(alongU, 0.0f, line.length * line.du);
  const int last = FirstSample(middle + line.reach, line.limit);
  for (int row = FirstSample(middle - line.reach, line.limit); row < last; ++row) {
    const float alongV = static_cast<float>(row) + 0.5f - line.v;
    const float along = alongU * line.du + alongV * line.dv;
    float across = std::fabs(alongV * line.du - alongU * line.dv);
    float ends = 1;
    const float beyond = along < 0 ? -along : along - line.length;
    if (line.butt)
      ends = std::clamp(0.5f - beyond, 0.0f, 1.0f);
    else if (beyond > 0)
      across = std::sqrt(across * across + beyond * beyond);
    const float cover = std::min(line.half + 0.5f - across, 1.0f) * ends;
    if (cover <= 0) continue;
    const size_t x = static_cast<size_t>(line.steep ? row : column), y = static_cast<size_t>(line.steep ? column : row);
    const size_t index = y * static_cast<size_t>(width_) + x;
    if (line.ink.depthTest && key < key_[index]) continue;
    const int alpha = static_cast<int>(cover * static_cast<float>(line.ink.alpha) + 0.5f);
    colour_[index] = BlendRgb(colour_[index], line.ink.rgb, alpha);
    if (line.ink.depthTest && line.ink.alpha >= 256 && alpha >= 128) key_[index] = key;
  }
}

void FrameBuffer::DrawLine(const RasterVertex& a, const RasterVertex& b, float width, bool butt, const RasterInk& ink) {
  const bool steep = std::fabs(b.y - a.y) > std::fabs(b.x - a.x);
  const float au = steep ? a.y : a.x, bu = steep ? b.y : b.x;
  const RasterVertex &from = au <= bu ? a : b, &to = au <= bu ? b : a;
  const float u = std::min(au, bu), v = steep ? from.x : from.y;
  const float lengthU = std::fabs(bu - au), lengthV = (steep ? to.x : to.y) - v;
  const float length = std::sqrt(lengthU * lengthU + lengthV * lengthV);
  const float du = length > 0 ? lengthU / length : 1, dv = length > 0 ? lengthV / length : 0;
  const float half = std::max(width, 1.0f) * 0.5f;
  const LineSetup line{ink,
                       steep,
                       butt,
                       u,
                       v,
                       from.key,
                       length,
                       half,
                       du,
                       dv,
                       dv / du,
                       lengthU > 0 ? (to.key - from.key) / lengthU : 0,
                       (half + 0.5f) / du,
                       steep ? width_ : height_};
  const int columns = steep ? height_ : width_, last = FirstSample(u + lengthU + half + 0.5f, columns);
  for (int column = FirstSample(u - half - 0.5f, columns); column < last; ++column) LineColumn(line, column);
}

void FrameBuffer::ResolveRow(int y, uint32_t* out) const {
  const uint32_t* upper = colour_.data() + static_cast<size_t>(y) * kSamples * width_;
  const uint32_t* lower = upper + width_;
  for (int x = 0; x < width_; x += kSamples) {
    const uint32_t s[4] = {upper[x], upper[x + 1], lower[x], lower[x + 1]};
    uint32_t rb = 0x020002, g = 0x000200;
    for (uint32_t rgb : s) rb += rgb & 0xff00ff, g += rgb & 0x00ff00;
    *out++ = 0xff000000u | ((rb >> 2) & 0xff00ff) | ((g >> 2) & 0x00ff00);
  }
}

float FrameBuffer::KeyAt(float x, float y) const {
  if (!(x >= 0 && y >= 0 && x < static_cast<float>(width_) && y < static_cast<float>(height_))) return kFarthest;
  return key_[static_cast<size_t>(y) * width_ + static_cast<size_t>(x)];
}

}  // namespace corvanta
