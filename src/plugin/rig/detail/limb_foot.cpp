// SPDX-License-Identifier: MIT
// The reverse foot: nested pivots between the foot control and the goal. Each stands on the point about which the foot
// turns, so that the motion of one attribute leaves that point on the ground:
//
//   heel > outer > inner > tip > ball > goal
//                            tip > toe
//
// Roll above 0 lifts the heel over the ball up to the break, then rolls over the tip; below 0 it lifts the toes over
// the heel. Banking above 0 tips to the outer edge, pivots above 0 turn the toes outward, bend above 0 lifts the toes.
#include "host/core/hold.h"
#include "host/core/param_block.h"
#include "plugin/attributes/attributes.h"
#include "plugin/connections/connect.h"
#include "plugin/rig/detail/limb.h"
#include "plugin/rig/detail/wiring.h"

namespace tavrilon::detail {

using namespace corvanta;

namespace {

using float_operation::Op;
constexpr int kPivotRotationOrder = 5;

/// Turns about the width of the foot are the same on both sides, the others change sign with it.
enum class Sign { Plus, Minus, Side, AgainstSide };

/// An angle of a pivot: op(a, b) * sign, within the limits.
struct PivotWire {
  const wchar_t* pivot;
  int axis;
  Op op;
  foot_attrib::Param a;
  /// The second operand, or -1.
  int b;
  Sign sign;
  /// Of the operation, for Clamp and ClampTo.
  float lo = 0, hi = 0;
  /// Of the result.
  float min = 0, max = 0;
};

using namespace foot_attrib;
constexpr PivotWire kPivotWires[] = {
    {L"_heel", 2, Op::Clamp, kFootRoll, -1, Sign::Minus, -kPi, 0},
    {L"_heel", 1, Op::A, kHeelPivot, -1, Sign::AgainstSide},
    {L"_outer", 0, Op::Max, kBanking, -1, Sign::Side},
    {L"_inner", 0, Op::Min, kBanking, -1, Sign::Side},
    {L"_tip", 2, Op::Subtract, kFootBreak, kFootRoll, Sign::Plus, 0, 0, -kPi, 0},
    {L"_tip", 1, Op::A, kToePivot, -1, Sign::AgainstSide},
    {L"_ball", 2, Op::ClampTo, kFootRoll, kFootBreak, Sign::Minus, 0, kPi},
    {L"_ball", 1, Op::A, kBallPivot, -1, Sign::AgainstSide},
    {L"_toe", 2, Op::A, kToeBend, -1, Sign::Plus},
};

float Factor(const Limb& limb, Sign sign) {
  switch (sign) {
    case Sign::Plus:
      return 1;
    case Sign::Minus:
      return -1;
    case Sign::Side:
      return limb.Sigma();
    case Sign::AgainstSide:
      return -limb.Sigma();
  }
  return 1;
}

/// An operand that follows an attribute. The break is held within half a turn, whatever the animator types.
void ConnectOperand(ParamBlock2& operation, ParamID operand, ParamBlock2& foot, int attrib) {
  ConnectionSpec spec;
  if (attrib == kFootBreak) {
    spec.transform = float_connection::kRange;
    spec.clamp = true;
    spec.inputMin = spec.outputMin = 0;
    spec.inputMax = spec.outputMax = kPi;
  }
  ConnectFloat(operation, operand, foot, static_cast<ParamID>(attrib), spec);
}

Control* NewOperation(const Limb& limb, const PivotWire& wire) {
  Control* operation = NewControl(TavrilonClass::FloatOperation);
  ParamBlock2* block = BlockOf(operation);
  if (!block) return nullptr;
  block->SetValue(float_operation::kOperation, 0, static_cast<int>(wire.op));
  block->SetValue(float_operation::kLo, 0, wire.lo);
  block->SetValue(float_operation::kHi, 0, wire.hi);
  block->SetValue(float_operation::kScale, 0, Factor(limb, wire.sign));
  if (wire.min != wire.max) {
    block->SetValue(float_operation::kClampOutput, 0, true);
    block->SetValue(float_operation::kOutMin, 0, wire.min);
    block->SetValue(float_operation::kOutMax, 0, wire.max);
  }
  ConnectOperand(*block, float_operation::kA, *limb.footAttrib, wire.a);
  if (wire.b >= 0) ConnectOperand(*block, float_operation::kB, *limb.footAttrib, wire.b);
  return operation;
}

/// The ball of the foot: the root of the first toe, or a third of the way from the tip to the heel.
Point3 BallPlace(const Limb& limb) {
  const Parts& parts = limb.parts;
  const int toe = parts.Point({limb.WordOfPair(limb.row.digit), limb.side, 0, 0});
  if (toe >= 0) return parts.Place(toe);
  const Point3 tip = parts.Place(parts.Point(limb.FootName(L"_tip")));
  const Point3 heel = parts.Place(parts.Point(limb.FootName(L"_heel")));
  return tip + (heel - tip) * 0.35f;
}

class PivotRow {
 public:
  PivotRow(Limb& limb, INode* over) : limb_(limb), last_(over), ground_(over->GetNodeTM(0)) {}

  /// A pivot under the one before.
  void AddAt(const wchar_t* suffix, const Point3& place) {
    if (INode* pivot = Make(suffix, Upright(place), last_)) last_ = pivot;
  }
  INode* Make(const wchar_t* suffix, const Matrix3& tm, INode* parent) {
    INode* pivot = limb_.parts.make.MakeHelper(limb_.FootName(suffix), tm, parent, 0);
    if (!pivot) return nullptr;
    AssignRigControl(pivot, kPivotRotationOrder);
    for (const PivotWire& wire : kPivotWires)
      if (WStr(wire.pivot) == suffix) SetRotationTrack(pivot, wire.axis, NewOperation(limb_, wire));
    return pivot;
  }
  Matrix3 Upright(const Point3& place) const {
    Matrix3 tm = ground_;
    tm.SetTrans(place);
    return tm;
  }
  INode* Last() const { return last_; }

 private:
  Limb& limb_;
  INode* last_;
  Matrix3 ground_;
};

}  // namespace

INode* BuildReverseFoot(Limb& limb, INode* over) {
  limb.footAttrib = AddAttrib(over, TavrilonClass::FootAttrib);
  if (!limb.footAttrib) return over;
  const Parts& parts = limb.parts;
  PivotRow row(limb, over);
  for (const wchar_t* suffix : {L"_heel", L"_outer", L"_inner", L"_tip"}) {
    const int point = parts.Point(limb.FootName(suffix));
    if (point >= 0) row.AddAt(suffix, parts.Place(point));
  }
  const Point3 ball = BallPlace(limb);
  limb.toe = row.Make(L"_toe", row.Upright(ball), row.Last());
  row.AddAt(L"_ball", ball);
  const Matrix3 foot = parts.TM(limb.Name(limb.row.Last().word));
  INode* goal = row.Make(L"_goal", foot, row.Last());
  return goal ? goal : over;
}

}  // namespace tavrilon::detail
