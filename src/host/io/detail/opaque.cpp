// SPDX-License-Identifier: MIT
#include "host/io/detail/opaque.h"

#include "host/core/remap.h"
#include "host/scene/material.h"

namespace corvanta {
namespace {

template <class Base>
class Opaque : public Base, public OpaqueObject {
 public:
  explicit Opaque(OpaqueState kept) {
    state = std::move(kept);
    this->SetFlag(A_PLACEHOLDER);
  }

  SClass_ID SuperClassID() const override { return state.superClass; }
  Class_ID ClassID() const override { return state.classId; }
  WStr GetClassName() const override { return state.className; }
  int NumRefs() const override { return static_cast<int>(state.refs.size()); }
  ReferenceTarget* GetReference(int which) const override {
    return which >= 0 && which < NumRefs() ? state.refs[static_cast<size_t>(which)] : nullptr;
  }
  int NumSubs() const override { return NumRefs(); }
  Animatable* SubAnim(int i) override { return GetReference(i); }
  WStr SubAnimName(int i) override { return Format(L"Reference %d", i); }
  std::optional<bool> AcceptsReference(int, const ReferenceTarget&) const override { return true; }
  int NumIndirectRefs() const override { return static_cast<int>(weak.size()); }
  ReferenceTarget* GetIndirectRef(int i) const override {
    return i >= 0 && i < NumIndirectRefs() ? weak[static_cast<size_t>(i)]->Target() : nullptr;
  }
  void SetIndirectRef(int i, ReferenceTarget* target) override { SetWeak(i, target); }

  ReferenceTarget* Clone(RemapDir& remap) override {
    OpaqueState kept = state;
    kept.refs.assign(kept.refs.size(), nullptr);
    ReferenceTarget* clone = NewOpaque(std::move(kept));
    remap.AddEntry(this, clone);
    CopyTo(*dynamic_cast<OpaqueObject*>(clone), remap);
    this->CloneReferencesInto(*clone, remap);
    return clone;
  }

 protected:
  void SetReference(int which, ReferenceTarget* target) override {
    if (which >= 0 && which < NumRefs()) state.refs[static_cast<size_t>(which)] = target;
  }
};

/// Gives zero, identity, or the parent's matrix as it comes.
class OpaqueControl final : public Opaque<Control> {
 public:
  using Opaque::Opaque;
  void GetValue(TimeValue, ValueRef value, Interval&, GetSetMethod method) override {
    if (method == CTRL_RELATIVE) return;
    switch (value.Kind()) {
      case ValueKind::Float:
        value.Float() = 0;
        break;
      case ValueKind::Point3:
        value.Point3() = {};
        break;
      case ValueKind::Point4:
        value.Point4() = {};
        break;
      case ValueKind::Quat:
        value.Quat() = {};
        break;
      case ValueKind::AngAxis:
        value.AngAxis() = {};
        break;
      case ValueKind::Scale:
        value.Scale() = {};
        break;
      case ValueKind::Matrix3:
        value.Matrix3() = {};
        break;
      case ValueKind::Packet:
        break;
    }
  }
  void SetValue(TimeValue, ValueRef, bool, GetSetMethod) override {}
  bool IsLeaf() const override { return NumRefs() == 0; }
};

/// Grey.
class OpaqueMtl final : public Opaque<Mtl> {
 public:
  using Opaque::Opaque;
  Colour DisplayColour(TimeValue, int) override { return {0.5f, 0.5f, 0.5f}; }
};

bool IsControlSuper(SClass_ID super) {
  switch (super) {
    case kFloatControlSuper:
    case kPoint3ControlSuper:
    case kMatrixControlSuper:
    case kPositionControlSuper:
    case kRotationControlSuper:
    case kScaleControlSuper:
    case kPoint4ControlSuper:
      return true;
    default:
      return false;
  }
}

}  // namespace

void OpaqueObject::SetWeak(int i, ReferenceTarget* target) {
  if (i < 0) return;
  while (static_cast<int>(weak.size()) <= i) weak.push_back(std::make_unique<RefTargMonitor>());
  weak[static_cast<size_t>(i)]->SetTarget(target);
}

void OpaqueObject::CopyTo(OpaqueObject& clone, RemapDir& remap) const {
  for (size_t i = 0; i < weak.size(); ++i) clone.SetWeak(static_cast<int>(i), weak[i]->RawTarget());
  remap.AddPostPatchProc([&clone](RemapDir& map) {
    for (const auto& link : clone.weak)
      if (ReferenceTarget* mapped = link->RawTarget() ? map.Find(link->RawTarget()) : nullptr) link->SetTarget(mapped);
  });
}

ReferenceTarget* NewOpaque(OpaqueState state) {
  if (IsControlSuper(state.superClass)) return new OpaqueControl(std::move(state));
  switch (state.superClass) {
    case kGeomObjectSuper:
    case kShapeSuper:
    case kHelperSuper:
    case kSystemSuper:
    case kDerivedObjectSuper:
      return new Opaque<Object>(std::move(state));
    case kModifierSuper:
      return new Opaque<Modifier>(std::move(state));
    case kMaterialSuper:
      return new OpaqueMtl(std::move(state));
    case kTextureMapSuper:
      return new Opaque<Texmap>(std::move(state));
    case kCustAttribSuper:
      return new Opaque<CustAttrib>(std::move(state));
    default:
      return new Opaque<ReferenceTarget>(std::move(state));
  }
}

}  // namespace corvanta
