// SPDX-License-Identifier: MIT
// Nodes of the scene. A node's matrix is pulled: the parent's matrix goes through the transform controller, and the
// result is kept while its interval holds. A change message drops it, with those of all descendants.
#pragma once

#include <map>

#include "host/core/state_restore.h"
#include "host/scene/object.h"

namespace corvanta {

class Scene;
class SceneLayer;
class Mtl;

/// What a node holds outside its references; one struct, so that undo and files see it whole.
struct NodeState {
  WStr name;
  uint32_t wireColour = 0xC8C8C8;
  bool hidden = false;
  bool frozen = false;
  bool renderable = true;
  bool boneOn = false;
  bool boneFreeze = false;
  bool boneAutoAlign = true;
  /// Bits: move X, Y, Z, rotate X, Y, Z, scale X, Y, Z. Honoured by tools, not by SetNodeTM.
  uint16_t locks = 0;
  Point3 offsetPos;
  Quat offsetRot;
  ScaleValue offsetScale;
  Ref<SceneLayer> layer;
  std::map<WStr, WStr> userProps;
};

class INode final : public ReferenceTarget {
 public:
  explicit INode(Scene& scene, bool isRoot = false);
  ~INode() override;

  static constexpr Class_ID kClassId{kHostClassWord, 0x120};
  SClass_ID SuperClassID() const override { return kNodeSuper; }
  Class_ID ClassID() const override { return kClassId; }
  WStr GetClassName() const override { return L"Node"; }
  INode* AsNode() override { return this; }

  /// The matrix at `t` is at hand and need not be computed.
  bool HasNodeTM(TimeValue t) const { return tmValid_.Contains(t); }
  /// World matrix at `t`. Asked for while it is being computed, it gives the last known matrix.
  const Matrix3& GetNodeTM(TimeValue t) { return tmValid_.Contains(t) ? tm_ : Evaluate(t); }
  const Matrix3& GetNodeTM(TimeValue t, Interval& valid) {
    const Matrix3& tm = GetNodeTM(t);
    valid &= tmValid_;
    return tm;
  }
  /// Sends the transform controller a set packet. Undoable.
  void SetNodeTM(TimeValue t, const Matrix3& tm);
  /// The parent's world matrix; identity below the root.
  Matrix3 GetParentTM(TimeValue t) { return parent_ ? parent_->GetNodeTM(t) : Matrix3(); }
  /// Object offset times node matrix: where the object is drawn.
  Matrix3 GetObjectTM(TimeValue t) { return GetObjOffsetTM() * GetNodeTM(t); }
  /// How often a matrix was asked for while it was being computed, in this process. Stays 0 on a sound rig.
  static int ReentryCount();

  bool IsRootNode() const { return isRoot_; }
  /// False for a node that was deleted and lives only in undo.
  bool IsInScene() const { return inScene_; }
  Scene& GetScene() const { return *scene_; }
  INode* GetParentNode() const { return parent_; }
  int NumberOfChildren() const { return static_cast<int>(children_.size()); }
  /// Null beyond the end.
  INode* GetChildNode(int i) const {
    return i >= 0 && i < NumberOfChildren() ? children_[static_cast<size_t>(i)] : nullptr;
  }
  const std::vector<INode*>& Children() const { return children_; }
  /// Makes `child` a child of this node, at the world place it has when `keepPos` is on. A loop, the root as a child
  /// and a tree deeper than kMaxDepth are refused. Undoable.
  bool AttachChild(INode* child, bool keepPos = true);
  bool IsAncestorOf(const INode* node) const;
  static constexpr int kMaxDepth = 1000;

  Control* GetTMController() const { return tmController_; }
  /// Undoable. Does not call Copy.
  bool SetTMController(Control* control);
  Control* GetVisController() const { return visController_; }
  bool SetVisController(Control* control);
  Mtl* GetMtl() const { return material_; }
  /// Undoable. Null takes the material off; the wire colour shows then.
  bool SetMtl(Mtl* material);
  Object* GetObjectRef() const { return object_; }
  /// Undoable.
  void SetObjectRef(Object* object);
  /// The object under all modifiers; null without one.
  Object* GetBaseObject() const { return object_ ? object_->GetBaseObject() : nullptr; }
  /// Puts a modifier on top, wrapping the object in a derived object first where there is none. Undoable.
  void AddModifier(Modifier* modifier);
  /// Modifiers of all derived objects, from the top.
  std::vector<Modifier*> Modifiers() const;

