// SPDX-License-Identifier: MIT
#include "plugin/rig/template.h"

#include <gtest/gtest.h>

#include <set>

#include "plugin/frame/rig_maths.h"
#include "plugin/rig/point_place.h"
#include "plugin/rig/type_defaults.h"

namespace tavrilon {
namespace {

/// Positions are told with three to four digits for a figure of height 1.
constexpr float kTold = 6e-5f;

RigPoints Template(RigType type) { return BuildTemplate(type, ParamsForType(type), {}, {}); }

Point3 At(const RigPoints& points, const wchar_t* name) {
  const int i = FindPoint(points, name);
  EXPECT_GE(i, 0) << "no point " << corvanta::ToUtf8(name);
  return PointPlaces(points).At(i);
}

void ExpectAt(const RigPoints& points, const wchar_t* name, const Point3& told) {
  SCOPED_TRACE(corvanta::ToUtf8(name));
  const Point3 place = At(points, name);
  for (int axis = 0; axis < 3; ++axis) EXPECT_NEAR(place[axis], told[axis], kTold);
}

/// Bend at b on the way from a to c, in degrees.
float BendDeg(const Point3& a, const Point3& b, const Point3& c) {
  return AngleBetween(b - a, c - b) * corvanta::kRadToDeg;
}

TEST(Template, BipedHasTheKnownMeasures) {
  const RigPoints biped = Template(RigType::Biped);
  const auto at = [&](const wchar_t* name) { return At(biped, name); };
  const float h = 100;
  // Each figure is told to two digits, so half of the last digit either way.
  EXPECT_NEAR(PointPlaces(biped).Bounds().Diagonal() * h, 145.92f, .005f);
  const Point3 shoulder = at(L"l_upper_arm_1"), elbow = at(L"l_forearm_1"), wrist = at(L"l_hand_1");
  const Point3 hip = at(L"r_thigh_1"), knee = at(L"r_calf_1"), ankle = at(L"r_foot_1");
  EXPECT_NEAR(Length(elbow - shoulder) * h, 17.35f, .005f);
  EXPECT_NEAR(Length(wrist - elbow) * h, 14.07f, .005f);
  EXPECT_NEAR(Length(knee - hip) * h, 23.66f, .005f);
  EXPECT_NEAR(Length(ankle - knee) * h, 24.06f, .005f);
  EXPECT_NEAR(BendDeg(shoulder, elbow, wrist), 7.98f, .005f);
  EXPECT_NEAR(BendDeg(hip, knee, ankle), 7.37f, .005f);
  EXPECT_NEAR(Length(wrist - shoulder) / (Length(elbow - shoulder) + Length(wrist - elbow)), .9976f, .00005f);
  EXPECT_NEAR(Length(ankle - hip) / (Length(knee - hip) + Length(ankle - knee)), .9979f, .00005f);
  EXPECT_NEAR(at(L"l_finger_3_end").x, .525f, .001f);
  EXPECT_NEAR(hip.z, .5198f, kTold);
  EXPECT_NEAR(knee.z, .2833f, kTold);
  EXPECT_NEAR(ankle.z, .0439f, kTold);
  EXPECT_NEAR(Length(at(L"r_foot_tip_1") - at(L"r_foot_heel_1")), .157f, .0005f);
  ExpectAt(biped, L"spine_1", {0, .0087f, .579f});
  ExpectAt(biped, L"spine_2", {0, .0246f, .7095f});
  ExpectAt(biped, L"spine_3", {0, .0188f, .840f});
  EXPECT_NEAR(at(L"neck_1").z, .844f, kTold);
  EXPECT_NEAR(at(L"head").z, .9064f, kTold);
  EXPECT_NEAR(at(L"head_end").z, 1.0f, kTold);
}

struct KnownBend {
  const char* name;
  RigType type;
  const wchar_t* joints[4];
  float bendDeg[2];
};
const KnownBend kBends[] = {
    {"foreleg", RigType::Quadruped, {L"r_upper_arm_1", L"r_forearm_1", L"r_front_cannon_1", L"r_hand_1"}, {54, 10}},
    {"hind leg", RigType::Quadruped, {L"r_thigh_1", L"r_calf_1", L"r_cannon_1", L"r_foot_1"}, {73, 50}},
    {"minotaur", RigType::Minotaur, {L"l_thigh_1", L"l_calf_1", L"l_cannon_1", L"l_foot_1"}, {65, 62}},
};
TEST(Template, LegsOfFourJointsBendAsKnown) {
  for (const KnownBend& leg : kBends) {
    SCOPED_TRACE(leg.name);
    const RigPoints points = Template(leg.type);
    const auto at = [&](int i) { return At(points, leg.joints[i]); };
    EXPECT_NEAR(BendDeg(at(0), at(1), at(2)), leg.bendDeg[0], .5f);
    EXPECT_NEAR(BendDeg(at(1), at(2), at(3)), leg.bendDeg[1], .5f);
  }
}

/// All types, at defaults and with everything switched on.
std::vector<std::pair<std::string, RigPoints>> Everything() {
  using namespace rig_param;
  std::vector<std::pair<std::string, RigPoints>> all;
  for (int i = 0; i < kRigTypeCount; ++i) {
    const RigType type = static_cast<RigType>(i);
    const std::string name = corvanta::ToUtf8(kRigTypeNames[i]);
    all.emplace_back(name, Template(type));
    TemplateParams rich = ParamsForType(type);
    for (const RigParamRow& row : kRigParamRows)
      if (row.kind == RigParamKind::Bool) rich[row.id] = 1;
    rich[kArmPairs] = rich[kLegPairs] = rich[kTails] = rich[kPonytails] = 2;
    rich[kMorpherBased] = 0;
    all.emplace_back(name + " rich", BuildTemplate(type, rich, {}, {{L"ear", L"head", kSideBoth, 2, 3, true}}));
    rich[kSide] = kSideLeft;
    rich[kSpineControls] = rich[kFingers] = rich[kToes] = 1;
    rich[kHeads] = 0;
    all.emplace_back(name + " left", BuildTemplate(type, rich, {}, {{L"fin", L"spine_1", kSideCenter, 1, 2, true}}));
  }
  return all;
}

TEST(Template, NamesAreUniqueAndLinksRunBackwards) {
  for (const auto& [title, points] : Everything()) {
    SCOPED_TRACE(title);
    std::set<WStr> names;
    for (size_t i = 0; i < points.size(); ++i) {
      EXPECT_TRUE(names.insert(points[i].name).second) << corvanta::ToUtf8(points[i].name);
      EXPECT_LT(points[i].parent, static_cast<int>(i));
      EXPECT_EQ(points[i].name.compare(0, 2, L"r_") == 0, points[i].Side() == kSideRight);
      EXPECT_EQ(points[i].name.compare(0, 2, L"l_") == 0, points[i].Side() == kSideLeft);
    }
  }
}

TEST(Template, PairsAreMirrorImages) {
  for (const auto& [title, points] : Everything()) {
    SCOPED_TRACE(title);
    const PointPlaces places(points);
    for (size_t i = 0; i < points.size(); ++i) {
      const int other = points[i].mirror;
      if (other < 0) continue;
      ASSERT_EQ(points[other].mirror, static_cast<int>(i));
      EXPECT_EQ(WithoutSide(points[other].name), WithoutSide(points[i].name));
      const Point3 a = places[static_cast<int>(i)], b = places[other];
      EXPECT_EQ(a, (Point3{-b.x, b.y, b.z}));
      if (points[i].Side() == kSideRight) {
        EXPECT_LE(a.x, 0);
      }
    }
  }
}

struct Presence {
  const char* name;
  RigType type;
  std::vector<TypeDefault> set;
  std::vector<const wchar_t*> there, absent;
};
// clang-format off
const Presence kPresence[] = {
    {"biped", RigType::Biped, {},
     {L"pelvis", L"spine_3", L"spine_bone_6", L"r_upper_arm_1", L"l_toe_1_end"},
     {L"tail_1_1", L"ponytail_1_1", L"r_fang_1", L"neck_bone_1", L"l_metacarpal_1", L"spine_4"}},
    {"no head", RigType::Biped, {{rig_param::kHeads, 0}}, {L"r_clavicle_1"}, {L"head", L"neck_1"}},
    {"no legs", RigType::Biped, {{rig_param::kLegPairs, 0}}, {L"pelvis"}, {L"r_thigh_1", L"l_foot_heel_1"}},
    {"no fingers", RigType::Biped, {{rig_param::kFingers, 0}}, {L"l_hand_1", L"l_hand_end_1"}, {L"l_finger_1_1"}},
    {"two pairs", RigType::Biped, {{rig_param::kArmPairs, 2}},
     {L"r_hand_2", L"r_finger2_5_3", L"l_finger2_1_end"}, {L"r_hand_3"}},
    {"long toes", RigType::Biped, {{rig_param::kToeBones, 4}}, {L"l_toe_1_4", L"l_toe_1_end"}, {L"l_toe_1_5"}},
    {"flat foot", RigType::Biped, {{rig_param::kReverseFoot, 0}}, {L"l_foot_end_1"}, {L"l_foot_heel_1"}},
    {"two tails", RigType::Biped, {{rig_param::kTails, 2}}, {L"tail_1_4", L"tail_2_4"}, {L"tail_3_1", L"tail_1_5"}},
    {"quadruped", RigType::Quadruped, {},
     {L"r_front_cannon_1", L"r_finger_1_1", L"r_hand_heel_1", L"l_cannon_1", L"tail_1_1"},
     {L"r_finger_2_1", L"r_finger_1_2", L"r_front_thigh_1"}},
    {"centaur", RigType::Centaur, {},
     {L"r_upper_arm_1", L"l_front_foot_1", L"l_front_toe_1_1", L"r_foot_1", L"r_finger_5_3"}, {}},
    {"right hand", RigType::Hands, {{rig_param::kSide, 0}}, {L"r_finger_1_1"}, {L"l_finger_1_1", L"pelvis"}},
    {"left foot", RigType::Feet, {{rig_param::kSide, 1}}, {L"l_foot_tip_1"}, {L"r_foot_tip_1"}},
    {"insect", RigType::Insect, {},
     {L"l_leg_tip_3", L"ponytail_2_4", L"r_fang_2", L"tail_1_4"}, {L"r_clavicle_1", L"l_coxa_4"}},
};
// clang-format on
TEST(Template, CountsMakeThePoints) {
  for (const Presence& row : kPresence) {
    SCOPED_TRACE(row.name);
    TemplateParams params = ParamsForType(row.type);
    for (const TypeDefault& set : row.set) params[set.id] = set.value;
    const RigPoints points = BuildTemplate(row.type, params, {}, {});
    for (const wchar_t* name : row.there) EXPECT_GE(FindPoint(points, name), 0) << corvanta::ToUtf8(name);
    for (const wchar_t* name : row.absent) EXPECT_EQ(FindPoint(points, name), -1) << corvanta::ToUtf8(name);
  }
  EXPECT_TRUE(Template(RigType::Ears).empty());
  EXPECT_TRUE(Template(RigType::Tentacle).empty());
}

TEST(Template, RebuildKeepsWhatTheUserMoved) {
  TemplateParams params = ParamsForType(RigType::Biped);
  RigPoints points = BuildTemplate(RigType::Biped, params, {}, {});
  const Point3 moved = {.1f, .2f, .3f};
  RigPoint& second = points[FindPoint(points, L"spine_2")];
  second.position = moved;
  second.selected = 1;
  params[rig_param::kSpineControls] = 5;
  params[rig_param::kSelectedComponent] = rig_param::kSpineControls;
  const RigPoints rebuilt = BuildTemplate(RigType::Biped, params, points, {});
  const auto at = [&](const wchar_t* name) { return rebuilt[FindPoint(rebuilt, name)]; };
  EXPECT_EQ(at(L"spine_2").position, moved);
  EXPECT_EQ(at(L"spine_2").selected, 1);
  EXPECT_EQ(at(L"spine_1").selected, 0) << "a kept point stays unselected";
  const RigPoints plain = BuildTemplate(RigType::Biped, params, {}, {});
  EXPECT_EQ(at(L"spine_3").position, plain[FindPoint(plain, L"spine_3")].position)
      << "what nobody moved is spread anew";
  EXPECT_EQ(at(L"spine_4").selected, 1) << "a new point of the chosen component";
  EXPECT_EQ(at(L"spine_bone_1").selected, 0);
}

TEST(Template, ExtrasHangOnNamedPoints) {
  const std::vector<RigExtra> extras = {{L"ear", L"head", kSideBoth, 2, 3, true},
                                        {L"wing", L"upper_arm_1", kSideLeft, 1, 2, false},
                                        {L"cape", L"nowhere", kSideCenter, 1, 2, false},
                                        {L"parked", L"head", kSideNone, 1, 2, false}};
  const RigPoints points = BuildTemplate(RigType::Biped, ParamsForType(RigType::Biped), {}, extras);
  const int ear = FindPoint(points, L"r_ear_1");
  ASSERT_GE(ear, 0);
  EXPECT_EQ(points[points[ear].parent].name, L"head");
  EXPECT_EQ(points[ear].component, kFirstExtraComponent);
  EXPECT_LT(At(points, L"r_ear_end").x, At(points, L"r_ear_2").x);
  EXPECT_GT(At(points, L"l_ear_bone_3").x, At(points, L"l_ear_bone_2").x);
  EXPECT_EQ(At(points, L"l_wing_1"), At(points, L"l_upper_arm_1"));
  EXPECT_GT(At(points, L"l_wing_end").x, At(points, L"l_wing_1").x);
  EXPECT_EQ(points[FindPoint(points, L"cape_1")].parent, -1);
  EXPECT_EQ(FindPoint(points, L"parked_1"), -1);
}

TEST(Template, HostileCountsStayBounded) {
  TemplateParams params = ParamsForType(RigType::Biped);
  for (const RigParamRow& row : kRigParamRows) params[row.id] = std::numeric_limits<int>::max();
  EXPECT_EQ(BuildTemplate(RigType::Biped, params, {}, {}).size(), kMaxTemplatePoints);
  for (const RigParamRow& row : kRigParamRows) params[row.id] = std::numeric_limits<int>::min();
  const RigExtra extra{L"x", L"x", kSideBoth, std::numeric_limits<int>::max(), -1, true};
  for (int type = -1; type <= kRigTypeCount; ++type)
    EXPECT_LT(BuildTemplate(static_cast<RigType>(type), params, {}, {extra}).size(), 1000u);
}

struct NameCase {
  const wchar_t* word;
  int side, index, sub;
  const wchar_t *name, *back;
};
const NameCase kNames[] = {
    {L"upper_arm", kSideRight, 0, -1, L"r_upper_arm_1", L"upper_arm"},
    {L"finger", kSideLeft, 1, 2, L"l_finger_2_3", L"finger"},
    {L"finger2", kSideLeft, 1, 2, L"l_finger2_2_3", L"finger2"},
    {L"spine_bone", kSideCenter, 5, -1, L"spine_bone_6", L"spine_bone"},
    {L"head", kSideNone, -1, -1, L"head", L"head"},
    {L"toe", kSideBoth, -1, 0, L"toe_1", L"toe"},
};
TEST(Template, NamesAreMadeAndTakenApart) {
  for (const NameCase& c : kNames) {
    EXPECT_EQ(PointName(c.word, c.side, c.index, c.sub), c.name);
    EXPECT_EQ(PointWord(c.name), c.back);
  }
}

}  // namespace
}  // namespace tavrilon
