// SPDX-License-Identifier: MIT
#include "rig_system_test.h"

#include <random>
#include <set>

#include "host/core/remap.h"
#include "plugin/rig/type_defaults.h"

namespace tavrilon {
namespace {

using namespace rig_param;

TEST_F(RigSystemTest, TableIsSound) {
  const ParamBlockDesc2& desc = block().GetDesc();
  EXPECT_EQ(desc.Count(), 81);
  std::set<WStr> names;
  std::set<int> ids;
  for (const ParamRow& row : desc.rows) {
    EXPECT_TRUE(ids.insert(row.id).second) << row.id;
    EXPECT_TRUE(WStr(row.name).empty() || names.insert(row.name).second) << ToUtf8(row.name);
    EXPECT_EQ(row.accessor == nullptr, row.id == kRigName);
    if (row.range.IsGiven()) {
      EXPECT_GE(row.def.f[0], row.range.min) << ToUtf8(row.name);
      EXPECT_LE(row.def.f[0], row.range.max) << ToUtf8(row.name);
    }
  }
  EXPECT_EQ(block().GetStr(kRigName), L"Rig");
  EXPECT_EQ(block().GetColour(kColor2), (Colour{1, .25f, 0}));
}

TEST_F(RigSystemTest, BothDescriptorsMakeIt) {
  for (const TavrilonClass row : {TavrilonClass::Rig, TavrilonClass::RigSystem}) {
    const Ref<ReferenceTarget> made = CreateInstance(DescOf(row).superClass, DescOf(row).classId);
    ASSERT_TRUE(dynamic_cast<RigSystem*>(made.Get()));
    EXPECT_EQ(made->SuperClassID(), kHelperSuper);
    EXPECT_EQ(made->ClassID(), ClassIdOf(TavrilonClass::Rig));
    EXPECT_FALSE(static_cast<RigSystem*>(made.Get())->Block().GetBool(kFangs));
  }
}

TEST_F(RigSystemTest, ParametersRebuildAtOnce) {
  rig->SetPointPos(L"spine_2", {.1f, .2f, .7f});
  Set(kSpineControls, 5);
  EXPECT_TRUE(Has(L"spine_5"));
  EXPECT_EQ(rig->GetPointPos(L"spine_2"), (Point3{.1f, .2f, .7f}));
  Set(kFingers, 2);
  EXPECT_FALSE(Has(L"r_finger_3_1"));
  Set(kHeads, 0);
  EXPECT_FALSE(Has(L"head"));
  Set(kColor1, 0);
  EXPECT_EQ(rig->GetPointPos(L"spine_2"), (Point3{.1f, .2f, .7f}));
  Set(kSide, kSideBoth);
  EXPECT_NE(rig->GetPointPos(L"spine_2"), (Point3{.1f, .2f, .7f})) << "a new side starts afresh";
}

struct TypeCase {
  RigType type;
  ID id;
  int value;
};
const TypeCase kTypeCases[] = {
    {RigType::Insect, kArmPairs, 0}, {RigType::Insect, kLegPairs, 3},       {RigType::Insect, kPonytails, 2},
    {RigType::Insect, kFangs, 1},    {RigType::Insect, kTails, 1},          {RigType::Quadruped, kFingers, 1},
    {RigType::Quadruped, kTails, 1}, {RigType::Quadruped, kFingerBones, 1}, {RigType::Tail, kTails, 1},
    {RigType::Biped, kTails, 0},     {RigType::Biped, kFingerBones, 3},     {RigType::Centaur, kTails, 1},
    {RigType::Biped, kArmPairs, 1},  {RigType::Minotaur, kTails, 1},        {RigType::Biped, kLegPairs, 1},
};
TEST_F(RigSystemTest, TypeResetsItsCounts) {
  for (const TypeCase& c : kTypeCases) {
    SCOPED_TRACE(ToUtf8(kRigTypeNames[static_cast<int>(c.type)]) + " " + std::to_string(c.id));
    for (ID id : {kArmPairs, kLegPairs, kTails, kPonytails, kFingers, kFingerBones}) Set(id, 7);
    rig->SetType(static_cast<int>(c.type));
    EXPECT_EQ(block().GetInt(c.id), c.value);
  }
  Set(kHelperType, static_cast<int>(RigType::Insect));
  EXPECT_EQ(block().GetInt(kLegPairs), 3) << "written to the block it is the same";
  rig->SetType(28);
  rig->SetType(-1);
  EXPECT_EQ(rig->Type(), RigType::Insect);
  rig->SetType(static_cast<int>(RigType::Ears));
  EXPECT_TRUE(rig->Points().empty());
}

TEST_F(RigSystemTest, PointsByName) {
  EXPECT_EQ(rig->FindPoint(L"upper_arm", 0, 0), rig->FindPoint(L"r_upper_arm_1"));
  EXPECT_EQ(rig->FindPoint(L"finger", 1, 1, 2), rig->FindPoint(L"l_finger_2_3"));
  EXPECT_EQ(rig->GetPointParent(L"upper_arm", 0, 0), L"r_clavicle_1");
  EXPECT_EQ(rig->GetPointParent(L"pelvis"), L"");
  EXPECT_EQ(rig->GetPointPos(L"nowhere"), Point3());
  const Point3 left = rig->GetPointPos(L"l_forearm_1");
  rig->SetPointPos(L"forearm", {-.3f, 0, .8f}, 0, 0);
  EXPECT_EQ(rig->GetPointPos(L"r_forearm_1"), (Point3{-.3f, 0, .8f}));
  EXPECT_EQ(rig->GetPointPos(L"l_forearm_1"), left) << "without the mirror point";
  const RigPoints before = rig->Points();
  rig->SetPointPos(L"nowhere", {1, 2, 3});
  rig->SetPointPos(L"head", {NAN, 0, 0});
  EXPECT_EQ(rig->Points(), before);
}

TEST_F(RigSystemTest, ComponentsAreSelected) {
  Set(kSelectedComponent, kSpineControls);
  EXPECT_EQ(rig->NumSelected(), 4);  // pelvis and three spine points
  Set(kSpineControls, 4);
  EXPECT_EQ(rig->NumSelected(), 5) << "a new point of the component is selected too";
  Set(kSelectedComponent, 0);
  EXPECT_EQ(rig->NumSelected(), 0);
}

TEST_F(RigSystemTest, Extras) {
  EXPECT_TRUE(rig->AddExtra(L"ear", L"head", kSideBoth, 2, 3, true));
  EXPECT_FALSE(rig->AddExtra(L"ear", L"", kSideCenter, 1, 2, false)) << "the name repeats";
  EXPECT_TRUE(rig->AddExtra(L"", L"", kSideNone, 1, 2, false));
  EXPECT_TRUE(rig->AddExtra(L"", L"", kSideNone, 0, 1000, false));
  ASSERT_EQ(rig->GetNumExtras(), 3);
  EXPECT_EQ(rig->GetExtraName(1), L"extra_01");
  EXPECT_EQ(rig->GetExtraName(2), L"extra_02");
  EXPECT_EQ(rig->GetExtraNumControls(2), 1);
  EXPECT_EQ(rig->GetExtraNumBones(2), 99);
  EXPECT_TRUE(Has(L"l_ear_2") && Has(L"r_ear_bone_3") && !Has(L"extra_01_1"));
  rig->SetPointPos(L"r_ear_1", {-.2f, .3f, .9f});
  rig->SetExtraName(0, L"horn");
  EXPECT_EQ(rig->GetPointPos(L"r_horn_1"), (Point3{-.2f, .3f, .9f})) << "a new name keeps the places";
  rig->SetExtraName(0, L"extra_01");
  EXPECT_EQ(rig->GetExtraName(0), L"horn");
  rig->SetExtraSide(0, kSideCenter);
  EXPECT_TRUE(Has(L"horn_1") && !Has(L"r_horn_1"));
  rig->SetExtraSide(0, 7);
  EXPECT_EQ(rig->GetExtraSide(0), kSideCenter);
  EXPECT_FALSE(rig->RemoveExtra(3));
  EXPECT_FALSE(rig->RemoveExtra(-1));
  EXPECT_TRUE(rig->RemoveExtra(0));
  EXPECT_FALSE(Has(L"horn_1"));
  EXPECT_EQ(rig->GetExtraName(9), L"");
}

TEST_F(RigSystemTest, PublishesItsTable) {
  FPInterface* published = rig->GetInterface(IRigSystem::kId);
  ASSERT_EQ(published, static_cast<FPInterface*>(rig));
  const FPInterfaceDesc& desc = published->GetDesc();
  EXPECT_EQ(desc.functions.size(), 22u);
  const FPFunctionDesc* getPos = desc.FindFunction(L"GetPointPos");
  ASSERT_TRUE(getPos);
  const std::vector<FPValue> args = {WStr(L"upper_arm"), 0, 0, -1};
  FPValue result;
  EXPECT_EQ(published->Invoke(getPos->id, 0, result, args), FPStatus::OK);
  EXPECT_EQ(result.ToPoint3(), rig->GetPointPos(L"r_upper_arm_1"));
  EXPECT_THROW(published->Invoke(getPos->id, 0, result, {args.data(), 2}), CorvantaSDK::Util::OutOfRangeException);
  EXPECT_EQ(published->Invoke(1234, 0, result, {}), FPStatus::NoSuchFunction);
  const FPPropertyDesc* type = desc.FindProperty(L"type");
  ASSERT_TRUE(type);
  const FPValue insect = static_cast<int>(RigType::Insect);
  EXPECT_EQ(published->Invoke(type->setId, 0, result, {&insect, 1}), FPStatus::OK);
  EXPECT_EQ(published->Invoke(type->getId, 0, result, {}), FPStatus::OK);
  EXPECT_EQ(result.ToInt(), 17);
  const FPFunctionDesc* addExtra = desc.FindFunction(L"AddExtra");
  std::vector<FPValue> defaults;
  for (const FPParamDesc& param : addExtra->params) defaults.push_back(param.defaultValue.value());
  EXPECT_EQ(published->Invoke(addExtra->id, 0, result, defaults), FPStatus::OK);
  EXPECT_TRUE(result.ToBool());
  EXPECT_EQ(rig->Extras().front(), (RigExtra{L"extra_01", L"", kSideNone, 1, 2, false}));
}

TEST_F(RigSystemTest, CreateAndResetAreOneStepEach) {
  rig->SetPointPos(L"head", {0, .1f, .9f});
  node->SetNodeTM(0, TransMatrix({10, 20, 0}));
  theHold.Flush();
  const std::vector<uint8_t> templateBytes = SceneBytes();
  rig->ResetRig();
  EXPECT_FALSE(theHold.Undo()) << "a template has nothing to reset";
  rig->CreateRig();
  EXPECT_FALSE(rig->IsActive());
  ASSERT_FALSE(rig->OwnedNodes().empty());
  EXPECT_EQ(rig->BuildError(), L"");
  INode* main = GetScene().GetINodeByName(L"Rig_main");
  ASSERT_TRUE(main);
  EXPECT_EQ(main->GetNodeTM(0).GetTrans(), (Point3{10, 20, 0}));
  const std::vector<uint8_t> builtBytes = SceneBytes();
  const size_t count = GetScene().Nodes().size();
  rig->CreateRig();
  EXPECT_EQ(GetScene().Nodes().size(), count) << "a built rig is not built again";
  ASSERT_TRUE(theHold.Undo());
  EXPECT_TRUE(rig->IsActive());
  EXPECT_EQ(SceneBytes(), templateBytes);
  ASSERT_TRUE(theHold.Redo());
  EXPECT_EQ(SceneBytes(), builtBytes);
  rig->ResetRig();
  EXPECT_TRUE(rig->IsActive());
  EXPECT_EQ(rig->GetPointPos(L"head"), (Point3{0, .1f, .9f})) << "the template comes back as it was";
  ASSERT_TRUE(theHold.Undo());
  EXPECT_EQ(SceneBytes(), builtBytes);
}

TEST_F(RigSystemTest, ABuiltRigIgnoresItsCounts) {
  rig->CreateRig();
  const RigPoints points = rig->Points();
  Set(kSpineControls, 9);
  EXPECT_EQ(rig->Points(), points);
  rig->ResetRig();
  EXPECT_TRUE(Has(L"spine_9")) << "the template that comes back has them";
}

TEST_F(RigSystemTest, TypesWithoutTemplateStillHaveAMain) {
  rig->SetType(static_cast<int>(RigType::Octopus));
  rig->CreateRig();
  EXPECT_TRUE(GetScene().GetINodeByName(L"Rig_main"));
}

// Who carries the rig is not bothered by the nodes that it owns.
TEST_F(RigSystemTest, OwnedNodesMoveInSilence) {
  rig->CreateRig();
  class Counter final : public MonitorClient {
   public:
    void MonitoredNotice(RefTargMonitor&, const RefNotice&) override { ++heard; }
    int heard = 0;
  } counter;
  RefTargMonitor monitor(&counter);
  monitor.SetTarget(rig);
  rig->OwnedNodes().front()->SetNodeTM(0, TransMatrix({5, 0, 0}));
  EXPECT_EQ(counter.heard, 0);
  block().SetValue(kHelperSize, 0, 50.0f);
  EXPECT_GT(counter.heard, 0);
}

TEST_F(RigSystemTest, CopiesShareNoNodes) {
  rig->SetPointPos(L"head", {0, .1f, .9f});
  rig->AddExtra(L"ear", L"head", kSideBoth, 2, 3, true);
  rig->CreateRig();
  auto* alone = dynamic_cast<RigSystem*>(GetScene().CloneNodes({node})[0]->GetObjectRef());
  ASSERT_TRUE(alone && alone != rig);
  EXPECT_EQ(alone->Points(), rig->Points());
  EXPECT_EQ(alone->Extras(), rig->Extras());
  EXPECT_TRUE(alone->OwnedNodes().empty());
  EXPECT_TRUE(alone->IsActive()) << "a copy without nodes is a template";
  std::vector<INode*> all = rig->OwnedNodes();
  all.push_back(node);
  for (INode* copy : GetScene().CloneNodes(all)) {
    auto* whole = dynamic_cast<RigSystem*>(copy->GetObjectRef());
    if (!whole) continue;
    EXPECT_FALSE(whole->IsActive());
    EXPECT_EQ(whole->OwnedNodes().size(), rig->OwnedNodes().size());
    for (INode* owned : whole->OwnedNodes()) {
      const std::vector<INode*> source = rig->OwnedNodes();
      EXPECT_EQ(std::find(source.begin(), source.end(), owned), source.end());
    }
  }
}

TEST_F(RigSystemTest, CreationByMouse) {
  rig->StartCreation(node, TransMatrix({1, 2, 0}));
  EXPECT_EQ(rig->Size(), 0);
  EXPECT_EQ(node->GetNodeTM(0).GetTrans(), (Point3{1, 2, 0}));
  const Colour wire = UnpackColour(node->GetWireColor());
  EXPECT_NEAR(std::max({wire.r, wire.g, wire.b}), 1, .01f);
  EXPECT_NEAR(std::min({wire.r, wire.g, wire.b}), 0, .01f);
  rig->DragCreation(180);
  EXPECT_EQ(rig->Size(), 180);
  EXPECT_NEAR(rig->PointBox().max.z, 180, 1e-3f);
}

/// Random steps of everything that changes a rig, each one undo step.
class RandomRigEdits : public RigSystemTest {
 protected:
  int Random(int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); }
  int CountOfRow(const RigParamRow& row) {
    return row.kind == RigParamKind::Bool ? Random(2) : std::min(static_cast<int>(row.range.max), Random(5));
  }
  void Step() {
    HoldScope hold(L"Step");
    switch (Random(9)) {
      case 0: {
        const RigParamRow& row = kRigParamRows[2 + Random(kRigParamCount - 2)];
        if (row.kind == RigParamKind::Int || row.kind == RigParamKind::Bool)
          block().SetValue(static_cast<ParamID>(row.id), 0, CountOfRow(row));
        break;
      }
      case 1:
        rig->SetType(Random(kRigTypeCount));
        break;
      case 2:
        block().SetValue(kSelectedComponent, 0, Random(90));
        break;
      case 3:
        rig->MoveSelected(node->GetObjectTM(0), TransMatrix({1, 2, 3}));
        break;
      case 4:
        rig->AddExtra(L"", L"head", Random(4), 1 + Random(3), 2, Random(2) == 1);
        break;
      case 5:
        rig->RemoveExtra(Random(3));
        break;
      case 6:
        rig->SetExtraNumControls(0, 1 + Random(4));
        break;
      case 7:
        rig->IsActive() ? rig->CreateRig() : rig->ResetRig();
        break;
      default: {
        if (rig->Points().empty()) break;
        const WStr name = rig->Points()[static_cast<size_t>(Random(static_cast<int>(rig->Points().size())))].name;
        rig->SetPointPos(name, {static_cast<float>(Random(9)), 0, 1});
      }
    }
  }
  std::mt19937 rng{5};
};

TEST_F(RandomRigEdits, UndoAndRedoGiveEqualBytes) {
  std::vector<std::vector<uint8_t>> states = {SceneBytes()};
  for (int i = 0; i < 120; ++i) {
    Step();
    states.push_back(SceneBytes());
  }
  for (int i = 119; i >= 0; --i) {
    ASSERT_TRUE(theHold.Undo());
    ASSERT_TRUE(SceneBytes() == states[static_cast<size_t>(i)]) << "undo to step " << i;
  }
  for (int i = 1; i <= 120; ++i) {
    ASSERT_TRUE(theHold.Redo());
    ASSERT_TRUE(SceneBytes() == states[static_cast<size_t>(i)]) << "redo of step " << i;
  }
}

TEST_F(RandomRigEdits, SceneFilesKeepEverything) {
  for (int round = 0; round < 12; ++round) {
    for (int i = 0; i < 8; ++i) Step();
    const std::vector<uint8_t> bytes = SceneBytes();
    const RigPoints points = rig->Points();
    const std::vector<RigExtra> extras = rig->Extras();
    const bool active = rig->IsActive();
    const size_t owned = rig->OwnedNodes().size();
    ASSERT_EQ(LoadSceneFromBytes(bytes), L"");
    rig = FirstRig();
    ASSERT_TRUE(rig);
    node = rig->ObjectNode();
    EXPECT_EQ(rig->Points(), points);
    EXPECT_EQ(rig->Extras(), extras);
    EXPECT_EQ(rig->IsActive(), active);
    EXPECT_EQ(rig->OwnedNodes().size(), owned);
    EXPECT_EQ(SceneBytes(), bytes);
  }
}

}  // namespace
}  // namespace tavrilon
