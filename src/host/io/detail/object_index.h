// SPDX-License-Identifier: MIT
// Numbers everything that a file of a scene holds. The walk follows the references in their order, so equal scenes get
// equal numbers, whatever lies where in memory.
#pragma once

#include <unordered_map>
#include <vector>

#include "host/scene/scene.h"

namespace corvanta {

/// Strong references and weak links of one thing in the order of the file; null where a slot is empty. Custom
/// attributes are not among them.
struct Targets {
  std::vector<ReferenceTarget*> strong, weak;
};
void CollectTargets(ReferenceTarget& maker, Targets* out);

class ObjectIndex {
 public:
  explicit ObjectIndex(const Scene& scene);

  /// 0 for null and for what is not part of the scene: nodes that live only in undo, what is watched but not referred
  /// to.
  uint32_t NumberOf(const ReferenceTarget* target) const;

  const std::vector<INode*>& Nodes() const { return nodes_; }  // the root first
  const std::vector<SceneLayer*>& Layers() const { return layers_; }
  TrackViewNode* TrackRoot() const { return trackRoot_; }
  const std::vector<ReferenceTarget*>& Objects() const { return objects_; }

 private:
  void Add(const ReferenceTarget* target) { numbers_.emplace(target, static_cast<uint32_t>(numbers_.size() + 1)); }
  void Walk(ReferenceTarget* from);
  void Push(ReferenceTarget* maker);

  std::vector<INode*> nodes_;
  std::vector<SceneLayer*> layers_;
  TrackViewNode* trackRoot_ = nullptr;
  std::vector<ReferenceTarget*> objects_;
  std::unordered_map<const ReferenceTarget*, uint32_t> numbers_;
  std::vector<ReferenceTarget*> open_;
  Targets targets_;
};

}  // namespace corvanta
