// SPDX-License-Identifier: MIT
// What `ControlShape` and `ControlHelper` share: the outline with its caches, the gizmo, the selector, drawing, and the
// published properties. The two classes forward to it and differ in their base, ids and tables.
#pragma once

#include <memory>
#include <span>

#include "host/core/published.h"
#include "host/scene/object.h"
#include "plugin/shapes/outline.h"
#include "plugin/shapes/selector.h"

namespace tavrilon {

/// Sub-object levels.
enum ControlLevel { kObjectLevel = 0, kGizmoLevel = 1, kPolygonLevel = 2 };

/// Sub-object numbers in hits: what part of the control was touched.
enum ControlPart { kGizmoPart = 0, kUnselectedFacePart = 1, kSelectedFacePart = 2 };

class ControlCore final : public corvanta::FPInterface {
 public:
  /// `owner` is the object that the core is a member of; its reference 0 is stored in `block`.
  ControlCore(corvanta::BaseObject& owner, const corvanta::FPInterfaceDesc& desc) : owner_(owner), desc_(desc) {}

  corvanta::ParamBlock2* block = nullptr;

  // Outline. Without the block everything is empty.

  /// The strokes at `t`, rebuilt when a parameter changed or is animated and `t` left its interval.
  const Outline& GetOutline(corvanta::TimeValue t) { return Refresh(t).outline; }
  corvanta::Box3 GetBox(corvanta::TimeValue t) { return Refresh(t).box; }
  /// After a change of the block.
  void OutlineChanged() { cache_.valid = corvanta::NEVER; }

  /// Draws strokes, offset line, selector faces, and what the present sub-object level adds.
  void Display(corvanta::TimeValue t, corvanta::INode* node, corvanta::GraphicsWindow& view);

  // Gizmo.

  const corvanta::Matrix3& GetGizmo() const;
  /// Undoable.
  void SetGizmo(const corvanta::Matrix3& gizmo);
  /// Applies a change over world points, see TransformGizmo; `objectTM` is where the object stands. One undo step,
  /// "Gizmo Change", when none is open. Does nothing outside gizmo level.
  void DragGizmo(corvanta::TimeValue t, const corvanta::Matrix3& objectTM, const corvanta::Matrix3& worldChange);
  /// The gizmo in the object's space with the shape's scale, as it is drawn.
  corvanta::Matrix3 DrawnGizmo(corvanta::TimeValue t) const;

  // Selector.

  /// Whether polygon level is offered: the selector is active and its node gives a mesh.
  bool HasSelector() const;
  /// "3 Polygons Selected", or what is missing: no node, or a node without a mesh.
  corvanta::WStr SelectorStatus() const;
  const corvanta::BitArray& FaceSel() const { return faceSel_; }
  /// Undoable.
  void SetFaceSel(corvanta::BitArray selection);
  /// For loading, cloning and undo: no record.
  void RestoreFaceSel(corvanta::BitArray selection);
  void SelectFaces(std::span<const corvanta::HitRecord> hits, bool selected, bool all, bool invert);
  /// Sets or clears all faces of the mesh. Undoable.
  void SelectAllFaces(bool selected);
  /// Undoable.
  void InvertFaces();
  /// After a change of the selector node or its mesh.
  void SelectorChanged() { selector_.valid = corvanta::NEVER; }

  corvanta::IOResult Save(corvanta::ISave& save) const;
  corvanta::IOResult Load(corvanta::ILoad& load);

  const corvanta::FPInterfaceDesc& GetDesc() const override { return desc_; }
  corvanta::FPStatus Invoke(int id, corvanta::TimeValue t, corvanta::FPValue& result,
                            std::span<const corvanta::FPValue> args) override;

 private:
  struct Cache {
    corvanta::Interval valid = corvanta::NEVER;
    Outline outline;
    std::vector<std::vector<Point3>> polylines;  // of the outline's strokes in turn
    corvanta::Box3 box;
  };
  struct Selector {
    corvanta::Interval valid = corvanta::NEVER;
    SelectorMesh mesh;  // pushed out
    FaceSet sets[2];    // unselected, selected
  };

  OutlineInput ReadInput(corvanta::TimeValue t, corvanta::Interval& valid) const;
  const Cache& Refresh(corvanta::TimeValue t);
  Selector& RefreshSelector(corvanta::TimeValue t);
  corvanta::INode* SelectorNode() const;
  bool Flag(corvanta::ParamID id) const { return block->GetBool(id); }
  float ScaleAt(corvanta::TimeValue t, corvanta::Interval& valid) const;

  corvanta::Matrix3 DrawTM(corvanta::TimeValue t, const corvanta::GraphicsWindow& view) const;
  void DrawStrokes(corvanta::TimeValue t, corvanta::INode* node, corvanta::GraphicsWindow& view);
  void DrawOffsetLine(corvanta::TimeValue t, corvanta::INode* node, corvanta::GraphicsWindow& view) const;
  void DrawGizmoAxes(corvanta::TimeValue t, corvanta::INode* node, corvanta::GraphicsWindow& view);
  void DrawSelector(corvanta::TimeValue t, corvanta::INode* node, corvanta::GraphicsWindow& view);

  corvanta::FPValue GetProperty(int getter) const;
  bool SetProperty(int getter, corvanta::TimeValue t, const corvanta::FPValue& value);

  corvanta::BaseObject& owner_;
  const corvanta::FPInterfaceDesc& desc_;
  Cache cache_;
  Selector selector_;
  corvanta::BitArray faceSel_;
};

/// Undo of a selection of faces: whole bit arrays, so that it does not matter what the mesh has become.
class CSSelectorFSelRestore final : public corvanta::RestoreObj {
 public:
  CSSelectorFSelRestore(corvanta::BaseObject& owner, ControlCore& core)
      : owner_(&owner), core_(core), undo_(core.FaceSel()) {}
  void Restore(bool isUndo) override {
    if (isUndo) redo_ = core_.FaceSel();
    PutBack(undo_);
  }
  void Redo() override { PutBack(redo_); }
  size_t Size() const override { return sizeof *this + 8 * (undo_.Words().size() + redo_.Words().size()); }
  corvanta::WStr Description() const override { return L"Select Polygons"; }

 private:
  void PutBack(const corvanta::BitArray& selection) {
    core_.RestoreFaceSel(selection);
    owner_->NotifyDependents(corvanta::FOREVER, corvanta::PART_GEOM);
  }
  corvanta::Ref<corvanta::BaseObject> owner_;  // keeps the core alive
  ControlCore& core_;
  corvanta::BitArray undo_, redo_;
};

/// The blend of the IK/FK chain that drives a node, 1 for IK; 1 for a node without such a chain. It is the parameter
/// "ikfk_blend" of a block of the node's transform controller.
float IKFKBlendOf(corvanta::INode* node, corvanta::TimeValue t);

}  // namespace tavrilon
