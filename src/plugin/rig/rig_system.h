// SPDX-License-Identifier: MIT
// The object that a user creates to get a rig. As a template it draws guide points, which the user moves; built, it
// owns the nodes that it made (parameter 0), and hides the points.
#pragma once

#include "host/scene/node.h"
#include "plugin/frame/class_table.h"
#include "plugin/frame/weak_ref_owner.h"
#include "plugin/rig/panel_record.h"
#include "plugin/rig/point_frame.h"
#include "plugin/rig/rig_block.h"
#include "plugin/rig/rig_interface.h"
#include "plugin/rig/rig_type.h"

namespace tavrilon {

/// What loading a template file found. `error` is for the user and names the file.
struct RigLoadReport {
  WStr error;
  /// Points of the file that this rig's template does not have.
  std::vector<WStr> unknownPoints;
  /// Points and parameters that were left out because their numbers are no use.
  int skipped = 0;
};

/// Sub-object levels.
enum RigLevel : int { kRigObjectLevel = 0, kRigPointLevel = 1 };

class RigSystem final : public corvanta::HelperObject, public IRigSystem, public WeakRefOwner {
 public:
  explicit RigSystem(bool loading = false);

  static constexpr corvanta::Class_ID kClassId = ClassIdOf(TavrilonClass::Rig);
  corvanta::Class_ID ClassID() const override { return kClassId; }
  WStr GetClassName() const override { return L"Rig"; }

  // The template, for builders and panels.

  corvanta::ParamBlock2* GetParamBlock() override { return block_; }
  const corvanta::ParamBlock2& Block() const { return *block_; }
  /// True while no rig is built.
  bool IsActive() const { return block_ && block_->GetBool(rig_param::kActive); }
  RigType Type() const { return static_cast<RigType>(GetType()); }
  /// World units of one template unit: the height of the figure.
  float Size() const { return block_ ? block_->GetFloat(rig_param::kHelperSize) : 0; }
  WStr RigName() const { return block_ ? block_->GetStr(rig_param::kRigName) : WStr(); }
  const RigPoints& Points() const { return state_.points; }
  /// In template units; kept until a point changes.
  const PointPlaces& Places() const;
  /// Box of all points, or of the selected ones, in the object's space.
  corvanta::Box3 PointBox() const;
  corvanta::Box3 SelectionBox() const;
  /// Point by name, side and indices; -1 when there is none.
  int FindPoint(const WStr& name, int side = -1, int index = -1, int sub_index = -1) const;
  /// Frames of the present points; valid until a point changes.
  PointFrames Frames() const { return PointFrames(Points(), Places()); }
  const std::vector<RigExtra>& Extras() const { return state_.extras; }

  // The built rig.

  /// Adds a node to those that the rig owns. Builders call it for each node at once, so that the rig owns it even if
  /// the build stops.
  void OwnNode(corvanta::INode* node);
  /// The nodes that are there, without null entries and doubles.
  std::vector<corvanta::INode*> OwnedNodes() const;
  /// What the last build tells the picker panel. Not kept in files.
  const PanelRecord& Panel() const { return panel_; }
  /// The node that carries this object; null when none does.
  corvanta::INode* ObjectNode() const;

  // Editing.

  /// Moves the selected points through a change over world points, as the affect switches say. Undoable.
  void MoveSelected(const Matrix3& objectTM, const Matrix3& worldChange);
  /// Selects the points of a component, and deselects the others. Undoable.
  void SelectComponent(int component);
  int NumSelected() const;
  bool SetExtraUseBones(int index, bool on);
  bool GetExtraUseBones(int index) const;

  // Creation with the mouse: the press, then each move while the button is down.
  void StartCreation(corvanta::INode* node, const Matrix3& grid);
  void DragCreation(float distance);

  /// Reads a template file into this rig. One undo step when it succeeds.
  RigLoadReport LoadTemplate(const WStr& fileName);
  /// Empty, or what is wrong.
  WStr SaveTemplate(const WStr& fileName) const;
  const RigLoadReport& LastLoad() const { return lastLoad_; }

  // IRigSystem.
  const std::vector<WStr>& BuildNotes() const override { return buildNotes_; }
  const WStr& BuildError() const override { return buildError_; }
  const std::vector<WStr>& UnknownPoints() const override { return lastLoad_.unknownPoints; }
  void CreateRig() override;
  void ResetRig() override;
  int GetType() const override { return block_ ? block_->GetInt(rig_param::kHelperType) : 0; }
  void SetType(int type) override;
  Point3 GetPointPos(const WStr& name, int side = -1, int index = -1, int sub_index = -1) const override;
  void SetPointPos(const WStr& name, const Point3& pos, int side = -1, int index = -1, int sub_index = -1) override;
  WStr GetPointParent(const WStr& name, int side = -1, int index = -1, int sub_index = -1) const override;
  bool Load(const WStr& fileName) override;
  bool LoadDlg() override;
  bool Save(const WStr& fileName) override;
  bool SaveDlg() override;
  std::vector<WStr> PointNames() const override;
  std::vector<WStr> PanelParts() const override { return tavrilon::PanelParts(panel_); }
  const WStr& FileError() const override { return fileError_; }
  int GetNumExtras() const override { return static_cast<int>(state_.extras.size()); }
  bool AddExtra(const WStr& name = {}, const WStr& parent = {}, int side = kSideNone, int num_controls = 1,
                int num_bones = 2, bool use_bones = false) override;
  bool RemoveExtra(int index) override;
  WStr GetExtraName(int index) const override;
  void SetExtraName(int index, const WStr& name) override;
  WStr GetExtraParent(int index) const override;
  void SetExtraParent(int index, const WStr& parent) override;
  int GetExtraSide(int index) const override;
  void SetExtraSide(int index, int side) override;
  int GetExtraNumControls(int index) const override;
  void SetExtraNumControls(int index, int num_bones) override;
  int GetExtraNumBones(int index) const override;
  void SetExtraNumBones(int index, int num_bones) override;