  const NodeState& State() const { return state_; }
  const WStr& GetName() const { return state_.name; }
  /// Any text, also one that is in use. Undoable.
  void SetName(const WStr& name);
  uint32_t GetWireColor() const { return state_.wireColour; }
  void SetWireColor(uint32_t rgb);
  bool IsHidden() const;
  void Hide(bool on);
  bool IsFrozen() const;
  void Freeze(bool on);
  void SetRenderable(bool on);
  void SetBoneOnOff(bool on);
  void SetBoneFreeze(bool on);
  void SetBoneAutoAlign(bool on);
  uint16_t GetTransformLocks() const { return state_.locks; }
  void SetTransformLocks(uint16_t locks);
  Point3 GetObjOffsetPos() const { return state_.offsetPos; }
  Quat GetObjOffsetRot() const { return state_.offsetRot; }
  ScaleValue GetObjOffsetScale() const { return state_.offsetScale; }
  void SetObjOffsetPos(const Point3& p);
  void SetObjOffsetRot(const Quat& q);
  void SetObjOffsetScale(const ScaleValue& s);
  Matrix3 GetObjOffsetTM() const;
  SceneLayer* GetLayer() const { return state_.layer.Get(); }
  void SetLayer(SceneLayer* layer);
  WStr GetUserPropString(const WStr& key) const;
  void SetUserPropString(const WStr& key, const WStr& value);
  bool Selected() const { return selected_; }
  uint32_t GetHandle() const { return handle_; }

  /// Box of the object in world space.
  Box3 GetWorldBoundBox(TimeValue t);

  // References: 0 transform controller, 1 object, 2 visibility controller, 3 material.
  int NumRefs() const override { return 4; }
  ReferenceTarget* GetReference(int which) const override;
  int NumSubs() const override { return 4; }
  Animatable* SubAnim(int i) override { return GetReference(i); }
  WStr SubAnimName(int i) override;
  int SubNumToRefNum(int i) override { return i; }
  bool CanAssignController(int subAnim) override { return subAnim == 0 || subAnim == 2; }
  bool AssignController(Control* control, int subAnim) override;
  RefResult NotifyRefChanged(const Interval& interval, ReferenceTarget* target, PartID& part, RefMessage message,
                             bool propagate) override;
  ReferenceTarget* Clone(RemapDir& remap) override;

  /// Drops the kept matrices of this node and all descendants, and tells their dependents.
  void InvalidateTM();
  /// After undo or redo of the plain state.
  void StateRestored();
  /// The whole plain state at once, for loading and cloning. Undoable.
  void SetState(const NodeState& state);

 protected:
  void SetReference(int which, ReferenceTarget* target) override;
  bool DiesWithLastDependent() const override { return false; }

 private:
  friend class Scene;
  friend class NodeDetachment;
  friend class ParentRestore;
  const Matrix3& Evaluate(TimeValue t);
  void CloneInto(INode& clone, RemapDir& remap);
  void DropMatrices();
  void TellDescendants(const RefNotice& notice);
  void Touch();
  template <class T>
  void SetField(T NodeState::*field, const T& value, RefMessage message, PartID part);

  // What evaluation reads comes first.
  Interval tmValid_ = NEVER;
  bool evaluating_ = false;
  bool isRoot_ = false;
  bool inScene_ = false;
  bool selected_ = false;
  Matrix3 tm_;
  Control* tmController_ = nullptr;
  INode* parent_ = nullptr;
  Object* object_ = nullptr;
  Control* visController_ = nullptr;
  Mtl* material_ = nullptr;
  std::vector<INode*> children_;
  Scene* scene_;
  uint32_t handle_ = 0;
  NodeState state_;
};

}  // namespace corvanta
