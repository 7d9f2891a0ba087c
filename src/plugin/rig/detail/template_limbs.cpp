// SPDX-License-Identifier: MIT
// Arms, legs, hands, feet and paws. Positions are for the right side, in the units of the block.
#include <algorithm>
#include <cmath>

#include "plugin/rig/detail/template_builder.h"

namespace tavrilon::detail {
namespace {

using namespace rig_param;

/// Digits of the second and further pairs of hands carry the pair's number in their word: "finger2_1_1".
WStr DigitWord(const WStr& word, int pair) { return pair > 0 ? word + std::to_wstring(pair + 1) : word; }

/// The point at fraction `f` of a polyline's length.
Point3 AlongLine(const std::vector<Point3>& line, float f) {
  float total = 0;
  for (size_t i = 1; i < line.size(); ++i) total += Length(line[i] - line[i - 1]);
  float rest = f * total;
  for (size_t i = 1; i < line.size(); ++i) {
    const float piece = Length(line[i] - line[i - 1]);
    if (rest <= piece || i + 1 == line.size()) return Lerp(line[i - 1], line[i], piece > 0 ? rest / piece : 0);
    rest -= piece;
  }
  return line.front();
}

struct Digit {
  /// With the pair's number, without the digit's: "finger".
  WStr word;
  int number = 0;
  int component = 0;
  int bones = 1;
  /// First joint to tip.
  std::vector<Point3> line;
};

/// Adds the joints and the end point of a finger or toe; gives the first joint.
SidePair AddDigit(TemplateBuilder& t, const Block& block, const Digit& digit, const SidePair& parent) {
  const WStr word = PointName(digit.word, kSideCenter, digit.number);
  const bool asTold = static_cast<int>(digit.line.size()) == digit.bones + 1;
  SidePair first, last = parent;
  for (int j = 0; j <= digit.bones; ++j) {
    const bool end = j == digit.bones;
    const Point3 at = asTold ? digit.line[j] : AlongLine(digit.line, static_cast<float>(j) / digit.bones);
    const SidePair joint = t.AddPair({end ? word + L"_end" : word, end ? -1 : j, digit.component, at, last, 0}, block);
    if (j > 0) t.SetAim(last, joint);
    if (j == 0) first = joint;
    last = joint;
  }
  return first;
}

/// The bone between wrist and finger, or ankle and toe; gives the parent of the digit's first joint.
SidePair AddRootBone(TemplateBuilder& t, const Block& block, const NewPoint& bone, ID shown) {
  return t.params().On(shown) ? t.AddPair(bone, block) : bone.parent;
}

/// The digit that a foot looks at.
int MiddleOf(int digits) { return (digits - 1) / 2; }

struct HandRow {
  Point3 metacarpal;
  Point3 line[4];
};
// Thumb, index, middle, ring, little finger; palm down, the wrist at the origin.
const HandRow kHandRows[5] = {
    {{-.08f, -.10f, -.03f},
     {{-.16f, -.17f, -.06f}, {-.36f, -.33f, -.10f}, {-.52f, -.42f, -.12f}, {-.66f, -.49f, -.13f}}},
    {{-.10f, -.09f, .010f},
     {{-.50f, -.16f, .020f}, {-.71f, -.175f, .015f}, {-.83f, -.180f, .005f}, {-.95f, -.185f, -.010f}}},
    {{-.10f, -.02f, .015f},
     {{-.52f, -.02f, .030f}, {-.75f, -.020f, .022f}, {-.88f, -.020f, .010f}, {-1.0f, -.020f, -.005f}}},
    {{-.10f, .05f, .010f},
     {{-.49f, .11f, .022f}, {-.70f, .125f, .015f}, {-.82f, .130f, .003f}, {-.94f, .135f, -.010f}}},
    {{-.10f, .11f, .000f},
     {{-.45f, .23f, .005f}, {-.61f, .260f, .000f}, {-.70f, .275f, -.010f}, {-.80f, .285f, -.020f}}},
};

/// Which rows a hand of 1 to 5 fingers has.
constexpr int kHandChoice[6][5] = {{}, {2}, {0, 2}, {0, 1, 3}, {0, 1, 2, 3}, {0, 1, 2, 3, 4}};

HandRow ChooseHandRow(int fingers, int i) {
  if (fingers <= 5) return kHandRows[kHandChoice[fingers][i]];
  HandRow row = kHandRows[std::min(i, 4)];
  const Point3 further = Point3{.05f, .11f, 0} * static_cast<float>(std::max(i - 4, 0));
  row.metacarpal += further;
  for (Point3& p : row.line) p += further;
  return row;
}

/// Ground contacts under a foot, hand or paw: heel, tip, inner and outer edge.
struct Pivots {
  Point3 heel, tip, inner, outer;
};

void AddPivots(TemplateBuilder& t, const Block& block, const WStr& word, int pair, const Pivots& at,
               const SidePair& foot) {
  if (!t.params().On(kReverseFoot)) return;
  const std::pair<const wchar_t*, Point3> points[] = {
      {L"_heel", at.heel}, {L"_tip", at.tip}, {L"_inner", at.inner}, {L"_outer", at.outer}};
  for (const auto& [suffix, position] : points)
    t.AddPair({word + suffix, pair, kReverseFoot, position, foot, 0}, block);
}

/// A hoof: digits side by side from `root` to `tip`, and the ground contacts.
struct Hoof {
  const wchar_t* word;
  const wchar_t* digit;
  int component;
  ID digits, bones;
  int digitComponent;
  Point3 root, tip;
  Pivots pivots;
};

void AddHoof(TemplateBuilder& t, const Block& block, int pair, const Hoof& hoof, const SidePair& foot) {
  const SidePair end = t.AddPair({WStr(hoof.word) + L"_end", pair, hoof.component, hoof.tip, foot, 0}, block);
  t.SetAim(foot, end);
  const int n = t.params().Count(hoof.digits);
  for (int i = 0; i < n; ++i) {
    const Point3 aside = {n > 1 ? .030f * (1 - 2.0f * i / (n - 1)) : 0, 0, 0};  // split hooves and claws
    const Digit digit = {DigitWord(hoof.digit, pair),
                         i,
                         hoof.digitComponent,
                         t.params().Count(hoof.bones),
                         {hoof.root + aside, hoof.tip + aside}};
    const SidePair first = AddDigit(t, block, digit, foot);
    if (i == MiddleOf(n)) t.SetAim(foot, first);
  }
  AddPivots(t, block, hoof.word, pair, hoof.pivots, foot);
}

const Pivots kFrontHoofPivots = {{-.114f, .072f, 0}, {-.114f, -.050f, 0}, {-.070f, 0, 0}, {-.158f, 0, 0}};
const Hoof kFrontHoof = {
    L"front_foot",           L"front_toe",    kArmPairs, kToes, kToeBones, kToes, {-.114f, -.010f, .050f},
    {-.114f, -.038f, .015f}, kFrontHoofPivots};
const Hoof kForelegHoof = {L"hand",
                           L"finger",
                           kArmPairs,
                           kFingers,
                           kFingerBones,
                           kFingers,
                           {-.114f, -.010f, .050f},
                           {-.114f, -.038f, .015f},
                           kFrontHoofPivots};
const Hoof kBackHoof = {L"foot",
                        L"toe",
                        kLegPairs,
                        kToes,
                        kToeBones,
                        kToes,
                        {-.125f, .015f, .055f},
                        {-.125f, -.008f, .016f},
                        {{-.125f, .100f, 0}, {-.125f, -.020f, 0}, {-.080f, .045f, 0}, {-.170f, .045f, 0}}};

/// Distance from pair to pair of legs, along the body.
Point3 LegPairOffset(int pair) { return {0, .16f * static_cast<float>(pair), 0}; }

}  // namespace

void AddHand(TemplateBuilder& t, const Block& block, int pair, const SidePair& hand) {
  t.SetAim(hand, t.AddPair({L"hand_end", pair, kArmPairs, {-.50f, .03f, .012f}, hand, 0}, block));
  const int fingers = t.params().Count(kFingers);
  for (int i = 0; i < fingers; ++i) {
    const HandRow row = ChooseHandRow(fingers, i);
    const NewPoint bone = {DigitWord(L"metacarpal", pair), i, kMetacarpals, row.metacarpal, hand, 0};
    const SidePair root = AddRootBone(t, block, bone, kMetacarpals);
    const Digit digit = {DigitWord(L"finger", pair),
                         i,
                         kFingers,
                         t.params().Count(kFingerBones),
                         {std::begin(row.line), std::end(row.line)}};
    const SidePair first = AddDigit(t, block, digit, root);
    if (!(root == hand)) t.SetAim(root, first);
  }
}

void AddArms(TemplateBuilder& t, const Block& block, int parent, float drop) {
  const int pairs = t.params().Count(kArmPairs);
  for (int k = 0; k < pairs; ++k) {
    const Block arm = block.At({0, 0, -drop * static_cast<float>(k)});
    const std::vector<SidePair> row = t.AddRows({{L"clavicle", kArmPairs, -1, 1, {-.030f, .020f, -.055f}},
                                                 {L"upper_arm", kArmPairs, 0, 2, {-.195f, .050f, -.070f}},
                                                 {L"forearm", kArmPairs, 1, 3, {-.510f, .068f, -.072f}},
                                                 {L"hand", kArmPairs, 2, -1, {-.765f, .047f, -.074f}}},
                                                arm, k, Center(parent));
    AddHand(t, arm.At({-.765f, .047f, -.074f}, .190f), k, row.back());
  }
}

void AddFoot(TemplateBuilder& t, const Block& block, int pair, const SidePair& foot) {
  t.SetAim(foot, t.AddPair({L"foot_end", pair, kLegPairs, {-.046f, -.761f, .042f}, foot, 0}, block));
  const int toes = t.params().Count(kToes);
  for (int i = 0; i < toes; ++i) {
    const float x = toes == 1 ? -.025f : .115f - .28f * i / (toes - 1);
    const NewPoint bone = {DigitWord(L"metatarsal", pair), i, kMetatarsals, {.6f * x, -.22f, .16f}, foot, 0};
    const SidePair root = AddRootBone(t, block, bone, kMetatarsals);
    const Digit digit = {
        DigitWord(L"toe", pair),
        i,
        kToes,
        t.params().Count(kToeBones),
        {{x, -.463f + .30f * x * x, .070f}, {1.3f * x - .013f, -.761f + .9f * std::abs(x + .025f), .042f}}};
    const SidePair first = AddDigit(t, block, digit, root);
    if (!(root == foot)) t.SetAim(root, first);
    if (i == MiddleOf(toes)) t.SetAim(foot, first);
  }
  AddPivots(t, block, L"foot", pair, {{.0035f, .221f, 0}, {-.046f, -.779f, 0}, {.140f, -.481f, 0}, {-.210f, -.410f, 0}},
            foot);
}

void AddLegs(TemplateBuilder& t, const Block& block, int parent) {
  const int pairs = t.params().Count(kLegPairs);
  for (int k = 0; k < pairs; ++k) {
    const Block leg = block.At(LegPairOffset(k));
    const Block foot = leg.At({-.105f, .032f, 0}, .285f);
    const std::vector<SidePair> row = t.AddRows(
        {{L"thigh", kLegPairs, -1, 1, {-.095f, .000f, .945f}}, {L"calf", kLegPairs, 0, -1, {-.100f, -.012f, .515f}}},
        leg, k, Center(parent));
    const SidePair ankle = t.AddPair({L"foot", k, kLegPairs, {0, 0, .28f}, row.back(), 0}, foot);
    t.SetAim(row.back(), ankle);
    AddFoot(t, foot, k, ankle);
  }
}

void AddMinotaurLegs(TemplateBuilder& t, const Block& block, int parent) {
  const int pairs = t.params().Count(kLegPairs);
  for (int k = 0; k < pairs; ++k) {
    const Block leg = block.At(LegPairOffset(k));
    const std::vector<SidePair> row = t.AddRows({{L"thigh", kLegPairs, -1, 1, {-.095f, 0, .945f}},
                                                 {L"calf", kLegPairs, 0, 2, {-.115f, -.130f, .610f}},
                                                 {L"cannon", kLegPairs, 1, 3, {-.112f, .150f, .320f}},
                                                 {L"foot", kLegPairs, 2, -1, {-.112f, .080f, .100f}}},
                                                leg, k, Center(parent));
    AddFoot(t, leg.At({-.112f, .080f, 0}, .24f), k, row.back());
  }
}

void AddBackLegs(TemplateBuilder& t, const Block& block, int parent) {
  const int pairs = t.params().Count(kLegPairs);
  for (int k = 0; k < pairs; ++k) {
    const Block leg = block.At(LegPairOffset(k));
    const std::vector<SidePair> row = t.AddRows({{L"thigh", kLegPairs, -1, 1, {-.117f, 0, .9375f}},
                                                 {L"calf", kLegPairs, 0, 2, {-.133f, -.156f, .672f}},
                                                 {L"cannon", kLegPairs, 1, 3, {-.125f, .094f, .398f}},
                                                 {L"foot", kLegPairs, 2, -1, {-.125f, .055f, .117f}}},
                                                leg, k, Center(parent));
    AddHoof(t, leg, k, kBackHoof, row.back());
  }
}

void AddFrontLegs(TemplateBuilder& t, const Block& block, int parent, bool armWords) {
  const int pairs = t.params().Count(kArmPairs);
  const auto word = [&](const wchar_t* arm, const wchar_t* front) { return armWords ? arm : front; };
  for (int k = 0; k < pairs; ++k) {
    const Block leg = block.At(LegPairOffset(k));
    const std::vector<SidePair> row =
        t.AddRows({{word(L"clavicle", L"leg_clavicle"), kArmPairs, -1, 1, {-.053f, .030f, 1.0f}},
                   {word(L"upper_arm", L"front_thigh"), kArmPairs, 0, 2, {-.114f, -.106f, .758f}},
                   {word(L"forearm", L"front_calf"), kArmPairs, 1, 3, {-.114f, .038f, .629f}},
                   {L"front_cannon", kArmPairs, 2, 4, {-.114f, .008f, .341f}},
                   {word(L"hand", L"front_foot"), kArmPairs, 3, -1, {-.114f, .023f, .114f}}},
                  leg, k, Center(parent));
    AddHoof(t, leg, k, armWords ? kForelegHoof : kFrontHoof, row.back());
  }
}

void AddPaws(TemplateBuilder& t, const Block& block, bool front) {
  const WStr word = front ? L"front_foot" : L"foot";
  const int component = front ? kArmPairs : kLegPairs;
  const SidePair paw = t.AddPair({word, 0, component, {0, .18f, .34f}, {}, 0}, block);
  t.SetAim(paw, t.AddPair({word + L"_end", 0, component, {0, -.40f, .10f}, paw, 0}, block));
  const int n = t.params().Count(front ? kFingers : kToes);
  for (int i = 0; i < n; ++i) {
    const float x = n > 1 ? .28f * (1 - 2.0f * i / (n - 1)) : 0;
    const Digit digit = {front ? L"finger" : L"toe",
                         i,
                         front ? kFingers : kToes,
                         t.params().Count(front ? kFingerBones : kToeBones),
                         {{x, -.22f + .8f * x * x, .14f}, {1.15f * x, -.62f + .9f * x * x, .03f}}};
    const SidePair first = AddDigit(t, block, digit, paw);
    if (i == MiddleOf(n)) t.SetAim(paw, first);
  }
  AddPivots(t, block, word, 0, {{0, .38f, 0}, {0, -.66f, 0}, {.33f, -.15f, 0}, {-.33f, -.15f, 0}}, paw);
}

void AddInsectLegs(TemplateBuilder& t, const Block& block, int parent) {
  const int pairs = t.params().Count(kLegPairs);
  // Where three pairs stand along the body and how far forward or back their tips reach; one pair is the middle one.
  constexpr float kRoot[3] = {-.16f, 0, .18f}, kSpread[3] = {-.45f, 0, .55f};
  constexpr int kChoice[4][3] = {{}, {1}, {0, 2}, {0, 1, 2}};
  for (int k = 0; k < pairs; ++k) {
    const float f = pairs > 1 ? static_cast<float>(k) / static_cast<float>(pairs - 1) : 0;
    const float root = pairs <= 3 ? kRoot[kChoice[pairs][k]] : -.20f + .42f * f;
    const float spread = pairs <= 3 ? kSpread[kChoice[pairs][k]] : -.45f + f;
    const auto at = [&](float x, float z) { return Point3{x, root + spread * (-x - .06f), z}; };
    t.AddRows({{L"coxa", kLegPairs, -1, 1, at(-.06f, .45f)},
               {L"femur", kLegPairs, 0, 2, at(-.11f, .46f)},
               {L"tibia", kLegPairs, 1, 3, at(-.30f, .62f)},
               {L"metatarsus", kLegPairs, 2, 4, at(-.43f, .34f)},
               {L"tarsus", kLegPairs, 3, 5, at(-.50f, .08f)},
               {L"leg_tip", kLegPairs, 4, -1, at(-.555f, 0)}},
              block, k, Center(parent));
  }
}

}  // namespace tavrilon::detail
