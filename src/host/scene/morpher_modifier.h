// SPDX-License-Identifier: MIT
// Morpher: weighted offsets of points, in channels with one target or several on the way.
#pragma once

#include "host/core/block_owner.h"
#include "host/scene/mesh_object.h"

namespace corvanta {

/// Offsets of some points, in the object's space; `points` rises.
struct MorphTarget {
  /// The channel's weight at which the target stands in full, above 0 and at most 100. The last one is 100.
  float percent = 100;
  std::vector<int> points;
  std::vector<Point3> offsets;
  bool operator==(const MorphTarget&) const = default;
};

/// Empty when percentages rise above 0 to 100, points rise and have an offset each, and all numbers are finite; else
/// what is wrong.
std::string FaultOf(const std::vector<MorphTarget>& targets);

/// One channel: a weight in percent, and its targets by rising percent. Between two targets their offsets are mixed;
/// beyond the last the mix goes on.
class MorphChannel final : public BlockOwner<ReferenceTarget> {
 public:
  enum Param : ParamID { kName = 0, kWeight = 1, kEnabled = 2 };
  explicit MorphChannel(bool loading = false);

  static constexpr Class_ID kClassId{kHostClassWord, 0x133};
  SClass_ID SuperClassID() const override { return kReferenceTargetSuper; }
  Class_ID ClassID() const override { return kClassId; }
  WStr GetClassName() const override { return L"MorphChannel"; }
  static const ParamBlockDesc2& BlockDesc();

  WStr GetName() const;
  void SetName(const WStr& name);
  /// Percent. Undoable; keys when the weight has a controller and animate is on.
  float GetWeight(TimeValue t, Interval& valid) const;
  void SetWeight(TimeValue t, float percent);
  const std::vector<MorphTarget>& Targets() const { return *targets_; }
  /// Undoable. Targets with a fault (see FaultOf) are refused (false).
  bool SetTargets(std::shared_ptr<const std::vector<MorphTarget>> targets);

  /// Adds what the channel does at `t` to the points, and narrows the interval.
  void AddTo(TimeValue t, MeshState& state) const;

  ParamBlock2* GetParamBlock() const { return block_; }
  IOResult Save(ISave& save) override;
  IOResult Load(ILoad& load) override;
  void CopyStateFrom(ReferenceTarget& source, RemapDir& remap) override;
  void StateRestored();

 private:
  std::shared_ptr<const std::vector<MorphTarget>> targets_ = std::make_shared<std::vector<MorphTarget>>();
};

/// References are the channels, from 0.
class MorpherModifier final : public Modifier {
 public:
  static constexpr Class_ID kClassId{kHostClassWord, 0x132};
  Class_ID ClassID() const override { return kClassId; }
  WStr GetClassName() const override { return L"Morpher"; }

  int NumChannels() const { return static_cast<int>(channels_.size()); }
  MorphChannel* GetChannel(int i) const { return channels_[static_cast<size_t>(i)]; }
  /// Undoable. The new channel, behind the others.
  MorphChannel* AddChannel(const WStr& name);

  void ModifyMesh(TimeValue t, INode* node, MeshState& state) override;
  int NumRefs() const override { return NumChannels(); }
  ReferenceTarget* GetReference(int which) const override;
  std::optional<bool> AcceptsReference(int which, const ReferenceTarget& target) const override;
  int NumSubs() const override { return NumChannels(); }
  Animatable* SubAnim(int i) override { return GetReference(i); }
  WStr SubAnimName(int i) override;
  void CopyStateFrom(ReferenceTarget& source, RemapDir& remap) override;
  void InsertSlot(int at) { channels_.insert(channels_.begin() + at, nullptr); }
  void RemoveSlot(int at) { channels_.erase(channels_.begin() + at); }

 protected:
  void SetReference(int which, ReferenceTarget* target) override;

 private:
  std::vector<MorphChannel*> channels_;
};

}  // namespace corvanta
