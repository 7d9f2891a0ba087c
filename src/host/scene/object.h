// SPDX-License-Identifier: MIT
// What a node carries: objects, and the modifiers stacked on them.
#pragma once

#include <memory>
#include <span>

#include "host/core/hold.h"
#include "host/core/param_block.h"
#include "host/maths/box3.h"

namespace corvanta {

class GraphicsWindow;
struct HitRecord;
struct MeshState;
struct KeptMesh;

/// Base of every object and of what can be edited below object level.
class BaseObject : public ReferenceTarget {
 public:
  /// Draws in the node's space: the window's transform is the object offset times the node matrix already.
  /// Picking draws into a hit-testing window.
  virtual void Display(TimeValue t, INode* node, GraphicsWindow& view) {}
  /// In the object's own space, before the object offset. Empty when there is nothing to see.
  virtual Box3 GetLocalBoundBox(TimeValue t, INode* node) { return {}; }

  // Sub-object editing. Level 0 is the whole object.
  virtual int NumSubObjTypes() const { return 0; }
  virtual WStr GetSubObjType(int i) const { return {}; }
  virtual void ActivateSubobjSel(int level) { subObjLevel_ = level; }
  int SubObjLevel() const { return subObjLevel_; }
  virtual void SelectSubComponent(std::span<const HitRecord> hits, bool selected, bool all, bool invert) {}
  virtual void ClearSelection(int level) {}
  virtual void SelectAll(int level) {}
  virtual void InvertSelection(int level) {}
  /// World centres of the selected parts.
  virtual std::vector<Point3> GetSubObjectCenters(TimeValue t, INode* node) { return {}; }
  virtual std::vector<Matrix3> GetSubObjectTMs(TimeValue t, INode* node) { return {}; }
  /// Transforms of the selected parts: `parent` and `axis` as in SetXFormPacket. Undoable.
  virtual void Move(TimeValue t, const Matrix3& parent, const Matrix3& axis, const Point3& v, bool localOrigin) {}
  virtual void Rotate(TimeValue t, const Matrix3& parent, const Matrix3& axis, const Quat& q, bool localOrigin) {}
  virtual void Scale(TimeValue t, const Matrix3& parent, const Matrix3& axis, const Point3& s, bool localOrigin) {}

  /// The object's main block, null when it has none.
  virtual ParamBlock2* GetParamBlock() { return nullptr; }

 protected:
  int subObjLevel_ = 0;
};

/// May an object's evaluated mesh be kept? Only an object that drops it at every change may answer anything but No.
enum class MeshKeeping { No, ForAllNodes, ByNode };

class Object : public BaseObject {
 public:
  Object();
  ~Object() override;
  /// The object under all modifiers.
  virtual Object* GetBaseObject() { return this; }
  /// Points that modifiers may move, in the object's space; empty for objects without any.
  virtual int NumPoints(TimeValue t) { return 0; }
  /// Fills `state` with the mesh as `node` shows it at `t`; false for an object without one. A state that is passed
  /// again and again keeps its memory.
  virtual bool EvalMesh(TimeValue t, INode* node, MeshState& state) { return false; }
  /// The mesh that EvalMesh gives, kept here: asked again for one time and place of the node, nothing is computed. Null
  /// for an object without a mesh. What it points at changes with the next call.
  KeptMesh* GetKeptMesh(TimeValue t, INode* node);

 protected:
  virtual MeshKeeping KeepsMesh() const { return MeshKeeping::No; }
  void DropKeptMesh();

