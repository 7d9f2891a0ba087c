// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "host/scene/scene.h"

namespace corvanta {

/// The bytes of a scene file. Gives an empty text, or what cannot be saved and why.
WStr WriteScene(const Scene& scene, std::vector<uint8_t>* out);

}  // namespace corvanta
