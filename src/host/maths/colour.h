// SPDX-License-Identifier: MIT
// Colours: three floats 0..1 in data, packed 0x00RRGGBB for wire colours.
#pragma once

#include <cstdint>

#include "host/maths/point.h"

namespace corvanta {

struct Colour {
  float r = 0, g = 0, b = 0;
  bool operator==(const Colour&) const = default;
};
inline uint32_t PackComponent(float c) { return static_cast<uint32_t>(static_cast<int>(c * 255.0 + 0.5) & 255); }
inline uint32_t PackColour(const Colour& c) {
  return PackComponent(c.r) << 16 | PackComponent(c.g) << 8 | PackComponent(c.b);
}
inline Colour UnpackColour(uint32_t rgb) {
  return {((rgb >> 16) & 255) / 255.0f, ((rgb >> 8) & 255) / 255.0f, (rgb & 255) / 255.0f};
}

}  // namespace corvanta
