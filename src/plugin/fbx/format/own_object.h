// SPDX-License-Identifier: MIT
// How the Create functions hand a new object to its scene.
#pragma once

#include <type_traits>
#include <utility>

#include "plugin/fbx/format/scene.h"

namespace tavrilon::fbx {

template <class T>
T* OwnObject(FbxScene& scene, T* object) {
  scene.objects_.push_back(std::unique_ptr<FbxObject>(object));
  if constexpr (std::is_same_v<T, FbxNode>) scene.nodes_.push_back(object);
  if constexpr (std::is_same_v<T, FbxAnimStack>) scene.stacks_.push_back(object);
  if constexpr (std::is_same_v<T, FbxPose>) scene.poses_.push_back(object);
  if constexpr (std::is_same_v<T, FbxSurfaceMaterial>) scene.materials_.push_back(object);
  return object;
}

}  // namespace tavrilon::fbx
