// SPDX-License-Identifier: MIT
// Scene files (.tvs): the scene on show, all of it but undo. docs/formats.md describes the bytes.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "host/core/wstr.h"

namespace corvanta {

class Scene;

/// Writes the scene on show, in one piece: a crash or a full disk leaves an old file as it was. Gives an empty text, or
/// what is wrong, with the file's name.
[[nodiscard]] WStr SaveScene(const WStr& path);
/// Replaces the scene on show by the one in a file, and forgets undo. A file that is damaged in any way gives an error
/// that names it and what is wrong, and leaves the scene on show as it is. Objects of classes that this program does
/// not know become placeholders, which are written back when the scene is saved. Sends NOTIFY_SCENE_LOADED.
[[nodiscard]] WStr LoadScene(const WStr& path);
/// Replaces the scene on show by an empty one, and forgets undo. False, and nothing happens, while an undo step is
/// open.
bool ResetScene();

/// The bytes of a scene file. Equal scenes give equal bytes.
[[nodiscard]] WStr SaveSceneToBytes(const Scene& scene, std::vector<uint8_t>* out);
/// As LoadScene. Tests of what lies behind the checksums turn `verifyChecksums` off.
[[nodiscard]] WStr LoadSceneFromBytes(std::span<const uint8_t> bytes, bool verifyChecksums = true);

}  // namespace corvanta