 private:
  std::unique_ptr<KeptMesh> keptMesh_;
};

class GeomObject : public Object {
 public:
  SClass_ID SuperClassID() const override { return kGeomObjectSuper; }
};
class HelperObject : public Object {
 public:
  SClass_ID SuperClassID() const override { return kHelperSuper; }
};
class ShapeObject : public Object {
 public:
  SClass_ID SuperClassID() const override { return kShapeSuper; }
};

/// A change of an object on its way to the screen: so far a matrix in front of what the object draws.
struct ModifiedDisplay {
  Matrix3 tm;
  bool hidden = false;
  Interval valid = FOREVER;
};

class Modifier : public ReferenceTarget {
 public:
  SClass_ID SuperClassID() const override { return kModifierSuper; }
  virtual WStr GetName() const { return GetClassName(); }
  virtual void ModifyDisplay(TimeValue t, INode* node, ModifiedDisplay& display) {}
  /// Changes the mesh that comes from below: moves points, or puts another mesh in its place; narrows its interval.
  virtual void ModifyMesh(TimeValue t, INode* node, MeshState& state) {}
  virtual ParamBlock2* GetParamBlock() { return nullptr; }
};

/// An object with modifiers: reference 0 the object below, 1 and on the modifiers, the top one first.
class DerivedObject final : public Object {
 public:
  static constexpr Class_ID kClassId{kHostClassWord, 0x110};
  SClass_ID SuperClassID() const override { return kDerivedObjectSuper; }
  Class_ID ClassID() const override { return kClassId; }
  WStr GetClassName() const override { return L"DerivedObject"; }

  Object* GetObjRef() const { return base_; }
  int NumModifiers() const { return static_cast<int>(modifiers_.size()); }
  /// Null beyond the end. 0 is the top.
  Modifier* GetModifier(int i) const;
  /// Undoable.
  void AddModifier(Modifier* modifier, int at = 0);
  /// Undoable.
  bool DeleteModifier(int i);
  /// The object below is replaced, the modifiers stay. Undoable.
  void ReferenceObject(Object* object) { ReplaceReference(0, object); }

  Object* GetBaseObject() override { return base_ ? base_->GetBaseObject() : nullptr; }
  void Display(TimeValue t, INode* node, GraphicsWindow& view) override;
  Box3 GetLocalBoundBox(TimeValue t, INode* node) override;
  int NumPoints(TimeValue t) override { return base_ ? base_->NumPoints(t) : 0; }
  bool EvalMesh(TimeValue t, INode* node, MeshState& state) override;
  ParamBlock2* GetParamBlock() override { return base_ ? base_->GetParamBlock() : nullptr; }

  int NumRefs() const override { return 1 + NumModifiers(); }
  ReferenceTarget* GetReference(int which) const override;
  int NumSubs() const override { return NumRefs(); }
  Animatable* SubAnim(int i) override { return GetReference(i); }
  WStr SubAnimName(int i) override;
  void CopyStateFrom(ReferenceTarget& source, RemapDir& remap) override;

  RefResult NotifyRefChanged(const Interval& interval, ReferenceTarget* target, PartID& part, RefMessage message,
                             bool propagate) override {
    DropKeptMesh();
    return REF_SUCCEED;
  }

  // Slots for undo and loading.
  void InsertSlot(int at) { modifiers_.insert(modifiers_.begin() + at, nullptr); }
  void RemoveSlot(int at) { modifiers_.erase(modifiers_.begin() + at); }

 protected:
  MeshKeeping KeepsMesh() const override { return MeshKeeping::ByNode; }
  void SetReference(int which, ReferenceTarget* target) override;

 private:
  ModifiedDisplay Stack(TimeValue t, INode* node) const;
  Object* base_ = nullptr;
  std::vector<Modifier*> modifiers_;
};
using IDerivedObject = DerivedObject;

DerivedObject* CreateDerivedObject(Object* object);

/// Undo of an added or removed slot in a list of references; the reference itself records on its own.
template <class Owner>
class SlotRestore final : public RestoreObj {
 public:
  SlotRestore(Owner* owner, int at, bool inserted) : owner_(owner), at_(at), inserted_(inserted) {}
  void Restore(bool) override { inserted_ ? owner_->RemoveSlot(at_) : owner_->InsertSlot(at_); }
  void Redo() override { inserted_ ? owner_->InsertSlot(at_) : owner_->RemoveSlot(at_); }

 private:
  Ref<Owner> owner_;
  int at_;
  bool inserted_;
};

}  // namespace corvanta
