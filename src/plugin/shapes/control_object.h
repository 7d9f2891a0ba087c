// SPDX-License-Identifier: MIT
// Forwards an object's operations to its ControlCore; the base is a spline shape or a helper.
#pragma once

#include "host/scene/node.h"
#include "plugin/frame/weak_ref_owner.h"
#include "plugin/shapes/control_core.h"
#include "plugin/shapes/control_params.h"
#include "plugin/shapes/gizmo.h"

namespace tavrilon {

template <class Base>
class ControlObject : public Base, public WeakRefOwner {
 public:
  ControlObject(const corvanta::ParamBlockDesc2& block, const corvanta::FPInterfaceDesc& published, bool loading)
      : core_(*this, published) {
    if (!loading) this->BindReference(0, new corvanta::ParamBlock2(block));
  }

  ControlCore& Core() { return core_; }
  corvanta::ParamBlock2* GetParamBlock() override { return core_.block; }

  void* GetInterface(uint32_t request) override {
    return request == WeakRefOwner::kRequest ? static_cast<WeakRefOwner*>(this) : Base::GetInterface(request);
  }
  corvanta::FPInterface* GetInterface(const corvanta::Interface_ID& id) override {
    return id == core_.GetDesc().id ? &core_ : Base::GetInterface(id);
  }
  int NumInterfaces() const override { return 1; }
  corvanta::FPInterface* GetInterfaceAt(int i) override { return i == 0 ? &core_ : nullptr; }

  int NumRefs() const override { return 1; }
  corvanta::ReferenceTarget* GetReference(int which) const override { return which == 0 ? core_.block : nullptr; }
  int NumSubs() const override { return 1; }
  corvanta::Animatable* SubAnim(int i) override { return i == 0 ? core_.block : nullptr; }
  corvanta::WStr SubAnimName(int) override { return L"Parameter"; }
  int SubNumToRefNum(int subAnim) override { return subAnim == 0 ? 0 : -1; }
  corvanta::RefResult NotifyRefChanged(const corvanta::Interval&, corvanta::ReferenceTarget*, corvanta::PartID&,
                                       corvanta::RefMessage, bool) override {
    core_.OutlineChanged();
    DropSelector(false);
    return corvanta::REF_SUCCEED;
  }
  void CopyStateFrom(corvanta::ReferenceTarget& source, corvanta::RemapDir&) override {
    core_.RestoreFaceSel(static_cast<ControlObject&>(source).core_.FaceSel());
  }
  corvanta::IOResult Save(corvanta::ISave& save) override { return core_.Save(save); }
  corvanta::IOResult Load(corvanta::ILoad& load) override { return core_.Load(load); }

  void Display(corvanta::TimeValue t, corvanta::INode* node, corvanta::GraphicsWindow& view) override {
    core_.Display(t, node, view);
  }
  corvanta::Box3 GetLocalBoundBox(corvanta::TimeValue t, corvanta::INode*) override { return core_.GetBox(t); }

  // Levels: gizmo, and polygon when the selector has a mesh.
  int NumSubObjTypes() const override { return core_.HasSelector() ? 2 : 1; }
  corvanta::WStr GetSubObjType(int i) const override {
    return i == 0 ? L"Gizmo" : i == 1 && NumSubObjTypes() == 2 ? L"Polygon" : L"";
  }
  void ActivateSubobjSel(int level) override {
    Base::ActivateSubobjSel(level >= 0 && level <= NumSubObjTypes() ? level : kObjectLevel);
  }
  void SelectSubComponent(std::span<const corvanta::HitRecord> hits, bool selected, bool all, bool invert) override {
    if (this->subObjLevel_ == kPolygonLevel) core_.SelectFaces(hits, selected, all, invert);
  }
  void ClearSelection(int level) override {
    if (level == kPolygonLevel) core_.SelectAllFaces(false);
  }
  void SelectAll(int level) override {
    if (level == kPolygonLevel) core_.SelectAllFaces(true);
  }
  void InvertSelection(int level) override {
    if (level == kPolygonLevel) core_.InvertFaces();
  }

  std::vector<Point3> GetSubObjectCenters(corvanta::TimeValue t, corvanta::INode* node) override {
    if (this->subObjLevel_ != kGizmoLevel || !node) return {};
    return {core_.DrawnGizmo(t).GetTrans() * node->GetObjectTM(t)};
  }
  std::vector<Matrix3> GetSubObjectTMs(corvanta::TimeValue t, corvanta::INode* node) override {
    if (this->subObjLevel_ != kGizmoLevel || !node) return {};
    return {core_.DrawnGizmo(t) * node->GetObjectTM(t)};
  }
  /// `parent` is the object's place in the world, `axis` the tool's axes there.
  void Move(corvanta::TimeValue t, const Matrix3& parent, const Matrix3& axis, const Point3& v, bool) override {
    core_.DragGizmo(t, parent, WorldMove(axis, v));
  }
  void Rotate(corvanta::TimeValue t, const Matrix3& parent, const Matrix3& axis, const Quat& q, bool own) override {
    core_.DragGizmo(t, parent, WorldRotate(AboutOrigin(t, parent, axis, own), q));
  }
  void Scale(corvanta::TimeValue t, const Matrix3& parent, const Matrix3& axis, const Point3& s, bool own) override {
    core_.DragGizmo(t, parent, WorldScale(AboutOrigin(t, parent, axis, own), s));
  }

 protected:
  void SetReference(int which, corvanta::ReferenceTarget* target) override {
    if (which != 0) return;
    core_.block = static_cast<corvanta::ParamBlock2*>(target);
    core_.OutlineChanged();
    core_.SelectorChanged();
  }
  corvanta::ReferenceTarget* WeakOwner() override { return this; }
  corvanta::ParamBlock2* GetWeakBlock() const override { return core_.block; }
  /// A mesh that only moves changes too when modifiers keep its points in the world.
  bool PassesOn(corvanta::ParamID, int, const corvanta::RefNotice& notice) override {
    DropSelector(notice.message == corvanta::REFMSG_TARGET_DELETED);
    return false;
  }

  ControlCore core_;

 private:
  /// A node that is being deleted still answers, so it is told apart.
  void DropSelector(bool deleted) {
    core_.SelectorChanged();
    if (this->subObjLevel_ == kPolygonLevel && (deleted || !core_.HasSelector())) this->subObjLevel_ = kObjectLevel;
  }
  Matrix3 AboutOrigin(corvanta::TimeValue t, const Matrix3& parent, Matrix3 axis, bool own) const {
    if (own) axis.SetTrans(core_.DrawnGizmo(t).GetTrans() * parent);
    return axis;
  }
};

}  // namespace tavrilon
