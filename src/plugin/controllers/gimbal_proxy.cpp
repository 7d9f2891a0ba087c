// SPDX-License-Identifier: MIT
#include "plugin/controllers/gimbal_proxy.h"

#include "host/anim/list_control.h"
#include "host/core/hold.h"
#include "host/scene/core_interface.h"
#include "plugin/controllers/dummy_controls.h"

namespace tavrilon {

using namespace corvanta;

namespace {

bool proxyOn = true;

Control* NewRotation(Class_ID id) {
  ReferenceTarget* made = CreateInstance(kRotationControlSuper, id);
  return made ? made->AsControl() : nullptr;
}

IEulerControl* EulerOf(Control* control) {
  return control ? static_cast<IEulerControl*>(control->GetInterface(I_EULERCTRL)) : nullptr;
}

/// The list "Parent Rot", "Euler Rot", the second entry active.
class GimbalProxy {
 public:
  GimbalProxy() : list_(NewRotation(kRotationListId)), euler_(NewRotation(kEulerXyzId)) {
    const HoldSuspend noUndo;
    IListControl* entries = GetListControl(list_.Get());
    while (entries->GetListCount() > 0 && entries->Delete(0)) continue;
    parent_ = new DummyRotation;
    entries->Append(parent_);
    entries->Append(euler_.Get());
    entries->SetName(0, L"Parent Rot");
    entries->SetName(1, L"Euler Rot");
    entries->SetActive(1);
    for (int i = 0; i < 3; ++i) euler_->AssignController(axes_[i] = new DummyFloat, i);
  }

  Control* Show(const Quat& parent, IEulerControl& euler) {
    const HoldSuspend noUndo;
    parent_->Show(parent, true);
    EulerOf(euler_.Get())->SetOrder(euler.GetOrder());
    for (int i = 0; i < 3; ++i) {
      Control* track = euler.GetAxisController(i);
      const auto* dummy = IsOfClass(track, TavrilonClass::DummyFloat) ? static_cast<DummyFloat*>(track) : nullptr;
      axes_[i]->Show(dummy ? dummy->GetWrapped() : track, 0);
    }
    return list_.Get();
  }

 private:
  Ref<Control> list_, euler_;
  DummyRotation* parent_ = nullptr;
  DummyFloat* axes_[3] = {};
};

/// Lists may lie in lists; references make no circle, so this ends.
IEulerControl* FindEuler(Control* real, TimeValue t, Matrix3& before) {
  while (real) {
    if (IEulerControl* euler = EulerOf(real)) return euler;
    IListControl* list = GetListControl(real);
    if (!list) return nullptr;
    Interval valid = FOREVER;
    for (int i = 0; i < list->GetActive(); ++i)
      if (Control* entry = list->GetEntry(i)) entry->GetValue(t, before, valid, CTRL_RELATIVE);
    real = list->GetEntry(list->GetActive());
  }
  return nullptr;
}

}  // namespace

GimbalProxyOff::GimbalProxyOff() : was_(proxyOn) { proxyOn = false; }
GimbalProxyOff::~GimbalProxyOff() { proxyOn = was_; }

bool WantsGimbalProxy() { return proxyOn && GetCOREInterface()->GetRefCoordSys() == RefCoordSys::Gimbal; }

Control* ShowGimbalProxy(const Matrix3& parentRotation, Control* real, TimeValue t) {
  Matrix3 before = parentRotation;
  IEulerControl* euler = FindEuler(real, t, before);
  if (!euler) return nullptr;
  static auto* proxy = new GimbalProxy;  // holds host objects, which must not outlive the host's own statics
  return proxy->Show(QuatFromMatrix(Orthogonalize(before)), *euler);
}

}  // namespace tavrilon
