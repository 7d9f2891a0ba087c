// SPDX-License-Identifier: MIT
// A fresh scene, and nodes with managers in it.
#pragma once

#include <gtest/gtest.h>

#include "host/scene/core_interface.h"
#include "host/scene/point_helper.h"
#include "plugin/frame/animation_manager_mod.h"
#include "plugin/frame/class_table.h"

namespace tavrilon {

class RigNodesTest : public testing::Test {
 protected:
  void SetUp() override {
    corvanta::RegisterHostClasses();
    RegisterTavrilonClasses();
    corvanta::ReplaceScene(std::make_unique<corvanta::Scene>());
    corvanta::GetCOREInterface()->SetRefCoordSys(corvanta::RefCoordSys::View);
  }
  void TearDown() override { corvanta::ReplaceScene(std::make_unique<corvanta::Scene>()); }

  static corvanta::INode* AddNode(const wchar_t* name, corvanta::INode* parent = nullptr) {
    corvanta::INode* node = corvanta::GetScene().CreateObjectNode(new corvanta::PointHelper);
    node->SetName(name);
    if (parent) parent->AttachChild(node, false);
    return node;
  }
  static corvanta::ParamBlock2& AddManager(corvanta::INode* node) {
    auto* manager = new AnimationManagerMod;
    node->AddModifier(manager);
    return *manager->GetParamBlock();
  }
};

}  // namespace tavrilon
