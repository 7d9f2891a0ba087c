// SPDX-License-Identifier: MIT
// Whole files in one piece: a reader finds the old bytes or the new ones, never a part.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "host/core/wstr.h"

namespace corvanta {

/// Replaces the file at `path` by `bytes`: a temporary file in the same folder is written, flushed to the disk and
/// renamed over the old one. A crash, a kill or a full disk leaves the old file. Links are followed, the permissions of
/// an old file are kept, and a device or pipe is written straight. A file that its owner made read-only is refused.
/// Gives an empty text, or one that names the file, what is wrong and what to do.
[[nodiscard]] WStr WriteFileAtomically(const WStr& path, std::span<const uint8_t> bytes);

struct FileContents {
  std::vector<uint8_t> bytes;
  WStr error;            // empty when the file was read whole
  bool missing = false;  // the error is that there is no such file
};
/// Reads a whole file of up to `maxBytes`; a larger one is an error, and costs no memory.
FileContents ReadWholeFile(const WStr& path, size_t maxBytes);

}  // namespace corvanta
