// SPDX-License-Identifier: MIT
// What a rig shows to scripts: building and resetting, its type, its points, its template files and its extras.
#pragma once

#include "host/core/published.h"
#include "plugin/rig/rig_point.h"

namespace tavrilon {

class IRigSystem : public corvanta::FPMixinInterface {
 public:
  static constexpr corvanta::Interface_ID kId{0x45596D57, 0x1E847B40};

  /// In the order of the published table.
  enum Function : int {
    kCreateRig,
    kResetRig,
    kGetType,
    kSetType,
    kGetPointPos,
    kSetPointPos,
    kGetPointParent,
    kLoad,
    kLoadDlg,
    kSave,
    kSaveDlg,
    kGetNumExtras,
    kAddExtra,
    kRemoveExtra,
    kGetExtraName,
    kSetExtraName,
    kGetExtraParent,
    kSetExtraParent,
    kGetExtraSide,
    kSetExtraSide,
    kGetExtraNumControls,
    kSetExtraNumControls,
    kGetExtraNumBones,
    kSetExtraNumBones,
    kGetBuildNotes,
    kGetBuildError,
    kGetUnknownPoints,
    kGetPointNames,
    kGetFileError,
    kGetPanelParts,
  };

  /// Builds the nodes of the template. Nothing on a built rig. One undo step, "Create Rig".
  virtual void CreateRig() = 0;
  /// Deletes the nodes and gives the template back. Nothing on a template. One undo step.
  virtual void ResetRig() = 0;
  /// What the last build left out although the options ask for it, one line each.
  virtual const std::vector<WStr>& BuildNotes() const = 0;
  /// What went wrong in the last build; empty after a good one.
  virtual const WStr& BuildError() const = 0;
  /// Points of the last loaded template file that this rig's template does not have.
  virtual const std::vector<WStr>& UnknownPoints() const = 0;
  virtual int GetType() const = 0;
  /// Discards all points and resets the counts that depend on the type. An index that is no type changes nothing.
  /// Undoable.
  virtual void SetType(int type) = 0;

  // Points by name: "r_" or "l_" for side 0 or 1, the name, then "_" and each index plus 1 that is not below 0.
  /// In template units, the height of the figure being 1; 0, 0, 0 for a point that is not there.
  virtual Point3 GetPointPos(const WStr& name, int side = -1, int index = -1, int sub_index = -1) const = 0;
  /// Moves that point alone, without children and mirror point. Undoable.
  virtual void SetPointPos(const WStr& name, const Point3& pos, int side = -1, int index = -1, int sub_index = -1) = 0;
  /// The name of the point's parent; empty without one.
  virtual WStr GetPointParent(const WStr& name, int side = -1, int index = -1, int sub_index = -1) const = 0;

  /// All points, parents before their children, with side prefix and indices.
  virtual std::vector<WStr> PointNames() const = 0;
  /// The parts that the last build laid out for the picker panel, one line each.
  virtual std::vector<WStr> PanelParts() const = 0;

  /// False, and nothing is changed, when the file cannot be read. One undo step, "Load Rig Template".
  virtual bool Load(const WStr& fileName) = 0;
  /// False also when the user cancels.
  virtual bool LoadDlg() = 0;
  virtual bool Save(const WStr& fileName) = 0;
  virtual bool SaveDlg() = 0;
  /// What was wrong with the file loaded or saved last, with its name; empty when it went well.
  virtual const WStr& FileError() const = 0;

  // Extras, counted from 0. An index beyond the end gives an empty text, 0 or false, and changes nothing.
  virtual int GetNumExtras() const = 0;
  /// An empty name becomes "extra_01" and so on. False when the name repeats. Undoable, as all that follows.
  virtual bool AddExtra(const WStr& name = {}, const WStr& parent = {}, int side = kSideNone, int num_controls = 1,
                        int num_bones = 2, bool use_bones = false) = 0;
  virtual bool RemoveExtra(int index) = 0;
  virtual WStr GetExtraName(int index) const = 0;
  /// The points keep their places. An empty name and one that repeats change nothing.
  virtual void SetExtraName(int index, const WStr& name) = 0;
  virtual WStr GetExtraParent(int index) const = 0;
  virtual void SetExtraParent(int index, const WStr& parent) = 0;
  virtual int GetExtraSide(int index) const = 0;
  virtual void SetExtraSide(int index, int side) = 0;
  virtual int GetExtraNumControls(int index) const = 0;
  virtual void SetExtraNumControls(int index, int num_bones) = 0;
  virtual int GetExtraNumBones(int index) const = 0;
  virtual void SetExtraNumBones(int index, int num_bones) = 0;

  const corvanta::FPInterfaceDesc& GetDesc() const override;
  corvanta::FPStatus Invoke(int id, corvanta::TimeValue t, corvanta::FPValue& result,
                            std::span<const corvanta::FPValue> args) override;
};

}  // namespace tavrilon
