// SPDX-License-Identifier: MIT
// The parents that a goal, goal parent or target has in turn: in each stretch of time its node hangs on another node or
// on the world, and stays where it is at every switch. The links are the track's keys.
#pragma once

#include <vector>

#include "host/core/param_block.h"
#include "host/core/published.h"
#include "plugin/frame/class_table.h"
#include "plugin/solvers/chain_params.h"

namespace tavrilon {

class IKFKControl;

/// Published under the script name "interface" with the class's own ID. Indices count from 0 here and from 1 in
/// scripts; frames are those of the scene's frame rate.
class IIKFKLink : public corvanta::FPInterface {
 public:
  enum Function : int {
    kGetNumTargets = 0,
    kGetNode = 1,
    kGetFrameNo = 2,
    kSetFrameNo = 3,
    kAddTarget = 4,
    kDeleteTarget = 5,
    kAddWorld = 6,
  };
  static constexpr corvanta::Interface_ID kId{ClassIdOf(TavrilonClass::IKFKLink).a,
                                              ClassIdOf(TavrilonClass::IKFKLink).b};

  virtual int GetNumTargets() const = 0;
  /// Null for the world and beyond the end.
  virtual corvanta::INode* GetNode(int i) const = 0;
  /// 0 beyond the end.
  virtual int GetFrameNo(int i) const = 0;
  /// Links keep their order in time; false beyond the end and when another link starts there. Undoable.
  virtual bool SetFrameNo(int i, int frame) = 0;
  /// From `frame` on the node hangs on `target`; null stands for the world. A link that starts there gets the target
  /// instead. With `keepTM` the node stays where it is, at the frame and at all its keys. False for a target that
  /// follows this node. One step, "IKFK Change". Undoable.
  virtual bool AddTarget(corvanta::INode* target, int frame, bool keepTM = true) = 0;
  /// False beyond the end. Undoable.
  virtual bool DeleteTarget(int i, bool keepTM = true) = 0;
  /// 1, or 0 when refused. Undoable.
  int AddWorld(int frame, bool keepTM = true) { return AddTarget(nullptr, frame, keepTM) ? 1 : 0; }

  const corvanta::FPInterfaceDesc& GetDesc() const override;
  corvanta::FPStatus Invoke(int id, corvanta::TimeValue t, corvanta::FPValue& result,
                            std::span<const corvanta::FPValue> args) override;
};

class IKFKLink final : public corvanta::Control, public corvanta::ILockedTrackImp, public IIKFKLink {
 public:
  explicit IKFKLink(bool loading = false);

  static constexpr corvanta::Class_ID kClassId = ClassIdOf(TavrilonClass::IKFKLink);
  corvanta::SClass_ID SuperClassID() const override { return corvanta::kFloatControlSuper; }
  corvanta::Class_ID ClassID() const override { return kClassId; }
  corvanta::WStr GetClassName() const override { return DescOf(TavrilonClass::IKFKLink).className; }
  static const corvanta::ParamBlockDesc2& BlockDesc();
  corvanta::ParamBlock2* GetParamBlock() const { return block_; }

  int NumLinks() const { return block_ ? block_->Count(ikfk_link::kStartTime) : 0; }
  /// Puts the matrix that the node hangs on into `tm`, which stays as it is without links and when the lists are of
  /// different lengths.
  void GetMatrix(corvanta::TimeValue t, corvanta::Matrix3& tm, corvanta::Interval& valid);
  /// Off: edits leave the stored transform as it is, and the node moves. On for a new link.
  void SetKeepPosition(bool on) { keepPosition_ = on; }

  // As a float track: the index of the link that holds, -1 without links. It cannot be set.
  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  void SetValue(corvanta::TimeValue, corvanta::ValueRef, bool, corvanta::GetSetMethod) override {}

  // IIKFKLink
  int GetNumTargets() const override { return block_ ? block_->Count(ikfk_link::kTargetList) : 0; }
  corvanta::INode* GetNode(int i) const override;
  int GetFrameNo(int i) const override;
  bool SetFrameNo(int i, int frame) override;
  bool AddTarget(corvanta::INode* target, int frame, bool keepTM = true) override;
  bool DeleteTarget(int i, bool keepTM = true) override;

