// SPDX-License-Identifier: MIT
// What a picture shows besides the scene.
#pragma once

#include "host/view/draw.h"

namespace corvanta {

/// Red X, green Y, blue Z, as packed colours.
inline constexpr uint32_t kAxisColours[3] = {0xE63C3C, 0x3CC83C, 0x466EFF};

/// Distance of the thin grid lines for this camera: 1 or 2 times a power of ten; strong ones lie at the powers.
float GridStep(const Camera& camera);
/// The ground with the axes on it, fading out far away; in front and side views a sheet behind everything.
void DrawGrid(GraphicsWindow& window);
/// The three axes as they point in this view, with their letters, in the lower left corner.
void DrawAxisMark(GraphicsWindow& window);
/// "Front", "Side", "Top" or "Perspective" in the upper left corner.
void DrawViewName(GraphicsWindow& window);

}  // namespace corvanta
