// SPDX-License-Identifier: MIT
// Scenes that several benchmarks start from.
#pragma once

#include "host/core/hold.h"
#include "host/maths/euler.h"
#include "host/scene/core_interface.h"
#include "plugin/controllers/rig_control.h"
#include "plugin/frame/class_table.h"
#include "plugin/frame/find.h"
#include "plugin/rig/rig_system.h"

namespace bench_scene {

inline void Fresh() {
  corvanta::RegisterHostClasses();
  tavrilon::RegisterTavrilonClasses();
  corvanta::ReplaceScene(std::make_unique<corvanta::Scene>());
}

/// A template of a type with all its defaults, on a node of its own.
inline tavrilon::RigSystem& AddRig(tavrilon::RigType type = tavrilon::RigType::Biped) {
  auto* rig = new tavrilon::RigSystem;
  corvanta::GetCOREInterface()->CreateObjectNode(rig);
  rig->SetType(static_cast<int>(type));
  return *rig;
}

/// Ten keys on position and rotation of every rig control, or of the first only.
inline void Key(bool all) {
  using namespace corvanta;
  AnimateOn();
  int i = 0;
  for (const Ref<INode>& node : GetScene().Nodes()) {
    tavrilon::RigControl* control = tavrilon::FindNodeRigControl(node.Get());
    if (!control || (!all && i > 0)) continue;
    ++i;
    for (TimeValue t = 0; t <= 20000; t += 2000) {
      const float a = 0.05f * static_cast<float>((i + t / 1000) % 7);
      Point3 p{a, -a, a};
      Quat q = EulerToQuat({a, 2 * a, -a});
      control->GetPositionController()->SetValue(t, p);
      tavrilon::GetRealRotationController(control)->SetValue(t, q);
    }
  }
  AnimateOff();
}

}  // namespace bench_scene
