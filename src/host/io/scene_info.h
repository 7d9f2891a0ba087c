// SPDX-License-Identifier: MIT
// What a scene holds, in numbers: the answer of `tavrilon info`.
#pragma once

#include <map>
#include <string>

#include "host/scene/scene.h"

namespace corvanta {

struct SceneInfo {
  TimeConfig time;
  int nodes = 0;  // without the root
  /// Nodes by what they carry: "bone", "geometry", "shape", "helper", "other", "empty".
  std::map<std::string, int> nodesByKind;
  int depth = 0;  // of the node tree; 1 when all nodes stand side by side
  int hidden = 0, frozen = 0, selected = 0;
  std::map<WStr, int> nodesByLayer;  // by name; every layer is there
  int nodesOnNoLayer = 0;
  /// Objects of each class, blocks and attribute containers left out.
  std::map<WStr, int> classes;
  /// Objects of classes that this program does not know, by class name; they are in `classes` too.
  std::map<WStr, int> unknownClasses;
  int animatedTracks = 0;  // controllers with keys
  long long keys = 0;
  /// From the first to the last key; empty without keys.
  Interval keyRange = NEVER;
};

SceneInfo CollectSceneInfo(const Scene& scene);
/// Lines for people, the last one ended too.
std::string SceneInfoText(const SceneInfo& info);
/// One JSON object, UTF-8.
std::string SceneInfoJson(const SceneInfo& info);

}  // namespace corvanta
