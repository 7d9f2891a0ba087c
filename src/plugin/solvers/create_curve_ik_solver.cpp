// SPDX-License-Identifier: MIT
#include "plugin/solvers/create_curve_ik_solver.h"

#include <algorithm>

#include "host/core/hold.h"
#include "host/scene/bone_object.h"
#include "host/scene/core_interface.h"
#include "host/scene/point_helper.h"
#include "host/script/primitives.h"
#include "plugin/constraints/transform_constraint.h"
#include "plugin/frame/rig_maths.h"
#include "plugin/frame/script_primitives.h"
#include "plugin/shapes/control_params.h"
#include "plugin/shapes/control_shape.h"
#include "plugin/shapes/shape_type.h"
#include "plugin/solvers/curve_ik_chain.h"
#include "plugin/solvers/curve_ik_control.h"

namespace tavrilon {

using namespace corvanta;

namespace {

constexpr uint32_t kControlColour = 0xFFD200, kTangentColour = 0x00A0FF, kChainColour = 0xC8C8C8;
// More than anyone places, and few enough to build in a moment.
constexpr int kMostNodes = 1000;

/// The line through the joints, by its length.
class JointLine {
 public:
  explicit JointLine(const std::vector<INode*>& joints) : now_(GetCOREInterface()->GetTime()) {
    for (INode* joint : joints) {
      const Point3 place = joint->GetNodeTM(now_).GetTrans();
      ways_.push_back(places_.empty() ? 0 : ways_.back() + Length(place - places_.back()));
      places_.push_back(place);
    }
    firstY_ = joints[0]->GetNodeTM(now_).row[1];
  }
  float Way() const { return ways_.back(); }
  /// The share of the length at which joint `i` stands.
  float Share(size_t i) const { return ways_[i] / ways_.back(); }

  /// Frames at even distances from the first joint to the last: X along the line, Y that of the first joint, carried
  /// on by the smallest turns.
  std::vector<Matrix3> Frames(int count) const {
    std::vector<Matrix3> frames;
    for (int i = 0; i < count; ++i) {
      const float way = ways_.back() * static_cast<float>(i) / static_cast<float>(count - 1);
      const size_t piece = PieceAt(way);
      const Point3 along = Normalize(places_[piece + 1] - places_[piece]);
      Matrix3 tm = frames.empty() ? FrameFromVectors(along, firstY_)
                                  : frames.back() * QuatMatrix(RotationBetween(frames.back().row[0], along));
      const float length = ways_[piece + 1] - ways_[piece];
      tm.SetTrans(Lerp(places_[piece], places_[piece + 1], length > 0 ? (way - ways_[piece]) / length : 0));
      frames.push_back(tm);
    }
    return frames;
  }

 private:
  // The piece that a way lies in, at a joint the one behind it; never one without length.
  size_t PieceAt(float way) const {
    size_t piece = 0;
    for (size_t i = 0; i + 1 < ways_.size(); ++i)
      if (ways_[i + 1] > ways_[i] && ways_[i] <= way) piece = i;
    return piece;
  }
  TimeValue now_;
  std::vector<Point3> places_;
  std::vector<float> ways_;
  Point3 firstY_;
};

class SolverBuilder {
 public:
  SolverBuilder(const std::vector<INode*>& joints, const CurveIKSolverOptions& options)
      : row_(joints), line_(joints), options_(options), parent_(joints[0]->GetParentNode()) {
    const int bones = options.bones > 0 ? options.bones : static_cast<int>(joints.size()) - 1;
    mean_ = line_.Way() / static_cast<float>(std::max(bones, 1));
  }

  INode* Build() {
    INode* node = MakeShape(L"CurveIKChain", ShapeType::IKFK, 0.3f, kChainColour, Matrix3(), parent_);
    chain_ = new CurveIKChain;
    const Ref<CurveIKChain> keep(chain_);
    node->SetTMController(chain_);
    MakePoints();
    MakeJoints();
    chain_->ResetTangents();
    chain_->ResetLength();
    return node;
  }

