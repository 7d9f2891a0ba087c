// SPDX-License-Identifier: MIT
// Skin: points follow bones by weights (linear blend skinning).
#pragma once

#include "host/scene/mesh_object.h"

namespace corvanta {

/// A bone's share of a point.
struct SkinWeight {
  int bone = 0;
  float weight = 0;
  bool operator==(const SkinWeight&) const = default;
};

/// Weights of all points as compressed rows: point i has `weights[starts[i]]` to `weights[starts[i + 1]]`.
struct SkinWeights {
  std::vector<int> starts{0};
  std::vector<SkinWeight> weights;
  int NumPoints() const { return static_cast<int>(starts.size()) - 1; }
  std::span<const SkinWeight> Of(int point) const {
    return std::span<const SkinWeight>(weights).subspan(static_cast<size_t>(starts[point]),
                                                        static_cast<size_t>(starts[point + 1] - starts[point]));
  }
  void Add(std::span<const SkinWeight> ofNextPoint) {
    weights.insert(weights.end(), ofNextPoint.begin(), ofNextPoint.end());
    starts.push_back(static_cast<int>(weights.size()));
  }
  bool operator==(const SkinWeights&) const = default;
};

/// Empty when the rows fit together, every bone is one of `numBones` and no weight is negative or not finite; else what
/// is wrong.
std::string FaultOf(const SkinWeights& weights, int numBones);

/// A point p of the object goes to p * meshBind * sum(w * Inverse(boneBind) * bone) * Inverse(object), with world
/// matrices: what the weights leave over to 1 stays with the mesh; weights of more than 1 together are scaled down
/// to 1. A bone that was deleted keeps its points at bind. Points without a row of weights stay.
class SkinModifier final : public Modifier {
 public:
  enum Param : ParamID { kBoneLimit = 0, kEnabled = 1 };
  explicit SkinModifier(bool loading = false);

  static constexpr Class_ID kClassId{kHostClassWord, 0x131};
  Class_ID ClassID() const override { return kClassId; }
  WStr GetClassName() const override { return L"Skin"; }
  static const ParamBlockDesc2& BlockDesc();

  int NumBones() const { return static_cast<int>(bones_.size()); }
  /// Null for one that was deleted.
  INode* GetBone(int i) const { return bones_[static_cast<size_t>(i)]; }
  const Matrix3& GetBoneBindTM(int i) const { return state_.bind[static_cast<size_t>(i)]; }
  /// World matrix of the mesh's object at bind.
  const Matrix3& GetMeshBindTM() const { return state_.meshBind; }
  const SkinWeights& GetWeights() const { return *state_.weights; }

  /// Undoable, all three. A bone's number is its place in the order of adding; null and double bones are refused (-1).
  /// So is a bone that hangs on this skin itself, and a matrix that is not finite.
  int AddBone(INode* bone, const Matrix3& bind);
  void SetMeshBindTM(const Matrix3& tm);
  /// Weights of bones that are not there, negative and not finite ones are refused (false).
  bool SetWeights(std::shared_ptr<const SkinWeights> weights);

  void ModifyMesh(TimeValue t, INode* node, MeshState& state) override;
  ParamBlock2* GetParamBlock() override { return block_; }
  // References: 0 the block, 1 and on the bones.
  int NumRefs() const override { return 1 + NumBones(); }
  ReferenceTarget* GetReference(int which) const override;
  std::optional<bool> AcceptsReference(int which, const ReferenceTarget& target) const override;
  RefResult NotifyRefChanged(const Interval& interval, ReferenceTarget* target, PartID& part, RefMessage message,
                             bool propagate) override;
  int NumSubs() const override { return 1; }
  Animatable* SubAnim(int i) override { return block_; }
  WStr SubAnimName(int i) override { return L"Parameters"; }
  IOResult Save(ISave& save) override;
  IOResult Load(ILoad& load) override;
  void CopyStateFrom(ReferenceTarget& source, RemapDir& remap) override;
  void StateRestored();
  void InsertSlot(int at) { bones_.insert(bones_.begin() + (at - 1), nullptr); }
  void RemoveSlot(int at) { bones_.erase(bones_.begin() + (at - 1)); }

  struct State {
    Matrix3 meshBind;
    std::vector<Matrix3> bind;
    std::shared_ptr<const SkinWeights> weights = std::make_shared<SkinWeights>();
  };

 protected:
  void SetReference(int which, ReferenceTarget* target) override;

 private:
  int MakePalette(TimeValue t, INode* node, Interval& valid);

  ParamBlock2* block_ = nullptr;
  std::vector<INode*> bones_;
  State state_;
  /// meshBind * Inverse(boneBind) of each bone; empty when it has to be made.
  std::vector<Matrix3> toBones_;
  std::vector<Matrix3> palette_;
};

}  // namespace corvanta
