// SPDX-License-Identifier: MIT
// Built rigs with limbs, and the ways to pose and to read them.
#pragma once

#include <gtest/gtest.h>

#include <random>

#include "host/core/hold.h"
#include "host/core/published.h"
#include "host/io/scene_file.h"
#include "host/scene/core_interface.h"
#include "plugin/attributes/attributes.h"
#include "plugin/controllers/rig_control.h"
#include "plugin/frame/animation_manager_mod.h"
#include "plugin/frame/find.h"
#include "plugin/frame/guard.h"
#include "plugin/rig/rig_system.h"
#include "plugin/solvers/ikfk_chain.h"

namespace tavrilon {

using namespace corvanta;

using Options = std::vector<std::pair<rig_param::ID, int>>;

class LimbRigTest : public ::testing::Test {
 protected:
  LimbRigTest() {
    RegisterHostClasses();
    RegisterTavrilonClasses();
    ResetScene();
  }
  ~LimbRigTest() override { ResetScene(); }

  /// A rig of 100 units with all defaults but the given ones, built.
  RigSystem& Build(RigType type, const Options& options = {}) {
    auto* rig = new RigSystem;
    object = GetCOREInterface()->CreateObjectNode(rig);
    rig->SetType(static_cast<int>(type));
    for (const auto& [id, value] : options) rig->GetParamBlock()->SetValue(static_cast<ParamID>(id), 0, value);
    rig->CreateRig();
    EXPECT_EQ(rig->BuildError(), L"");
    return *rig;
  }

  static INode* Node(const WStr& name) { return GetScene().GetINodeByName(L"Rig_" + name); }
  static Matrix3 TM(const WStr& name, TimeValue t = 0) {
    INode* node = Node(name);
    EXPECT_NE(node, nullptr) << ToUtf8(name);
    return node ? node->GetNodeTM(t) : Matrix3();
  }
  static Point3 Place(const WStr& name, TimeValue t = 0) { return TM(name, t).GetTrans(); }
  static std::vector<INode*> AllNodes() {
    std::vector<INode*> nodes;
    for (const Ref<INode>& node : GetScene().Nodes()) nodes.push_back(node.Get());
    return nodes;
  }
  static std::vector<INode*> ChainNodes() {
    std::vector<INode*> nodes;
    for (INode* node : AllNodes())
      if (FindIKFKChain(node)) nodes.push_back(node);
    return nodes;
  }
  static ParamBlock2& Limb(const WStr& name) { return *FindAttrib(Node(name), TavrilonClass::LimbAttrib); }
  static ParamBlock2& Foot(const WStr& name) { return *FindAttrib(Node(name), TavrilonClass::FootAttrib); }
  static std::vector<Matrix3> Matrices(const std::vector<INode*>& nodes, TimeValue t = 0) {
    std::vector<Matrix3> matrices;
    for (INode* node : nodes) matrices.push_back(node->GetNodeTM(t));
    return matrices;
  }
  /// A turn in the node's own axes.
  static void Turn(INode* node, const AngAxis& aa) {
    SetXFormPacket packet = SetXFormPacket::Rotate(aa, true, node->GetParentTM(0), node->GetNodeTM(0));
    node->GetTMController()->SetValue(0, packet, true, CTRL_RELATIVE);
  }
  static void Move(INode* node, const Point3& world) {
    SetXFormPacket packet = SetXFormPacket::Move(world, node->GetParentTM(0), Matrix3());
    node->GetTMController()->SetValue(0, packet, true, CTRL_RELATIVE);
  }
  static void SetBlend(float blend) {
    for (INode* chain : ChainNodes())
      FindAttrib(chain, TavrilonClass::LimbAttrib)->SetValue(limb_attrib::kIkfkBlend, 0, blend);
  }
  static float Turned(const Matrix3& a, const Matrix3& b) {
    // Twice the arc sine of half the chord: precise near 0, unlike an arc cosine.
    float chord = 0;
    for (int r = 0; r < 3; ++r) chord = std::max(chord, Length(Normalize(a.GetRow(r)) - Normalize(b.GetRow(r))));
    return 2 * std::asin(std::min(chord / 2, 1.0f));
  }
  INode* object = nullptr;
};

/// D * left * S: where the right node of a pair stands.
inline Matrix3 Mirrored(const Matrix3& left) { return ScaleMatrix({1, 1, -1}) * left * ScaleMatrix({-1, 1, 1}); }

/// The other node of a pair, by name; null for a node of the centre.
inline INode* RightOf(INode* node) {
  WStr name = node->GetName();
  const size_t at = name.find(L"_l_");
  if (at == WStr::npos) return nullptr;
  name.replace(at, 3, L"_r_");
  return GetScene().GetINodeByName(name);
}

inline const RigType kLimbTypes[] = {RigType::Biped,     RigType::Hands,     RigType::Feet,      RigType::Arms,
                                     RigType::Legs,      RigType::FrontLegs, RigType::BackLegs,  RigType::Quadruped,
                                     RigType::Minotaur,  RigType::Centaur,   RigType::FrontPaws, RigType::BackPaws,
                                     RigType::InsectLeg, RigType::Insect};
inline std::string TypeName(const testing::TestParamInfo<RigType>& info) {
  return ToUtf8(kRigTypeNames[static_cast<int>(info.param)]);
}

}  // namespace tavrilon
