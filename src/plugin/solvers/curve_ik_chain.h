// SPDX-License-Identifier: MIT
// Places a row of joints along a curve through control nodes: spines, tails, twisting bones. It is the transform
// controller of a helper node of its own. Each joint carries a `CurveIKControl`, which asks for the joint's matrix.
#pragma once

#include "host/scene/node.h"
#include "plugin/frame/weak_ref_owner.h"
#include "plugin/solvers/curve_ik_interface.h"
#include "plugin/solvers/curve_pose.h"

namespace tavrilon {

/// All nodes are watched, not owned. A node that enters `joints` gets a `CurveIKControl` in place of its controller,
/// one that leaves gets back the inner controller or stays where it is; for that the chain must be the controller of a
/// node already. Only joints that are spread evenly are spread anew when the row grows or shrinks.
class CurveIKChain final : public corvanta::Control,
                           public ICurveIKChain,
                           public corvanta::ILockedTrackImp,
                           public WeakRefOwner {
 public:
  static constexpr corvanta::Class_ID kClassId = ClassIdOf(TavrilonClass::CurveIKChain);
  explicit CurveIKChain(bool loading = false);
  static const corvanta::ParamBlockDesc2& BlockDesc();
  /// The transform controller of `node` when it is of this class; null otherwise and for null.
  static CurveIKChain* Of(const corvanta::INode* node);

  corvanta::SClass_ID SuperClassID() const override { return corvanta::kMatrixControlSuper; }
  corvanta::Class_ID ClassID() const override { return kClassId; }
  corvanta::WStr GetClassName() const override { return DescOf(TavrilonClass::CurveIKChain).className; }
  corvanta::ParamBlock2* GetParamBlock() const { return block_; }

  // Evaluation. All joints in one pass, kept while its interval holds. Allocates nothing once the tables have their
  // size.

  /// World matrix of joint `index`; identity beyond the joints.
  corvanta::Matrix3 GetJointTM(corvanta::TimeValue t, int index, corvanta::Interval& valid);
  /// Length of the curve in the chain's space.
  float GetCurveLength(corvanta::TimeValue t) { return Evaluate(t).curve.length; }
  /// Passes made so far; the same time asked again makes none.
  int EvaluationCount() const { return evaluations_; }
  /// The last joint's matrix.
  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  /// The helper stands where the chain ends; it cannot be moved.
  void SetValue(corvanta::TimeValue, corvanta::ValueRef, bool, corvanta::GetSetMethod) override {}
  bool ChangeParents(corvanta::TimeValue, const corvanta::Matrix3&, const corvanta::Matrix3&,
                     const corvanta::Matrix3&) override {
    return true;
  }

  // ICurveIKChain.
  int NumPoints() const override;
  bool AddPoint(corvanta::INode* point, const CurvePointOptions& options = {}) override;
  bool RemovePoint(int index) override;
  bool SetPoint(int index, corvanta::INode* point) override;
  corvanta::INode* GetPoint(int index) const override;
  bool SetPointType(int index, int type) override;
  int GetPointType(int index) const override;
  bool SetInTangent(int index, corvanta::INode* node) override;
  corvanta::INode* GetInTangent(int index) const override;
  bool SetOutTangent(int index, corvanta::INode* node) override;
  corvanta::INode* GetOutTangent(int index) const override;
  bool SetTwist(int index, float twist, corvanta::TimeValue t) override;
  float GetTwist(int index, corvanta::TimeValue t) const override;
  bool SetAmplitude(int index, float amplitude, corvanta::TimeValue t) override;
  float GetAmplitude(int index, corvanta::TimeValue t) const override;
  void ResetLength() override;
  void ResetTangents() override;
  bool SetUseTangentNodes(int index, bool on) override;
  bool GetUseTangentNodes(int index) const override;

  bool IsLeaf() const override { return false; }
  bool IsReplaceable() const override { return !locked_; }
  bool CanOverwrite() const override { return !locked_; }
  int NumRefs() const override { return 1; }
  corvanta::ReferenceTarget* GetReference(int which) const override { return which == 0 ? block_ : nullptr; }
  int NumSubs() const override { return 1; }
  corvanta::Animatable* SubAnim(int i) override { return GetReference(i); }
  corvanta::WStr SubAnimName(int i) override { return i == 0 ? L"Parameters" : L""; }
  int SubNumToRefNum(int i) override { return i; }
  using Control::GetInterface;
  void* GetInterface(uint32_t request) override;
  void AddFootprint(corvanta::EvaluationFootprint& footprint) const override;
  int NumInterfaces() const override { return 1; }
  corvanta::FPInterface* GetInterfaceAt(int i) override { return i == 0 ? this : nullptr; }
  corvanta::RefResult NotifyRefChanged(const corvanta::Interval& interval, corvanta::ReferenceTarget* target,
                                       corvanta::PartID& part, corvanta::RefMessage message, bool propagate) override;
  /// The clone drives the joints that were cloned with it, and no others.
  corvanta::ReferenceTarget* Clone(corvanta::RemapDir& remap) override;
  void CopyStateFrom(corvanta::ReferenceTarget& source, corvanta::RemapDir& remap) override;
  corvanta::IOResult Save(corvanta::ISave& save) override;
  corvanta::IOResult Load(corvanta::ILoad& load) override;
  void PostLoad() override { RememberJoints(); }

  /// The curve and the lines to the tangent nodes, see `display_curve` and `display_tangents`.
  void Display(corvanta::TimeValue t, corvanta::INode* node, corvanta::GraphicsWindow& view) override;
  void GetWorldBoundBox(corvanta::TimeValue t, corvanta::INode* node, corvanta::Box3& box) override;

 protected:
  void SetReference(int which, corvanta::ReferenceTarget* target) override;
  ReferenceTarget* WeakOwner() override { return this; }
  corvanta::ParamBlock2* GetWeakBlock() const override { return block_; }
  bool PassesOn(corvanta::ParamID id, int tab, const corvanta::RefNotice& notice) override;

 private:
  friend class CurveIKChainAccessor;
  /// What one evaluation found. Deleted points are left out; `pointRows` tells which row of the block each one is.
  struct Cache {
    std::vector<PointFrame> pointFrames;
    std::vector<int> pointRows;
    SampledCurve curve;
    std::vector<CurveJoint> joints;
    std::vector<corvanta::Matrix3> jointTM;
    corvanta::Matrix3 spaceTM, spaceInverse;
    corvanta::TimeValue evaluatedTime = 0;
    corvanta::Interval valid = corvanta::NEVER;
    bool dirty = true;
  };
  struct Flags {
    bool rotation, scale;
  };

  const Cache& Evaluate(corvanta::TimeValue t);
  bool IsCurrent(corvanta::TimeValue t) const {
    return !cache_.dirty && (t == cache_.evaluatedTime || cache_.valid.Contains(t));
  }
  void ReadSpace(corvanta::TimeValue t, bool useRotation, corvanta::Interval& valid);
  void ReadPoints(corvanta::TimeValue t, Flags use, corvanta::Interval& valid);
  void ReadTangents(int row, corvanta::TimeValue t, const corvanta::Matrix3& tm, PointFrame& frame,
                    corvanta::Interval& valid) const;
  void ReadJoints(corvanta::TimeValue t, corvanta::Interval& valid);
  CurveWave ReadWave(corvanta::TimeValue t, corvanta::Interval& valid) const;
  void Pose(corvanta::TimeValue t, Flags use, corvanta::Interval& valid);

  bool MayUse(corvanta::INode* node) const;
  void NeedRow(corvanta::ParamID id, int index);
  bool SetTangentNode(corvanta::ParamID id, int index, corvanta::INode* node);
  corvanta::INode* TangentNode(corvanta::ParamID id, int index) const;
  void TakeInnerTangent(corvanta::ParamID nodes, corvanta::ParamID inner, int index);
  void PutTangent(corvanta::ParamID nodes, corvanta::ParamID inner, int row, const corvanta::Matrix3& pointTM,
                  const corvanta::Point3& offset);

  int NumJoints() const;
  corvanta::INode* Joint(int i) const;
  void JointsChanged();
  void Adopt(corvanta::INode* joint, corvanta::INode* self, int i, int n);
  void Rearrange(corvanta::INode* joint, int i, int n);
  void Release(corvanta::INode* joint, int i);
  void RememberJoints();

  bool IsShown(corvanta::ParamID id, const corvanta::INode* node) const;
  bool IsPartSelected() const;

  corvanta::ParamBlock2* block_ = nullptr;
  Cache cache_;
  bool evaluating_ = false;
  int evaluations_ = 0;
  /// The joints as they were last told, to see which have left.
  std::vector<corvanta::AnimHandle> adopted_;
  bool adopting_ = false;
};

}  // namespace tavrilon