  // Interfaces.
  void* GetInterface(uint32_t request) override;
  corvanta::FPInterface* GetInterface(const corvanta::Interface_ID& id) override;
  int NumInterfaces() const override { return 1; }
  corvanta::FPInterface* GetInterfaceAt(int i) override { return i == 0 ? this : nullptr; }

  // References: 0 the block.
  int NumRefs() const override { return 1; }
  corvanta::ReferenceTarget* GetReference(int which) const override { return which == 0 ? block_ : nullptr; }
  int NumSubs() const override { return 1; }
  corvanta::Animatable* SubAnim(int i) override { return i == 0 ? block_ : nullptr; }
  WStr SubAnimName(int) override { return L"Parameters"; }
  int SubNumToRefNum(int subAnim) override { return subAnim == 0 ? 0 : -1; }
  corvanta::RefResult NotifyRefChanged(const corvanta::Interval& interval, corvanta::ReferenceTarget* target,
                                       corvanta::PartID& part, corvanta::RefMessage message, bool propagate) override;
  void CopyStateFrom(corvanta::ReferenceTarget& source, corvanta::RemapDir& remap) override;
  corvanta::IOResult Save(corvanta::ISave& save) override;
  corvanta::IOResult Load(corvanta::ILoad& load) override;
  void PostLoad() override;

  // Viewport.
  void Display(corvanta::TimeValue t, corvanta::INode* node, corvanta::GraphicsWindow& view) override;
  corvanta::Box3 GetLocalBoundBox(corvanta::TimeValue t, corvanta::INode* node) override;
  int NumSubObjTypes() const override { return 1; }
  WStr GetSubObjType(int i) const override { return i == 0 ? L"Points" : L""; }
  void ActivateSubobjSel(int level) override;
  void SelectSubComponent(std::span<const corvanta::HitRecord> hits, bool selected, bool all, bool invert) override;
  void ClearSelection(int level) override;
  void SelectAll(int level) override;
  void InvertSelection(int level) override;
  std::vector<Point3> GetSubObjectCenters(corvanta::TimeValue t, corvanta::INode* node) override;
  std::vector<Matrix3> GetSubObjectTMs(corvanta::TimeValue t, corvanta::INode* node) override;
  void Move(corvanta::TimeValue t, const Matrix3& parent, const Matrix3& axis, const Point3& v,
            bool localOrigin) override;
  void Rotate(corvanta::TimeValue t, const Matrix3& parent, const Matrix3& axis, const corvanta::Quat& q,
              bool localOrigin) override;
  void Scale(corvanta::TimeValue t, const Matrix3& parent, const Matrix3& axis, const Point3& s,
             bool localOrigin) override;

  /// From the block's accessors: a parameter was written.
  void ParameterChanged(rig_param::ID id);
  /// After undo or redo of points and extras.
  void StateRestored();

 protected:
  void SetReference(int which, corvanta::ReferenceTarget* target) override;
  corvanta::ReferenceTarget* WeakOwner() override { return this; }
  corvanta::ParamBlock2* GetWeakBlock() const override { return block_; }

 private:
  /// All that lies outside the block, for undo and clones.
  struct State {
    RigPoints points;
    std::vector<RigExtra> extras;
  };
  class QuietParameters;

  void ApplyType();
  /// Runs the type's template; points keep what they have by name unless `discard`. Undoable.
  void Rebuild(bool discard);
  void RecordPoints() { corvanta::RecordState(this, &RigSystem::state_); }
  void PointsChanged();
  template <class Change>
  void ChangePoints(const wchar_t* name, Change change);
  template <class Change>
  bool ChangeExtra(int index, Change change);
  const RigExtra* ExtraAt(int index) const;
  bool HasExtra(const WStr& name) const;
  void SetSelected(const wchar_t* name, const std::function<bool(const RigPoint&, bool)>& selected);
  void ApplyParams(const struct RigFile& file, RigLoadReport& report);
  void ApplyPoints(const struct RigFile& file, RigLoadReport& report);
  Matrix3 AboutSelection(const Matrix3& parent, Matrix3 axis, bool localOrigin) const;
  void RunBuild();

  corvanta::ParamBlock2* block_ = nullptr;
  State state_;
  mutable PointPlaces places_;
  mutable bool placesValid_ = false;
  /// Above 0: writes of parameters are not acted on, since who writes them rebuilds by itself.
  int quiet_ = 0;
  WStr buildError_;
  std::vector<WStr> buildNotes_;
  PanelRecord panel_;
  RigLoadReport lastLoad_;
  WStr fileError_;
};

}  // namespace tavrilon
