// SPDX-License-Identifier: MIT
// What a curve chain shows to scripts and to builders beside its parameters: its control points.
#pragma once

#include "host/core/published.h"
#include "host/scene/node.h"
#include "plugin/frame/class_table.h"
#include "plugin/solvers/chain_params.h"

namespace tavrilon {

/// What comes with a new control point. Radians; fractions.
struct CurvePointOptions {
  int type = curve_ik_chain::kSmooth;
  corvanta::INode* inTangent = nullptr;
  corvanta::INode* outTangent = nullptr;
  float twist = 0;
  float amplitude = 1;
  bool useTangentNodes = true;
};

/// Published under the script name "interface" with the class's own ID. Indices beyond the points raise the host's tab
/// exception. Setters give false when a node is refused because it depends on the chain, and are undoable.
class ICurveIKChain : public corvanta::FPMixinInterface {
 public:
  static constexpr corvanta::Interface_ID kId{ClassIdOf(TavrilonClass::CurveIKChain).a,
                                              ClassIdOf(TavrilonClass::CurveIKChain).b};
  enum Function : int {
    kNumPoints = 0,
    kAddPoint = 1,
    kRemovePoint = 2,
    kSetPoint = 5,
    kGetPoint = 6,
    kSetPointType = 7,
    kGetPointType = 8,
    kSetInTangent = 9,
    kGetInTangent = 10,
    kSetOutTangent = 11,
    kGetOutTangent = 12,
    kSetTwist = 13,
    kGetTwist = 14,
    kSetAmplitude = 15,
    kGetAmplitude = 16,
    kResetLength = 17,
    kResetTangents = 18,
    kSetUseTangentNodes = 19,
    kGetUseTangentNodes = 20,
  };

  virtual int NumPoints() const = 0;
  /// Appends a control point. False without a node, and when one of the nodes is refused.
  virtual bool AddPoint(corvanta::INode* point, const CurvePointOptions& options = {}) = 0;
  virtual bool RemovePoint(int index) = 0;
  virtual bool SetPoint(int index, corvanta::INode* point) = 0;
  virtual corvanta::INode* GetPoint(int index) const = 0;
  /// False for a number that is no type.
  virtual bool SetPointType(int index, int type) = 0;
  virtual int GetPointType(int index) const = 0;
  virtual bool SetInTangent(int index, corvanta::INode* node) = 0;
  virtual corvanta::INode* GetInTangent(int index) const = 0;
  virtual bool SetOutTangent(int index, corvanta::INode* node) = 0;
  virtual corvanta::INode* GetOutTangent(int index) const = 0;
  /// Radians, at a time: the values are animatable.
  virtual bool SetTwist(int index, float twist, corvanta::TimeValue t) = 0;
  virtual float GetTwist(int index, corvanta::TimeValue t) const = 0;
  virtual bool SetAmplitude(int index, float amplitude, corvanta::TimeValue t) = 0;
  virtual float GetAmplitude(int index, corvanta::TimeValue t) const = 0;
  /// Takes the length that the joints have on the curve now for the length at rest: with `auto_stretch` 0 they then
  /// stay where they are.
  virtual void ResetLength() = 0;
  /// Puts the tangent nodes, and the inner tangents of points that go without nodes, where those of smooth points are.
  virtual void ResetTangents() = 0;
  /// Off: the point's tangents come from the inner ones, which take over the nodes' places now.
  virtual bool SetUseTangentNodes(int index, bool on) = 0;
  virtual bool GetUseTangentNodes(int index) const = 0;

  const corvanta::FPInterfaceDesc& GetDesc() const override;
  corvanta::FPStatus Invoke(int id, corvanta::TimeValue t, corvanta::FPValue& result,
                            std::span<const corvanta::FPValue> args) override;
};

}  // namespace tavrilon
