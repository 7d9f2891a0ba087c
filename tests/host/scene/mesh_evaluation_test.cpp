// SPDX-License-Identifier: MIT
// What nodes show of their meshes: skinned, morphed, subdivided, and computed once.
#include <functional>
#include <random>

#include "host/scene/mesh_samples_test.h"
#include "support/alloc_counter.h"

namespace corvanta {
namespace {

using namespace mesh_samples;
using testing_objects::Listener;
using testing_objects::TestMatrix;

class MeshEvaluationTest : public testing_objects::SceneTest {};

// Places are decomposed into position, rotation and scale and put together again: some roundings of values around 10.
constexpr float kPlaceError = 1e-4f;

void ExpectNear(const Point3& a, const Point3& b, float error) {
  EXPECT_NEAR(a.x, b.x, error);
  EXPECT_NEAR(a.y, b.y, error);
  EXPECT_NEAR(a.z, b.z, error);
}

const std::vector<Point3>& PointsOf(INode* node, TimeValue t = 0) { return EvaluatedMesh(node, t)->points; }

/// Counts how often it is asked.
class CountingModifier final : public Modifier {
 public:
  Class_ID ClassID() const override { return {0x7E570003, 1}; }
  void ModifyMesh(TimeValue, INode*, MeshState&) override { ++count; }
  int count = 0;
};

Matrix3 RandomPlace(std::mt19937& rng) {
  std::uniform_real_distribution<float> angle(-3, 3), place(-10, 10);
  return RotateXMatrix(angle(rng)) * RotateYMatrix(angle(rng)) * RotateZMatrix(angle(rng)) *
         TransMatrix({place(rng), place(rng), place(rng)});
}

/// A skin over a node, bound where all stands now.
SkinModifier* Bind(INode* node, const std::vector<INode*>& bones) {
  auto* skin = new SkinModifier;
  node->AddModifier(skin);
  for (INode* bone : bones) skin->AddBone(bone, bone->GetNodeTM(0));
  skin->SetMeshBindTM(node->GetObjectTM(0));
  return skin;
}

// An arm along X from 0 to 2 with its elbow at 1, bent a right angle about Z: the elbow's point, half of each bone,
// stays; the hand comes to lie straight up; what stands half way off the elbow at [1,1,0] is the mean of where the two
// bones would take it, [1,1,0] and [0,0,0].
TEST_F(MeshEvaluationTest, ArmOfTwoBonesBendsByHand) {
  Mesh mesh;
  mesh.points = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {1, 1, 0}, {5, 5, 5}};
  INode* node = MeshNode(mesh);
  INode* upper = BoneNode(L"upper");
  INode* lower = BoneNode(L"lower");
  Place(lower, TransMatrix({1, 0, 0}));
  SkinModifier* skin = Bind(node, {upper, lower});
  auto weights = std::make_shared<SkinWeights>();
  const SkinWeight first{0, 1}, second{1, 1}, both[] = {{0, 0.5f}, {1, 0.5f}}, part{1, 0.25f};
  weights->Add({&first, 1});
  weights->Add(both);
  weights->Add({&second, 1});
  weights->Add(both);
  weights->Add({&part, 1});
  ASSERT_TRUE(skin->SetWeights(weights));
  for (size_t i = 0; i < mesh.points.size(); ++i) ExpectNear(PointsOf(node)[i], mesh.points[i], kPlaceError);
  // Positive turns go from X to Y for row vectors.
  Place(lower, RotateZMatrix(kHalfPi) * TransMatrix({1, 0, 0}));
  // The last one, [4,5] from the elbow, turns to [-5,4] there, so to [-4,4]: a quarter of that and three of [5,5].
  const Point3 expected[] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0.5f, 0.5f, 0}, {2.75f, 4.75f, 5}};
  for (size_t i = 0; i < std::size(expected); ++i) ExpectNear(PointsOf(node)[i], expected[i], kPlaceError);
  // Bound half a unit further along, the hand is that much further up; what is left over stays.
  skin->SetMeshBindTM(TransMatrix({0.5f, 0, 0}));
  ExpectNear(PointsOf(node)[2], {1, 1.5f, 0}, kPlaceError);
  // Weights of two together are halved.
  auto heavy = std::make_shared<SkinWeights>();
  const SkinWeight twice[] = {{0, 1}, {1, 1}};
  heavy->Add(twice);
  skin->SetMeshBindTM({});
  skin->SetWeights(heavy);
  ExpectNear(PointsOf(node)[0], {0.5f, -0.5f, 0}, kPlaceError);
}