 private:
  INode* Make(Object* object, const WStr& name, uint32_t colour, const Matrix3& tm, INode* parent) const {
    INode* node = GetScene().CreateObjectNode(object);
    node->SetName(name);
    node->SetWireColor(colour);
    if (parent && !parent->IsRootNode()) parent->AttachChild(node, false);
    node->SetNodeTM(GetCOREInterface()->GetTime(), tm);
    return node;
  }
  static WStr Unique(const wchar_t* base) { return GetScene().MakeUniqueName(base); }

  /// `size` in mean bones.
  INode* MakeShape(const wchar_t* base, ShapeType type, float size, uint32_t colour, const Matrix3& tm,
                   INode* parent) const {
    auto* shape = new ControlShape;
    INode* node = Make(shape, Unique(base), colour, tm, parent);
    ParamBlock2& block = *shape->GetParamBlock();
    block.SetValue(kControlType, 0, static_cast<int>(type));
    block.SetValue(kControlSize, 0, size * mean_);
    block.SetValue(kControlAxis, 0, 0);
    node->SetRenderable(false);
    return node;
  }

  INode* MakeHelper(const wchar_t* base, float size, uint32_t colour, const Matrix3& tm, INode* parent) const {
    auto* point = new PointHelper;
    INode* node = Make(point, Unique(base), colour, tm, parent);
    point->GetParamBlock()->SetValue(PointHelper::kSize, 0, size * mean_);
    return node;
  }

  INode* MakeTangent(const wchar_t* base, const Matrix3& tm, INode* point) const {
    return options_.tangentControls ? MakeShape(base, ShapeType::Sphere, 0.15f, kTangentColour, tm, point)
                                    : MakeHelper(base, 0.15f, kTangentColour, tm, point);
  }

  void MakePoints() {
    const std::vector<Matrix3> frames = line_.Frames(options_.points);
    for (size_t i = 0; i < frames.size(); ++i) {
      INode* point = MakeShape(L"CurveIKPoint", ShapeType::Box, 0.5f, kControlColour, frames[i], parent_);
      CurvePointOptions with;
      with.type = options_.type;
      if (i > 0) with.inTangent = MakeTangent(L"CurveIKInTangent", frames[i], point);
      if (i + 1 < frames.size()) with.outTangent = MakeTangent(L"CurveIKOutTangent", frames[i], point);
      chain_->AddPoint(point, with);
    }
  }

  std::vector<INode*> MakeBones() const {
    std::vector<INode*> bones;
    INode* parent = parent_;
    for (int i = 0; i < options_.bones; ++i) {
      auto* bone = new BoneObject;
      bone->GetParamBlock()->SetValue(BoneObject::kLength, 0, mean_);
      bone->GetParamBlock()->SetValue(BoneObject::kWidth, 0, 0.0f);
      bone->GetParamBlock()->SetValue(BoneObject::kHeight, 0, 0.0f);
      parent = Make(bone, row_[0]->GetName() + L"_" + std::to_wstring(i + 1), kChainColour, Matrix3(), parent);
      parent->SetBoneOnOff(true);
      bones.push_back(parent);
    }
    return bones;
  }

  // New bones tile the line; joints that are there keep their place on it.
  void MakeJoints() const {
    const std::vector<INode*> bones = options_.bones > 0 ? MakeBones() : row_;
    ParamBlock2& block = *chain_->GetParamBlock();
    const int n = static_cast<int>(bones.size());
    block.SetCount(curve_ik_chain::kJoints, n);
    for (int i = 0; i < n; ++i) {
      INode* bone = bones[static_cast<size_t>(i)];
      INode* joint = options_.bonesControls ? MakeHelper(L"CurveIKJoint", 0.1f, kChainColour, {}, parent_) : bone;
      block.SetValue(curve_ik_chain::kJoints, 0, joint, i);
      const float share =
          options_.bones > 0 ? static_cast<float>(i) / static_cast<float>(n) : line_.Share(static_cast<size_t>(i));
      CurveIKControl::Of(joint)->GetParamBlock()->SetValue(curve_ik_control::kPercent, 0, share);
      if (options_.bonesControls) BindToControl(bone, joint);
    }
  }

