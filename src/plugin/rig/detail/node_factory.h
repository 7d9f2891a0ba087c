// SPDX-License-Identifier: MIT
// The three kinds of node that a rig is made of, and how they hang on one another. Every control is made in figure
// mode: whatever the builders then do to its matrix lands in the control's offset, so that the finished rig rests at
// zero.
#pragma once

#include <array>
#include <map>
#include <span>
#include <vector>

#include "host/scene/scene.h"
#include "plugin/rig/rig_system.h"
#include "plugin/shapes/shape_type.h"

namespace tavrilon::detail {

using corvanta::INode;

/// A control and the bone that follows it: what later parts hang on.
struct Anchor {
  INode* control = nullptr;
  INode* bone = nullptr;
};

/// A base name: word, side and up to two indices from 0.
struct PartName {
  WStr word;
  int side = kSideCenter;
  int index = -1;
  int subIndex = -1;
  WStr Base() const { return PointName(word, side, index, subIndex); }
};

struct ControlSpec {
  PartName name;
  Matrix3 tm;
  INode* parent = nullptr;
  ShapeType shape = ShapeType::Circle;
  float size = 1;
  /// Fingers, toes and tweaks take the darker colour of their side.
  bool secondary = false;
  int rotationOrder = 0;
  Point3 shapeOffset;
  /// 0 lays the outline around the bone.
  int shapeAxis = 0;
  int mirrorPosAxis = 2;
  int mirrorRotAxis = 2;
  WStr group;
};

struct BoneSpec {
  PartName name;
  Matrix3 tm;
  INode* parent = nullptr;
  float length = 1;
  /// 0 draws it slim, by its length.
  float width = 0;
  bool taper = true;
  bool lock = false;
  /// The control that the bone follows; null leaves it where it is made.
  INode* follows = nullptr;
};

/// What one build has made so far. Valid from preparation to finish.
struct BuildState {
  std::vector<INode*> rightControls, leftControls, controls, bones, helpers;
  corvanta::Ref<corvanta::SceneLayer> controlLayer, helperLayer, boneLayer;
  INode* main = nullptr;
  /// The root bone, or main without one: what the topmost bones hang on.
  INode* root = nullptr;
  INode* torso = nullptr;
  INode* chest = nullptr;
  /// What the neck follows: the control at the spine's last point.
  INode* spineTop = nullptr;
  INode* head = nullptr;
  /// By the name of the point that a part hangs on.
  std::map<WStr, Anchor> anchors;
  /// Nodes whose parent was not there yet, with the name of the point they hang on.
  struct Pending {
    INode* control;
    INode* bone;
    WStr point;
  };
  std::vector<Pending> pending;
};

class NodeFactory {
 public:
  NodeFactory(RigSystem& rig, BuildState& state) : rig_(rig), state_(state) {}

  /// A `ControlShape` under a `RigControl` in figure mode, with its manager, colour, mirror side and layer. Null when
  /// the host makes no node.
  INode* MakeControl(const ControlSpec& spec);
  INode* MakeBone(const BoneSpec& spec);
  INode* MakeHelper(const PartName& name, const Matrix3& tm, INode* parent, float size);

  struct ParentTarget {
    INode* node;
    /// 100 for a target alone.
    float weight;
  };
  /// `node` follows the blend of `targets` without being a child of them, and keeps its place: every target has the
  /// offset that gives the node's present parent. Gives the constraint's block; null without a node or a target.
  corvanta::ParamBlock2* BindParents(INode* node, std::span<const ParentTarget> targets);
  corvanta::ParamBlock2* BindParent(INode* node, INode* target) {
    return BindParents(node, std::array<ParentTarget, 1>{{{target, 100}}});
  }

 private:
  INode* MakeNode(corvanta::Object* object, const wchar_t* kind, const WStr& base);
  void SetShape(const ControlSpec& spec, corvanta::ParamBlock2& block) const;
  void SetSide(const ControlSpec& spec, INode* node);
  void AddManager(const ControlSpec& spec, INode* node) const;

  RigSystem& rig_;
  BuildState& state_;
};

/// The block of the node's manager; null when the node has none.
corvanta::ParamBlock2* ManagerBlock(INode* node);

}  // namespace tavrilon::detail