// Wherever mesh, its offset and bones stand, at bind and later: points with all weight on a bone keep their place on
// it.
TEST_F(MeshEvaluationTest, FullWeightsFollowRigidly) {
  std::mt19937 rng(11);
  for (int round = 0; round < 20; ++round) {
    INode* node = MeshNode(Cube(3));
    std::vector<INode*> bones{BoneNode(L"a"), BoneNode(L"b"), BoneNode(L"c")};
    bones[0]->AttachChild(node);  // the mesh hangs under a bone of its own
    bones[0]->AttachChild(bones[1]);
    node->SetObjOffsetPos({1, 2, 3});
    Place(node, RandomPlace(rng));
    for (INode* bone : bones) Place(bone, RandomPlace(rng));
    std::vector<int> boneOf;
    for (int i = 0; i < 8; ++i) boneOf.push_back(static_cast<int>(rng() % 3));
    Bind(node, bones)->SetWeights(Rigid(boneOf));
    const auto onBones = [&] {
      std::vector<Point3> places;
      const std::vector<Point3> points = PointsOf(node);
      for (size_t i = 0; i < 8; ++i)
        places.push_back(points[i] * node->GetObjectTM(0) *
                         Inverse(bones[static_cast<size_t>(boneOf[i])]->GetNodeTM(0)));
      return places;
    };
    const std::vector<Point3> atBind = onBones();
    for (INode* moved : {bones[2], bones[0], node, bones[1]}) {
      Place(moved, RandomPlace(rng));
      const std::vector<Point3> now = onBones();
      for (size_t i = 0; i < 8; ++i) ExpectNear(now[i], atBind[i], 5 * kPlaceError);
    }
  }
}

TEST_F(MeshEvaluationTest, DeletedBonesLeaveTheirPointsAtBind) {
  const Figure f = MakeFigure();
  const std::vector<Point3> rest = PointsOf(f.node);
  Place(f.bones[1], TransMatrix({5, 5, 5}));
  const std::vector<Point3> moved = PointsOf(f.node);
  ASSERT_NE(moved, rest);
  theHold.Begin();
  GetScene().DeleteNode(f.bones[1]);
  theHold.Accept(L"Delete");
  EXPECT_EQ(f.skin->NumBones(), 2);
  EXPECT_EQ(f.skin->GetBone(1), nullptr);
  for (size_t i = 0; i < rest.size(); ++i) ExpectNear(PointsOf(f.node)[i], rest[i], kPlaceError);
  ASSERT_TRUE(theHold.Undo());
  EXPECT_EQ(f.skin->GetBone(1), f.bones[1]);
  EXPECT_EQ(PointsOf(f.node), moved);
}

struct MorphRow {
  float weight, x;
};
// One point; targets 1 at 25, 3 at 50 and 4 at 100 percent.
TEST_F(MeshEvaluationTest, ProgressiveTargetsAreMixed) {
  INode* node = MeshNode(Cube(1));
  auto* morpher = new MorpherModifier;
  node->AddModifier(morpher);
  MorphChannel* channel = morpher->AddChannel(L"a");
  ASSERT_TRUE(channel->SetTargets(
      Targets({{25, {0}, {{1, 0, 0}}}, {50, {0}, {{3, 0, 0}}}, {100, {0, 900}, {{4, 0, 0}, {9, 9, 9}}}})));
  for (const MorphRow& row :
       {MorphRow{0, 0}, {12.5f, 0.5f}, {25, 1}, {37.5f, 2}, {50, 3}, {75, 3.5f}, {100, 4}, {150, 5}, {-25, -1}}) {
    SCOPED_TRACE(row.weight);
    channel->SetWeight(0, row.weight);
    EXPECT_NEAR(PointsOf(node)[0].x, row.x, 1e-5f);  // a few roundings of values around 4
    EXPECT_EQ(PointsOf(node)[7], (Point3{1, 1, 1}));
  }
  channel->SetWeight(0, 100);
  MorphChannel* other = morpher->AddChannel(L"b");
  other->SetTargets(Targets({{100, {0}, {{0, 2, 0}}}}));
  other->SetWeight(0, 50);
  EXPECT_EQ(PointsOf(node)[0], (Point3{4, 1, 0}));
  channel->GetParamBlock()->SetValue(MorphChannel::kEnabled, 0, false);
  EXPECT_EQ(PointsOf(node)[0], (Point3{0, 1, 0}));
}

