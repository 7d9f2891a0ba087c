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
// Truncation and one comparison: rounding up by the library costs more than all the rest of a short span.
int FirstSample(float edge, int limit) {
  const float middle = edge - 0.5f;
  const int below = static_cast<int>(middle);
  return std::clamp(below + (middle > static_cast<float>(below)), 0, limit);
}

// An edge walked by rows. The end points are always taken in the order of their height, so that both triangles of a
// shared edge find the same bits.
struct Edge {
  float x, y, slope;
  Edge(const RasterVertex& top, const RasterVertex& bottom) : x(top.x), y(top.y) {
    // An edge between two rows' middles is never asked; its slope only must not be infinite.
    slope = (bottom.x - top.x) / std::max(bottom.y - top.y, 1e-6f);
    low = std::min(top.x, bottom.x), high = std::max(top.x, bottom.x);
  }
  float At(float row) const { return std::clamp(x + slope * (row - y), low, high); }
  float low, high;
};

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

// Samples of one row, and what changes along it.
struct Span {
  uint32_t* rgb;
  float* key;
  int count;
  float firstKey, keyStep, firstShade, shadeStep;
};

// The usual case. Without branches, since which samples pass the depth test cannot be foreseen.
void FillSolid(const Span& span, uint32_t rgb) {
  for (int i = 0; i < span.count; ++i) {
    const float key = span.firstKey + span.keyStep * static_cast<float>(i);
    const bool nearer = key >= span.key[i];
    span.key[i] = nearer ? key : span.key[i];
    span.rgb[i] = nearer ? rgb : span.rgb[i];
  }
}

void FillAny(const Span& span, const RasterInk& ink, bool flat, uint32_t flatRgb) {
  const bool opaque = ink.alpha >= 256;
  for (int i = 0; i < span.count; ++i) {
    const float key = span.firstKey + span.keyStep * static_cast<float>(i);
    if (ink.depthTest && key < span.key[i]) continue;
    const float shade = span.firstShade + span.shadeStep * static_cast<float>(i);
    const uint32_t rgb = flat ? flatRgb : Shade(ink.rgb, shade);
    span.rgb[i] = opaque ? rgb : BlendRgb(span.rgb[i], rgb, ink.alpha);
    if (opaque && ink.depthTest) span.key[i] = key;
  }
}

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
  const Edge whole(*a, *c), upper(*a, *b), lower(*b, *c);
  const int lastRow = FirstSample(c->y, height_);
  for (int row = FirstSample(a->y, height_); row < lastRow; ++row) {
    const float y = static_cast<float>(row) + 0.5f;
    float left = whole.At(y), right = (y < b->y ? upper : lower).At(y);
    if (left > right) std::swap(left, right);
    const int x0 = FirstSample(left, width_), x1 = FirstSample(right, width_);
    if (x0 >= x1) continue;
    const float steps = static_cast<float>(std::max(x1 - x0 - 1, 1));
    const float key = keys.At(x0 + 0.5, y), step = (keys.At(x1 - 0.5, y) - key) / steps;
    const float shade = flat ? 0 : shades.At(x0 + 0.5, y);
    const float shadeStep = flat ? 0 : (shades.At(x1 - 0.5, y) - shade) / steps;
    const size_t at = static_cast<size_t>(row) * width_ + static_cast<size_t>(x0);
    const Span span{&colour_[at], &key_[at], x1 - x0, key, step, shade, shadeStep};
    flat&& opaque&& ink.depthTest ? FillSolid(span, flatRgb) : FillAny(span, ink, flat, flatRgb);
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
  int keyAlpha;                  // the depth is filled from this cover on
};

void FrameBuffer::Cover(const LineSetup& line, size_t at, float key, float cover) {
  // A hidden sample is blended with nothing: no branch that cannot be foreseen.
  const bool seen = !line.ink.depthTest || key >= key_[at];
  const int alpha = seen ? static_cast<int>(cover * static_cast<float>(line.ink.alpha) + 0.5f) : 0;
  colour_[at] = BlendRgb(colour_[at], line.ink.rgb, alpha);
  key_[at] = alpha >= line.keyAlpha ? key : key_[at];
}

void FrameBuffer::LineColumn(const LineSetup& line, int column) {
  const float alongU = static_cast<float>(column) + 0.5f - line.u;
  const float middle = line.v + line.slope * alongU;
  const float key = line.key + line.keyStep * std::clamp(alongU, 0.0f, line.length * line.du);
  const int first = FirstSample(middle - line.reach, line.limit), last = FirstSample(middle + line.reach, line.limit);
  const size_t width = static_cast<size_t>(width_), u = static_cast<size_t>(column), v = static_cast<size_t>(first);
  const size_t step = line.steep ? 1 : width;
  size_t at = line.steep ? u * width + v : v * width + u;
  const float alongV = static_cast<float>(first) + 0.5f - line.v;
  float along = alongU * line.du + alongV * line.dv, across = alongV * line.du - alongU * line.dv;
  const float middleAlong = alongU / line.du, slack = line.reach * std::fabs(line.dv);
  if (middleAlong >= slack && middleAlong + slack <= line.length) {  // away from the ends
    for (int row = first; row < last; ++row, at += step, across += line.du)
      Cover(line, at, key, std::clamp(line.half + 0.5f - std::fabs(across), 0.0f, 1.0f));
    return;
  }
  for (int row = first; row < last; ++row, at += step, along += line.dv, across += line.du) {
    const float beyond = along < 0 ? -along : std::max(along - line.length, line.butt ? -1.0f : 0.0f);
    const float distance = line.butt ? std::fabs(across) : std::sqrt(across * across + beyond * beyond);
    const float ends = line.butt ? std::clamp(0.5f - beyond, 0.0f, 1.0f) : 1;
    Cover(line, at, key, std::clamp(line.half + 0.5f - distance, 0.0f, 1.0f) * ends);
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
                       steep ? width_ : height_,
                       ink.depthTest && ink.alpha >= 256 ? 128 : 257};
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
