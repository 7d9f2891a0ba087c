// SPDX-License-Identifier: MIT
// A pose mirrored as a whole: every control goes where the reflection of its partner stands. Frames of a pair are
// D * left * S to one another, those of the centre to themselves, so that a whole figure can be mirrored by matrices.
#include "host/io/scene_file.h"
#include "plugin/rig/limb_rig_test.h"
#include "plugin/solvers/ikfk_control.h"

namespace tavrilon {
namespace {

class MirrorPose : public LimbRigTest {
 protected:
  /// The other node of a pair; the node itself in the centre.
  static INode* Partner(INode* node) {
    WStr name = node->GetName();
    for (const auto& [from, to] : {std::pair{L"_l_", L"_r_"}, std::pair{L"_r_", L"_l_"}})
      if (const size_t at = name.find(from); at != WStr::npos) {
        name.replace(at, 3, to);
        return GetScene().GetINodeByName(name);
      }
    return node;
  }
  /// What an animator poses: controls that no solver places, parents first.
  static std::vector<INode*> Posed() {
    std::vector<INode*> nodes;
    for (INode* node : AllNodes()) {
      const IKFKControl* ik = FindIKFKControl(node);
      const bool solved = ik && (ik->Type() == ikfk_control::kJoint);
      const bool isMain = node == Node(L"main");
      if (FindNodeRigControl(node) && FindManagerMod(node) && !solved && !isMain) nodes.push_back(node);
    }
    const auto depth = [](INode* node) {
      int n = 0;
      while ((node = node->GetParentNode())) ++n;
      return n;
    };
    std::stable_sort(nodes.begin(), nodes.end(), [&](INode* a, INode* b) { return depth(a) < depth(b); });
    return nodes;
  }
  static void Mirror(const std::vector<INode*>& posed) {
    std::vector<Matrix3> wanted;
    for (INode* node : posed) wanted.push_back(Mirrored(Partner(node)->GetNodeTM(0)));
    // Twice: a control may follow one that is deeper in the tree (the neck the chest), and is right the second time.
    for (int pass = 0; pass < 2; ++pass)
      for (size_t i = 0; i < posed.size(); ++i) posed[i]->SetNodeTM(0, wanted[i]);
  }
};

// Mirrored, every node (bones, solved joints and helpers too) stands where the reflection of its partner stood;
// mirrored again, the pose is back.
TEST_F(MirrorPose, MirroredTwiceIsThePose) {
  Build(RigType::Biped);
  const std::vector<INode*> posed = Posed(), nodes = AllNodes();
  ASSERT_GT(posed.size(), 30u);
  std::mt19937 rng(5);
  std::uniform_real_distribution<float> unit(-1, 1);
  for (int round = 0; round < 5; ++round) {
    for (INode* node : posed) {
      Turn(node, {{unit(rng), unit(rng), unit(rng)}, 0.3f * unit(rng)});
      if (FindIKFKControl(node)) Move(node, Point3{unit(rng), unit(rng), unit(rng)} * 6.0f);
    }
    const std::vector<Matrix3> pose = Matrices(nodes);
    Mirror(posed);
    for (size_t i = 0; i < nodes.size(); ++i) {
      const auto partner = std::find(nodes.begin(), nodes.end(), Partner(nodes[i]));
      if (partner == nodes.end() || nodes[i] == Node(L"main") || nodes[i] == object) continue;
      const Matrix3 is = nodes[i]->GetNodeTM(0), wanted = Mirrored(pose[static_cast<size_t>(partner - nodes.begin())]);
      // Some ten products of single precision on lengths of a hundred.
      ASSERT_LT(Length(is.GetTrans() - wanted.GetTrans()), 2e-3f) << ToUtf8(nodes[i]->GetName());
      ASSERT_LT(Turned(is, wanted), 2e-4f) << ToUtf8(nodes[i]->GetName());
    }
    Mirror(posed);
    const std::vector<Matrix3> back = Matrices(nodes);
    for (size_t i = 0; i < nodes.size(); ++i) {
      ASSERT_LT(Length(back[i].GetTrans() - pose[i].GetTrans()), 4e-3f) << ToUtf8(nodes[i]->GetName());
      ASSERT_LT(Turned(back[i], pose[i]), 4e-4f) << ToUtf8(nodes[i]->GetName());
    }
  }
}

// Keys of every kind on every control and attribute come back from a file bit by bit.
TEST_F(MirrorPose, KeysComeBackFromAFileAsTheyWere) {
  Build(RigType::Biped);
  AnimateOn();
  std::mt19937 rng(6);
  std::uniform_real_distribution<float> unit(-1, 1);
  for (const TimeValue t : {0, 800, 1600}) {
    GetCOREInterface()->SetTime(t, false);
    for (INode* node : Posed()) node->SetNodeTM(t, node->GetNodeTM(t) * TransMatrix({unit(rng), unit(rng), unit(rng)}));
    Limb(L"l_ikfk_arm_1").SetValue(limb_attrib::kIkfkBlend, t, 0.5f + 0.5f * unit(rng));
  }
  AnimateOff();
  std::vector<uint8_t> before, after;
  ASSERT_EQ(SaveSceneToBytes(GetScene(), &before), L"");
  const std::vector<Matrix3> at = Matrices(AllNodes(), 1200);
  ASSERT_EQ(LoadSceneFromBytes(before), L"");
  const std::vector<Matrix3> loaded = Matrices(AllNodes(), 1200);
  ASSERT_EQ(SaveSceneToBytes(GetScene(), &after), L"");
  EXPECT_TRUE(before == after);
  for (size_t i = 0; i < at.size(); ++i) EXPECT_TRUE(at[i] == loaded[i]) << ToUtf8(AllNodes()[i]->GetName());
}

}  // namespace
}  // namespace tavrilon
