// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include "host/io/detail/scene_format.h"

namespace corvanta {

struct BuiltScene {
  std::unique_ptr<Scene> scene;
  /// Everything in it, for the pass that follows when the scene is on show.
  std::vector<Ref<ReferenceTarget>> things;
  WStr error;
};

/// Makes the scene that a file tells, apart from the one on show. Gives an error, and no scene, when a class does not
/// take what the file has for it.
BuiltScene BuildScene(const scene_format::ParsedScene& parsed);

}  // namespace corvanta
