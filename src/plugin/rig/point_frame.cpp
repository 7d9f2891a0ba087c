// SPDX-License-Identifier: MIT
#include "plugin/rig/point_frame.h"

#include <algorithm>
#include <cmath>

#include "plugin/frame/rig_maths.h"

namespace tavrilon {
namespace {

enum class FrameRule { Center, Trunk, Root, Joint, LimbEnd, Hand, Foot, Digit, Toe, Ground };

const Point3 kBack = {0, 1, 0}, kFront = {0, -1, 0}, kUp = {0, 0, 1}, kLeft = {1, 0, 0};

struct WordRule {
  const wchar_t* word;
  FrameRule rule;
  /// Where a straight limb bends to.
  Point3 pole;
};

const WordRule kWordRules[] = {
    {L"pelvis", FrameRule::Trunk, {}},
    {L"clavicle", FrameRule::Root, kBack},
    {L"upper_arm", FrameRule::Joint, kBack},
    {L"forearm", FrameRule::Joint, kBack},
    {L"hand", FrameRule::Hand, kBack},
    {L"hand_end", FrameRule::Hand, kBack},
    {L"leg_clavicle", FrameRule::Root, kBack},
    {L"front_thigh", FrameRule::Joint, kBack},
    {L"front_calf", FrameRule::Joint, kBack},
    {L"front_cannon", FrameRule::Joint, kBack},
    {L"front_foot", FrameRule::Foot, kBack},
    {L"front_foot_end", FrameRule::Foot, kBack},
    {L"thigh", FrameRule::Joint, kFront},
    {L"calf", FrameRule::Joint, kFront},
    {L"cannon", FrameRule::Joint, kFront},
    {L"foot", FrameRule::Foot, kFront},
    {L"foot_end", FrameRule::Foot, kFront},
    {L"coxa", FrameRule::Root, kUp},
    {L"femur", FrameRule::Joint, kUp},
    {L"tibia", FrameRule::Joint, kUp},
    {L"metatarsus", FrameRule::Joint, kUp},
    {L"tarsus", FrameRule::Joint, kUp},
    {L"leg_tip", FrameRule::LimbEnd, kUp},
    {L"finger", FrameRule::Digit, {}},
    {L"metacarpal", FrameRule::Digit, {}},
    {L"toe", FrameRule::Toe, {}},
    {L"metatarsal", FrameRule::Toe, {}},
    {L"front_toe", FrameRule::Toe, {}},
    {L"hand_heel", FrameRule::Ground, {}},
    {L"hand_tip", FrameRule::Ground, {}},
    {L"hand_inner", FrameRule::Ground, {}},
    {L"hand_outer", FrameRule::Ground, {}},
    {L"front_foot_heel", FrameRule::Ground, {}},
    {L"front_foot_tip", FrameRule::Ground, {}},
    {L"front_foot_inner", FrameRule::Ground, {}},
    {L"front_foot_outer", FrameRule::Ground, {}},
    {L"foot_heel", FrameRule::Ground, {}},
    {L"foot_tip", FrameRule::Ground, {}},
    {L"foot_inner", FrameRule::Ground, {}},
    {L"foot_outer", FrameRule::Ground, {}},
};
const WordRule kCenterRule = {L"", FrameRule::Center, {}};

/// Digits of a further pair have its number in their word: "finger2" is a "finger".
WStr WithoutNumber(WStr word) {
  while (!word.empty() && word.back() >= L'0' && word.back() <= L'9') word.pop_back();
  return word;
}

const WordRule& RuleOf(const RigPoint& point) {
  const WStr word = WithoutNumber(PointWord(point.name));
  for (const WordRule& rule : kWordRules)
    if (word == rule.word) return rule;
  return kCenterRule;
}

bool IsLimb(FrameRule rule) {
  return rule == FrameRule::Joint || rule == FrameRule::LimbEnd || rule == FrameRule::Hand || rule == FrameRule::Foot;
}

bool IsEndPoint(const RigPoint& point) {
  const WStr word = PointWord(point.name);
  return word.size() > 4 && word.compare(word.size() - 4, 4, L"_end") == 0;
}

/// The number at the end of a limb point's name: "_2" for "r_hand_2", empty for the first pair.
WStr FurtherPair(const WStr& name) {
  const size_t bar = name.rfind(L'_');
  const WStr number = bar == WStr::npos ? WStr() : name.substr(bar + 1);
  return number == L"1" || WithoutNumber(number) == number ? WStr() : number;
}

Point3 Orthogonal(const Point3& v, const Point3& to) {
  const Point3 n = Normalize(to);
  return v - n * Dot(v, n);
}

}  // namespace

PointFrames::PointFrames(const RigPoints& points, const PointPlaces& places) : points_(points), places_(places) {
  index_.reserve(points.size());
  for (size_t i = 0; i < points.size(); ++i) index_.try_emplace(points[i].name, static_cast<int>(i));
}

int PointFrames::Find(const WStr& name) const {
  const auto found = index_.find(name);
  return found == index_.end() ? -1 : found->second;
}

std::vector<int> PointFrames::LimbJoints(int point) const {
  if (point < 0) return {};
  const auto rule = [&](int i) { return RuleOf(points_[i]).rule; };
  int first = rule(point) == FrameRule::Root ? points_[point].aim : point;
  if (first < 0 || !IsLimb(rule(first)) || IsEndPoint(points_[first])) return {};
  // Up to the first joint. The step count guards against parents that run in a circle.
  for (size_t steps = 0; steps < points_.size(); ++steps) {
    const int above = points_[first].parent;
    if (above < 0 || rule(above) != FrameRule::Joint || points_[above].aim != first) break;
    first = above;
  }
  std::vector<int> joints;
  for (int i = first; i >= 0 && IsLimb(rule(i)) && joints.size() < points_.size(); i = points_[i].aim) {
    joints.push_back(i);
    if (rule(i) != FrameRule::Joint) break;
  }
  return joints;
}

Point3 PointFrames::PoleVector(int point) const {
  const std::vector<int> joints = LimbJoints(point);
  const Point3 straight = point >= 0 ? RuleOf(points_[point]).pole : Point3{};
  if (joints.size() < 3) return straight;
  const Point3 a = places_[joints.front()], b = places_[joints[1]], c = places_[joints.back()];
  const Point3 bend = Orthogonal(b - a, c - a);
  // Below 0.2 percent of the limb the bend's direction is noise of the positions.
  if (Length(bend) >= .002f * Length(c - a)) return bend;
  return Orthogonal(straight, c - a);
}

int PointFrames::EndOfLimb(int point) const {
  int i = points_[point].parent;
  for (size_t steps = 0; i >= 0 && steps < points_.size(); ++steps, i = points_[i].parent) {
    const FrameRule rule = RuleOf(points_[i]).rule;
    if (rule == FrameRule::Hand || rule == FrameRule::Foot) return i;
  }
  return -1;
}

bool PointFrames::IsHoof(int hand) const {
  const int parent = points_[hand].parent;
  return RuleOf(points_[hand]).rule == FrameRule::Foot ||
         (parent >= 0 && PointWord(points_[parent].name) == L"front_cannon");
}

int PointFrames::DigitRoot(int end, int i) const {
  const WStr word = PointWord(points_[end].name), pair = FurtherPair(points_[end].name);
  const int side = points_[end].Side();
  const auto root = [&](const wchar_t* digit) { return Find(PointName(digit + pair, side, i, 0)); };
  if (word == L"foot") return root(L"toe");
  const int front = word == L"front_foot" ? root(L"front_toe") : -1;
  return front >= 0 ? front : root(L"finger");
}

Point3 PointFrames::Dorsal(int hand) const {
  int last = 0;
  while (DigitRoot(hand, last) >= 0) ++last;
  const float sigma = points_[hand].Side() == kSideLeft ? -1.0f : 1.0f;
  if (last >= 3) {
    const Point3 origin = places_[hand];
    return Normalize(Cross(places_[DigitRoot(hand, 1)] - origin, places_[DigitRoot(hand, last - 1)] - origin)) * -sigma;
  }
  // Too few long fingers to span the palm: the forearm's frame a quarter turn about its X.
  const int forearm = points_[hand].parent;
  if (forearm < 0) return kUp;
  Matrix3 frame = PointTM(forearm, 1);
  frame.PreRotateX(-sigma * corvanta::kHalfPi);
  return frame.row[1];
}

Point3 PointFrames::ThumbUp(int hand, const Point3& dorsal) const {
  int last = 0;
  while (DigitRoot(hand, last) >= 0) ++last;
  const Point3 thumb = places_[DigitRoot(hand, 0)] - places_[hand];
  const Point3 across =
      last >= 3 ? places_[DigitRoot(hand, 1)] - places_[DigitRoot(hand, last - 1)] : Orthogonal(thumb, AimOf(hand));
  return Normalize(dorsal * .5f + Normalize(across) * .866f);
}

Point3 PointFrames::FootUp(int foot) const {
  const int above = points_[foot].parent;
  return above >= 0 && IsLimb(RuleOf(points_[above]).rule) ? places_[above] - places_[foot] : kUp;
}

Point3 PointFrames::ToesUp(int foot) const {
  Point3 sum;
  int count = 0;
  for (int root = DigitRoot(foot, 0); root >= 0; root = DigitRoot(foot, ++count)) sum += places_[root];
  // The middle of all roots, since the first toe of a broad paw stands far to the side.
  return count > 0 ? places_[foot] - sum / static_cast<float>(count) : kUp;
}

Point3 PointFrames::GroundAim(int foot) const {
  if (foot < 0) return kFront;
  const RigPoint& point = points_[foot];
  const WStr word = PointWord(point.name);
  const WStr number = point.name.substr(point.name.find(word) + word.size());
  const WStr before = point.name.substr(0, point.name.find(word)) + word;
  const int heel = Find(before + L"_heel" + number), tip = Find(before + L"_tip" + number);
  if (heel < 0 || tip < 0) return Orthogonal(AimOf(foot), kUp);
  return Orthogonal(places_[tip] - places_[heel], kUp);
}

Point3 PointFrames::TrunkAim(int pelvis) const {
  int last = points_[pelvis].aim;
  if (last < 0) return kUp;
  last = places_.Row(points_, last).back();
  const Point3 along = places_[last] - places_[pelvis];
  return Dot(along, kUp) >= Dot(along, kFront) ? kUp : kFront;
}

Point3 PointFrames::AimOf(int i) const {
  const RigPoint& point = points_[i];
  switch (RuleOf(point).rule) {
    case FrameRule::Trunk:
      return TrunkAim(i);
    case FrameRule::Ground:
      return GroundAim(point.parent);
    default:
      break;
  }
  const auto apart = [&](const Point3& v) { return LengthSquared(v) > 1e-12f; };
  if (point.aim >= 0 && apart(places_[point.aim] - places_[i])) return places_[point.aim] - places_[i];
  // Away from the nearest ancestor that stands elsewhere.
  int above = point.parent;
  for (size_t steps = 0; above >= 0 && steps < points_.size(); ++steps, above = points_[above].parent)
    if (apart(places_[i] - places_[above])) return places_[i] - places_[above];
  return kUp;
}

Point3 PointFrames::UpOf(int i, const Point3& x) const {
  const RigPoint& point = points_[i];
  if (point.up >= 0) return places_[point.up] - places_[i];
  const int end = IsEndPoint(point) ? point.parent : i;
  FrameRule rule = RuleOf(point).rule;
  const int limbEnd = rule == FrameRule::Digit || rule == FrameRule::Toe ? EndOfLimb(i) : -1;
  if (rule == FrameRule::Digit && limbEnd >= 0 && IsHoof(limbEnd)) rule = FrameRule::Toe;
  if (rule == FrameRule::Hand && end >= 0 && IsHoof(end)) rule = FrameRule::Foot;
  switch (rule) {
    case FrameRule::Root:
    case FrameRule::Joint:
    case FrameRule::LimbEnd:
      return PoleVector(i);
    case FrameRule::Hand:
      return end >= 0 ? Dorsal(end) : kUp;
    case FrameRule::Foot:
      return end >= 0 ? FootUp(end) : kUp;
    case FrameRule::Ground:
      return kUp;
    case FrameRule::Digit: {
      if (limbEnd < 0) return kUp;
      const Point3 dorsal = Dorsal(limbEnd);
      const WStr base = PointName(PointWord(point.name), point.Side(), 0);
      const bool first = point.name == base || point.name.compare(0, base.size() + 1, base + L"_") == 0;
      return first && DigitRoot(limbEnd, 1) >= 0 ? ThumbUp(limbEnd, dorsal) : dorsal;
    }
    case FrameRule::Toe: {
      return limbEnd >= 0 ? ToesUp(limbEnd) : kUp;
    }
    default:
      return Cross(kLeft, x);  // puts Z on the character's left
  }
}

Matrix3 PointFrames::PointTM(int point, float size) const {
  if (point < 0 || point >= static_cast<int>(points_.size())) return {};
  const Point3 x = AimOf(point);
  Matrix3 frame = FrameFromVectors(x, UpOf(point, x));
  frame.row[3] = places_[point] * size;
  return frame;
}

Matrix3 PointFrames::GroundTM(int foot, float size) const {
  if (foot < 0 || foot >= static_cast<int>(points_.size())) return {};
  Matrix3 frame = FrameFromVectors(GroundAim(foot), kUp);
  frame.row[3] = places_[foot] * size;
  return frame;
}

}  // namespace tavrilon
