// SPDX-License-Identifier: MIT
#include "plugin/rig/point_frame.h"

#include <gtest/gtest.h>

#include "plugin/frame/rig_maths.h"
#include "plugin/rig/template.h"
#include "plugin/rig/type_defaults.h"

namespace tavrilon {
namespace {

struct Sample {
  RigPoints points;
  PointPlaces places{points};
  PointFrames frames{points, places};
  explicit Sample(RigPoints p) : points(std::move(p)) {}
  explicit Sample(RigType type) : Sample(BuildTemplate(type, ParamsForType(type), {}, {})) {}
  Sample(const Sample&) = delete;
  Matrix3 TM(const wchar_t* name) const {
    EXPECT_GE(frames.Find(name), 0) << corvanta::ToUtf8(name);
    return frames.PointTM(frames.Find(name), 100);
  }
};

void ExpectFrame(const Matrix3& m) {
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_NEAR(Dot(m.row[i], m.row[j]), i == j, 1e-5f);
  EXPECT_NEAR(Determinant(m), 1, 1e-5f);
}

void ExpectToward(const Point3& axis, const Point3& direction, float least) {
  EXPECT_GT(Dot(axis, direction), least) << axis.x << ' ' << axis.y << ' ' << axis.z;
}

const Point3 kUp = {0, 0, 1}, kFront = {0, -1, 0}, kBack = {0, 1, 0}, kLeft = {1, 0, 0};

struct KnownFrame {
  RigType type;
  const wchar_t* point;
  Point3 x, y;
};
const KnownFrame kFrames[] = {
    {RigType::Biped, L"pelvis", kUp, kFront},
    {RigType::Biped, L"spine_2", kUp, kFront},
    {RigType::Biped, L"spine_3", kUp, kFront},
    {RigType::Biped, L"neck_1", kUp, kFront},
    {RigType::Biped, L"head", kUp, kFront},
    {RigType::Biped, L"head_end", kUp, kFront},
    {RigType::Quadruped, L"pelvis", kFront, -kUp},
    {RigType::Quadruped, L"spine_1", kFront, -kUp},
    {RigType::Quadruped, L"tail_1_2", -kUp, kBack},
    {RigType::Centaur, L"pelvis", kFront, -kUp},
    {RigType::Biped, L"l_clavicle_1", kLeft, kBack},
    {RigType::Biped, L"l_upper_arm_1", kLeft, kBack},
    {RigType::Biped, L"r_forearm_1", -kLeft, kBack},
    {RigType::Biped, L"l_hand_1", kLeft, kUp},
    {RigType::Biped, L"r_hand_1", -kLeft, kUp},
    {RigType::Biped, L"r_finger_3_2", -kLeft, kUp},
    {RigType::Biped, L"r_finger_3_end", -kLeft, kUp},
    {RigType::Biped, L"l_finger_1_2", {.8f, -.6f, 0}, {-.5f, -.5f, .5f}},
    {RigType::Biped, L"l_thigh_1", -kUp, kFront},
    {RigType::Biped, L"r_calf_1", -kUp, kFront},
    {RigType::Biped, L"r_foot_1", kFront, kUp},
    {RigType::Biped, L"r_toe_1_1", kFront, kUp},
    {RigType::Biped, L"l_foot_end_1", kFront, kUp},
    {RigType::Biped, L"l_foot_heel_1", kFront, kUp},
    {RigType::Quadruped, L"l_upper_arm_1", -kUp, kBack},
    {RigType::Quadruped, L"l_thigh_1", -kUp, kFront},
    {RigType::Quadruped, L"l_hand_tip_1", kFront, kUp},
    {RigType::FrontPaws, L"r_finger_2_1", kFront, kUp},
    {RigType::Insect, L"l_metatarsus_2", -kUp, kLeft},
};
TEST(PointFrame, AxesLookWhereTheBodyHasThem) {
  for (const KnownFrame& known : kFrames) {
    SCOPED_TRACE(corvanta::ToUtf8(known.point) + " of " +
                 corvanta::ToUtf8(kRigTypeNames[static_cast<int>(known.type)]));
    const Matrix3 tm = Sample(known.type).TM(known.point);
    ExpectFrame(tm);
    ExpectToward(tm.row[0], known.x, .6f);
    ExpectToward(tm.row[1], known.y, .6f);
  }
}

// Right frames are D * left * S, and centre frames D * itself * S, for every point of every kind of rig.
TEST(PointFrame, MirroredPointsHaveMirroredFrames) {
  for (int i = 0; i < kRigTypeCount; ++i) {
    TemplateParams params = ParamsForType(static_cast<RigType>(i));
    params[rig_param::kFace] = params[rig_param::kMetacarpals] = params[rig_param::kMetatarsals] = 1;
    params[rig_param::kTails] = params[rig_param::kPonytails] = 1;
    params[rig_param::kToes] = 3;
    for (int fingers : {0, 1, 2, 3, 5, 7}) {
      params[rig_param::kFingers] = fingers;
      const Sample s(BuildTemplate(static_cast<RigType>(i), params, {}, {{L"ear", L"head", kSideBoth, 2, 2, false}}));
      for (size_t p = 0; p < s.points.size(); ++p) {
        const RigPoint& point = s.points[p];
        if (point.Side() == kSideLeft || point.IsInBetween()) continue;
        const int other = point.mirror >= 0 ? point.mirror : static_cast<int>(p);
        SCOPED_TRACE(corvanta::ToUtf8(kRigTypeNames[i]) + (" " + corvanta::ToUtf8(point.name)));
        const Matrix3 right = s.frames.PointTM(static_cast<int>(p), 100);
        Matrix3 mirrored = s.frames.PointTM(other, 100);
        mirrored.Scale({-1, 1, 1}, true);
        mirrored.PreScale({1, 1, -1});
        ExpectFrame(right);
        // Rounding of unit vectors, and of places of 100 units.
        for (int r = 0; r < 4; ++r) EXPECT_LT(Length(right.row[r] - mirrored.row[r]), 2e-5f) << "row " << r;
      }
    }
  }
}

struct Flexion {
  RigType type;
  const wchar_t *joint, *next;
};
const Flexion kFlexions[] = {
    {RigType::Biped, L"l_upper_arm_1", L"l_forearm_1"},
    {RigType::Biped, L"r_upper_arm_1", L"r_forearm_1"},
    {RigType::Biped, L"l_thigh_1", L"l_calf_1"},
    {RigType::Biped, L"r_finger_2_1", L"r_finger_2_2"},
    {RigType::Biped, L"l_finger_4_2", L"l_finger_4_3"},
    {RigType::Biped, L"l_finger_1_1", L"l_finger_1_2"},
    {RigType::Quadruped, L"r_upper_arm_1", L"r_forearm_1"},
    {RigType::Quadruped, L"r_thigh_1", L"r_calf_1"},
};
TEST(PointFrame, JointsFlexAboutMinusZ) {
  for (const Flexion& f : kFlexions) {
    SCOPED_TRACE(corvanta::ToUtf8(f.joint));
    const Sample s(f.type);
    const Matrix3 a = s.TM(f.joint), b = s.TM(f.next);
    EXPECT_LT(Dot(Cross(a.row[0], b.row[0]), a.row[2]), 0);
  }
}

TEST(PointFrame, LimbsAreFoundFromAnyJoint) {
  const Sample s(RigType::Quadruped);
  const std::vector<int> hind = s.frames.LimbJoints(s.frames.Find(L"l_cannon_1"));
  ASSERT_EQ(hind.size(), 4u);
  EXPECT_EQ(s.points[hind.front()].name, L"l_thigh_1");
  EXPECT_EQ(s.points[hind.back()].name, L"l_foot_1");
  EXPECT_EQ(s.frames.LimbJoints(s.frames.Find(L"r_clavicle_1")).size(), 4u);
  EXPECT_TRUE(s.frames.LimbJoints(s.frames.Find(L"head")).empty());
}

TEST(PointFrame, AStraightLimbStillHasAPole) {
  RigPoints points = BuildTemplate(RigType::Arms, ParamsForType(RigType::Arms), {}, {});
  const int a = FindPoint(points, L"l_upper_arm_1"), b = FindPoint(points, L"l_forearm_1"),
            c = FindPoint(points, L"l_hand_1");
  points[b].position = (points[a].position + points[c].position) * .5f;
  const Sample s(points);
  ExpectToward(Normalize(s.frames.PoleVector(b)), kBack, .99f);
}

}  // namespace
}  // namespace tavrilon
