// SPDX-License-Identifier: MIT
// Turns a template into nodes. `RigSystem::CreateRig` runs the steps in this order, with the hold suspended:
//
//   Prepare, Build, FinishComponents, then for each extra and side BuildExtra and FinishComponents, then Finish.
//
// Resume the hold (corvanta::HoldResume) around host calls that must be undoable: creating nodes, assigning transform
// controllers, making layers. Every node goes to RigSystem::OwnNode at once.
#pragma once

#include <memory>

#include "plugin/rig/panel_record.h"
#include "plugin/rig/rig_system.h"

namespace tavrilon {

namespace detail {
class Parts;
struct BuildState;
}  // namespace detail

class RigBuilder {
 public:
  explicit RigBuilder(RigSystem& rig);
  ~RigBuilder();

  /// Layers, `main` and the root bone.
  void Prepare();
  /// The components of the rig's type.
  void Build();
  /// Attaches what waited for a parent that came later.
  void FinishComponents();
  /// One side (right, left or centre) of an extra.
  void BuildExtra(const RigExtra& extra, int side);
  /// Root bone, mirror pairs, main's place, figure mode off.
  void Finish();
  /// What the picker panel shows of the finished rig.
  const PanelRecord& Panel() const { return panel_; }
  /// What the options asked for that was left out.
  std::vector<WStr> Notes() const;

 private:
  void PlacePanelCursor();
  void FinishRootBone();
  void PairMirrors();

  RigSystem& rig_;
  PointFrames frames_;
  std::unique_ptr<detail::BuildState> state_;
  std::unique_ptr<detail::Parts> parts_;
  PanelRecord panel_;
};

}  // namespace tavrilon