  // Keys. Edits that bring two links to one time keep the later of them.
  bool IsKeyable() const override { return true; }
  bool IsAnimated() override { return NumLinks() > 0; }
  int NumKeys() const override { return NumLinks(); }
  corvanta::TimeValue GetKeyTime(int i) const override;
  int GetKeyIndex(corvanta::TimeValue t) const override;
  bool IsKeySelected(int i) const override;
  void SelectKeys(const corvanta::Interval& range, bool on) override;
  void DeleteKeyAtTime(corvanta::TimeValue t) override;
  void DeleteKeys(bool selectedOnly) override;
  void MapKeys(const corvanta::TimeMap& map, uint32_t flags) override;
  void DeleteTime(const corvanta::Interval& range, uint32_t flags) override;
  void ReverseTime(const corvanta::Interval& range, uint32_t flags) override;
  void CopyKeysFromTime(corvanta::TimeValue from, corvanta::TimeValue to) override;

  // References and sub-animatables.
  int NumRefs() const override { return 1; }
  corvanta::ReferenceTarget* GetReference(int which) const override { return which == 0 ? block_ : nullptr; }
  int NumSubs() const override { return 1; }
  corvanta::Animatable* SubAnim(int i) override { return GetReference(i); }
  corvanta::WStr SubAnimName(int i) override { return i == 0 ? L"Parameters" : L""; }
  int SubNumToRefNum(int i) override { return i; }
  void* GetInterface(uint32_t request) override;
  corvanta::FPInterface* GetInterface(const corvanta::Interface_ID& id) override;
  int NumInterfaces() const override { return 1; }
  corvanta::FPInterface* GetInterfaceAt(int i) override { return i == 0 ? static_cast<IIKFKLink*>(this) : nullptr; }
  corvanta::RefResult NotifyRefChanged(const corvanta::Interval& interval, corvanta::ReferenceTarget* target,
                                       corvanta::PartID& part, corvanta::RefMessage message, bool propagate) override;
  corvanta::ReferenceTarget* Clone(corvanta::RemapDir& remap) override;
  void CopyStateFrom(corvanta::ReferenceTarget& source, corvanta::RemapDir& remap) override;
  corvanta::IOResult Save(corvanta::ISave& save) override;
  corvanta::IOResult Load(corvanta::ILoad& load) override;
  void PostLoad() override { ListsChanged(); }

  /// The lists are read anew at the next evaluation.
  void ListsChanged() { stale_ = true, offsetOf_ = -1; }

 protected:
  void SetReference(int which, corvanta::ReferenceTarget* target) override;

 private:
  /// A row of the lists.
  struct Link {
    corvanta::TimeValue start = 0;
    corvanta::INode* target = nullptr;
    bool selected = false;
  };
  /// What the node looked like before an edit, at one time.
  struct Kept {
    corvanta::TimeValue time = 0;
    corvanta::Matrix3 world, base;
    bool key = false;
  };

  bool ReadLists();
  corvanta::Matrix3 TargetTM(int i, corvanta::TimeValue t, corvanta::Interval& valid) const;
  const corvanta::Matrix3& OffsetOf(int index);
  IKFKControl* FindControl() const;
  std::vector<Link> GetLinks() const;
  void PutLinks(std::vector<Link> links);
  /// Runs `edit` on the rows; the node stays where it is at its keys, or at `anchor` when it has none.
  template <class Edit>
  void EditLinks(corvanta::TimeValue anchor, bool keepTM, Edit&& edit);
  std::vector<Kept> Remember(corvanta::TimeValue anchor) const;
  void Refit(const std::vector<Kept>& kept) const;

  // What evaluation reads and keeps comes first.
  corvanta::ParamBlock2* block_ = nullptr;
  std::vector<corvanta::TimeValue> starts_;
  bool stale_ = true;
  bool usable_ = false;
  /// The link whose offset is kept; -1 for none.
  int offsetOf_ = -1;
  corvanta::Matrix3 offset_;
  bool keepPosition_ = true;
};

}  // namespace tavrilon
