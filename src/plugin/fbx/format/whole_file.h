// SPDX-License-Identifier: MIT
// A file that is written whole or not at all.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "plugin/fbx/format/status.h"

namespace tavrilon::fbx {

/// Writes `bytes` to a new file beside `path`, flushes it to the disk and renames it, so that a failure leaves what was
/// there. A link is followed; the rights of a file that is replaced are kept. False with the status set: "walk.fbx:
/// cannot be written: No space left on device".
bool WriteWholeFile(const std::string& path, std::span<const uint8_t> bytes, FbxStatus& status);

}  // namespace tavrilon::fbx