TEST_F(MeshEvaluationTest, AskedAgainNothingIsComputed) {
  const Figure f = MakeFigure();
  auto* counter = new CountingModifier;
  f.node->AddModifier(counter);
  const MeshState* state = EvaluatedMesh(f.node, 0);
  EXPECT_EQ(counter->count, 1);
  EXPECT_EQ(EvaluatedMesh(f.node, 0), state);
  EXPECT_EQ(EvaluatedMesh(f.node, 3000), state) << "nothing moves in time";
  EXPECT_EQ(counter->count, 1);
  const struct {
    const char* name;
    std::function<void()> change;
  } rows[] = {
      {"bone moved",
       [&] {
         Place(f.bones[0], TransMatrix({0, 1, 0}));
       }},
      {"mesh moved",
       [&] {
         Place(f.node, TransMatrix({0, 0, 2}));
       }},
      {"offset",
       [&] {
         f.node->SetObjOffsetPos({0, 0, 1});
       }},
      {"channel", [&] { f.morpher->GetChannel(0)->SetWeight(0, 5); }},
      {"targets", [&] { f.morpher->GetChannel(0)->SetTargets(Targets({})); }},
      {"weights",
       [&] {
         f.skin->SetWeights(Rigid({0, 0}));
       }},
      {"levels", [&] { f.subdivision->GetParamBlock()->SetValue(SubdivisionModifier::kLevels, 0, 2); }},
      {"mesh", [&] { static_cast<MeshObject*>(f.node->GetBaseObject())->SetMesh(Share(Cube(4))); }},
      {"modifier", [&] { f.node->AddModifier(new CountingModifier); }},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const int before = counter->count;
    row.change();
    EvaluatedMesh(f.node, 0);
    EXPECT_EQ(counter->count, before + 1);
    EvaluatedMesh(f.node, 0);
    EXPECT_EQ(counter->count, before + 1);
  }
  const int before = counter->count;
  f.bones[0]->SetName(L"renamed");
  GetScene().SelectNode(f.bones[0]);
  f.bones[0]->SetWireColor(7);
  EvaluatedMesh(f.node, 0);
  EXPECT_EQ(counter->count, before) << "only a bone's place matters";
}

TEST_F(MeshEvaluationTest, IntervalsOfBonesNodeAndWeightsAreMet) {
  INode* node = MeshNode(Cube(1));
  INode* bone = BoneNode(L"bone");
  auto* place = new TestMatrix;
  bone->SetTMController(place);
  place->validity = {0, 100};
  auto* ownPlace = new TestMatrix;
  node->SetTMController(ownPlace);
  ownPlace->validity = {50, 200};
  Bind(node, {bone})->SetWeights(Rigid({0}));
  EXPECT_EQ(EvaluatedMesh(node, 60)->valid, (Interval{50, 100}));
}

// The mesh hangs under its bone, which is told once, and its own place is dropped with the bone's and by nothing else.
TEST_F(MeshEvaluationTest, BonesChangePointsAndNotThePlaceOfTheMesh) {
  INode* node = MeshNode(Cube(1));
  INode* bone = BoneNode(L"bone");
  INode* parent = BoneNode(L"parent");
  parent->AttachChild(node);
  Bind(node, {bone, parent})->SetWeights(Rigid({0, 1}));
  auto* place = new TestMatrix;
  node->SetTMController(place);
  auto* listener = new Listener;
  const Ref<Listener> keep(listener);
  listener->ReplaceReference(0, node);
  node->GetNodeTM(0);
  const int evaluations = place->evaluations;
  listener->heard = 0;
  Place(bone, TransMatrix({1, 0, 0}));
  EXPECT_GE(listener->heard, 1);
  EXPECT_EQ(listener->lastPart & PART_TM, 0u);
  node->GetNodeTM(0);
  EXPECT_EQ(place->evaluations, evaluations);
  listener->heard = 0;
  Place(parent, TransMatrix({1, 0, 0}));
  EXPECT_LE(listener->heard, 8);
  node->GetNodeTM(0);
  EXPECT_EQ(place->evaluations, evaluations + 1);
  listener->DeleteAllRefs();
}

TEST_F(MeshEvaluationTest, NewPosesAllocateNothing) {
  const Figure f = MakeFigure();
  auto& place = *new TestMatrix;
  f.bones[1]->SetTMController(&place);
  place.validity = {0, 0};
  for (int t = 0; t < 4; ++t) EvaluatedMesh(f.node, t);
  const tests::AllocCounter counter;
  for (int t = 4; t < 9; ++t) {
    place.tm_.row[3].x = static_cast<float>(t);
    place.validity = {t, t};
    EvaluatedMesh(f.node, t);
  }
  EXPECT_EQ(counter.Count(), 0u);
}

TEST_F(MeshEvaluationTest, BareMeshesAndSharedOnesAnswer) {
  INode* node = MeshNode(Cube(1));
  const MeshState* state = EvaluatedMesh(node, 0);
  ASSERT_TRUE(state);
  EXPECT_EQ(state->points, Cube(1).points);
  EXPECT_EQ(EvaluatedMesh(BoneNode(L"no mesh"), 0), nullptr);
  EXPECT_EQ(EvaluatedMesh(nullptr, 0), nullptr);
  // One skinned object on two nodes: each sees it from where it stands.
  const Figure f = MakeFigure();
  INode* second = GetScene().CreateObjectNode(f.node->GetObjectRef());
  Place(second, TransMatrix({10, 0, 0}));
  const Point3 first = PointsOf(f.node)[0];
  ExpectNear(PointsOf(second)[0], first - Point3{10, 0, 0}, kPlaceError);
  ExpectNear(PointsOf(f.node)[0], first, kPlaceError);
}

}  // namespace
}  // namespace corvanta
