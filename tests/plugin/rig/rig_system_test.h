// SPDX-License-Identifier: MIT
// A scene with one rig in it.
#pragma once

#include <gtest/gtest.h>

#include "host/core/class_desc.h"
#include "host/io/scene_file.h"
#include "host/scene/core_interface.h"
#include "plugin/rig/rig_system.h"

namespace tavrilon {

using namespace corvanta;

class RigSystemTest : public testing::Test {
 protected:
  RigSystemTest() {
    RegisterHostClasses();
    RegisterTavrilonClasses();
    ResetScene();
    rig = new RigSystem;
    node = GetScene().CreateObjectNode(rig);
    theHold.Flush();
  }
  ~RigSystemTest() override { ResetScene(); }

  ParamBlock2& block() { return *rig->GetParamBlock(); }
  void Set(rig_param::ID id, int value) {
    HoldScope hold;
    block().SetValue(static_cast<ParamID>(id), 0, value);
  }
  bool Has(const wchar_t* name) const { return rig->FindPoint(name) >= 0; }
  std::vector<uint8_t> SceneBytes() const {
    std::vector<uint8_t> bytes;
    EXPECT_EQ(SaveSceneToBytes(GetScene(), &bytes), L"");
    return bytes;
  }
  /// The first rig of the scene on show.
  static RigSystem* FirstRig() {
    for (const Ref<INode>& n : GetScene().Nodes())
      if (auto* found = dynamic_cast<RigSystem*>(n->GetObjectRef())) return found;
    return nullptr;
  }

  RigSystem* rig = nullptr;
  INode* node = nullptr;
};

}  // namespace tavrilon