  void BindToControl(INode* bone, INode* joint) const {
    INode* control = MakeShape(L"CurveIKControl", ShapeType::Circle, 0.8f, kControlColour, Matrix3(), joint);
    control->SetNodeTM(GetCOREInterface()->GetTime(), joint->GetNodeTM(GetCOREInterface()->GetTime()));
    auto* constraint = new TransformConstraint;
    bone->SetTMController(constraint);
    constraint->AppendTarget(control, 1);
  }

  const std::vector<INode*>& row_;
  JointLine line_;
  const CurveIKSolverOptions& options_;
  INode* parent_;
  float mean_ = 1;
  CurveIKChain* chain_ = nullptr;
};

// What keeps the builder from building; empty when nothing does.
WStr Refusal(const std::vector<INode*>& row, const CurveIKSolverOptions& options) {
  if (row.size() < 2) return L"The end joint must hang below the start joint";
  if (!(JointLine(row).Way() > 0)) return L"The joints must not all stand on one place";
  if (options.points < 2 || options.points > kMostNodes) return L"Expected 2 to 1000 control points";
  if (options.type < curve_ik_chain::kBezierCorner || options.type > curve_ik_chain::kSmooth)
    return L"Expected a point type from 0 to 3";
  if (options.bones < 0 || options.bones > kMostNodes) return L"Expected 0 to 1000 bones";
  return {};
}

FPValue CreateFromScript(const PrimitiveArgs& args) {
  const WStr where = L", in function " + args.FunctionName();
  const auto node = [&](size_t i, const wchar_t* ordinal) {
    INode* given = i < args.Count() ? args[i].ToNode() : nullptr;
    if (!given) ThrowScriptError(WStr(L"Expected a Node for the ") + ordinal + L" argument" + where);
    return given;
  };
  INode* start = node(0, L"first");
  INode* end = node(1, L"second");
  CurveIKSolverOptions options;
  options.points = static_cast<int>(ClampValue(args.Number(2), -1.0f, 1e6f));
  options.type = static_cast<int>(ClampValue(args.Number(3), -1.0f, 1e6f));
  options.bones = static_cast<int>(ClampValue(args.Number(4), -1.0f, 1e6f));
  options.bonesControls = args.Bool(5, L"  (Bones Controls)");
  options.tangentControls = args.Bool(6, L" (Tangent Controls)");
  args.RequireCount(7);
  const WStr refusal = Refusal(JointRow(start, end), options);
  if (!refusal.empty()) ThrowScriptError(refusal + where);
  return TargetValue(CreateCurveIKSolver(start, end, options));
}

}  // namespace

std::vector<INode*> JointRow(INode* start, INode* end) {
  std::vector<INode*> row;
  if (!start || !start->IsAncestorOf(end)) return row;
  for (INode* joint = end; joint; joint = joint == start ? nullptr : joint->GetParentNode()) row.push_back(joint);
  std::reverse(row.begin(), row.end());
  return row;
}

INode* CreateCurveIKSolver(INode* start, INode* end, const CurveIKSolverOptions& options) {
  const std::vector<INode*> row = JointRow(start, end);
  if (!Refusal(row, options).empty()) return nullptr;
  const HoldScope hold(L"Create Curve IK Solver");
  return SolverBuilder(row, options).Build();
}

void RegisterCurveIKSolverPrimitive() { RegisterScriptPrimitive(L"CreateCurveIKSolver", CreateFromScript); }
void UnregisterCurveIKSolverPrimitive() { UnregisterScriptPrimitive(L"CreateCurveIKSolver"); }

}  // namespace tavrilon
