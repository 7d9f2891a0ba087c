// SPDX-License-Identifier: MIT
// Each kind of rig as a list of blocks.
#include "plugin/rig/template.h"

#include "plugin/rig/detail/template_builder.h"

namespace tavrilon {
namespace {

using namespace detail;
using rig_param::kHeads;

/// A block whose unit is `scale` heights, standing at `origin`.
Block Placed(float scale, const Point3& origin, int side) { return Block{{}, side}.At(origin, scale); }

int Side(const TemplateBuilder& t) { return t.params().Count(rig_param::kSide); }

int AddPelvis(TemplateBuilder& t) {
  return t.AddPair({L"pelvis", -1, rig_param::kSpineControls, {0, 0, 1}, {}, 0}, {{}, kSideCenter}).right;
}

/// Head and arms of an upright trunk, which a centaur carries further forward.
void AddUpperBody(TemplateBuilder& t, const Trunk& trunk, float forward) {
  if (t.params().On(kHeads)) AddBipedHead(t, Placed(.13f, {0, forward, .87f}, kSideBoth), trunk.Top());
  // 0.10 of the height from pair to pair, in units of the block.
  AddArms(t, Placed(.55f, {0, forward, .86f}, kSideBoth), trunk.Top(), .10f / .55f);
}

constexpr float kBipedTailAngle = -.7853982f;
const Point3 kBipedPelvis = {0, 0, .55f};

void Biped(TemplateBuilder& t) {
  const Trunk trunk = AddBipedSpine(t, Placed(.29f, kBipedPelvis, kSideCenter));
  AddLegs(t, Placed(.55f, {}, kSideBoth), trunk.pelvis);
  AddUpperBody(t, trunk, 0);
  AddTails(t, {kBipedPelvis, {0, .06f, .53f}, kBipedTailAngle, .45f}, trunk.pelvis);
}

void Minotaur(TemplateBuilder& t) {
  const Trunk trunk = AddBipedSpine(t, Placed(.29f, kBipedPelvis, kSideCenter));
  AddMinotaurLegs(t, Placed(.55f, {}, kSideBoth), trunk.pelvis);
  AddUpperBody(t, trunk, 0);
  AddTails(t, {kBipedPelvis, {0, .06f, .53f}, kBipedTailAngle, .55f}, trunk.pelvis);
}

void Quadruped(TemplateBuilder& t) {
  const Trunk trunk = AddQuadrupedSpine(t);
  if (t.params().On(kHeads)) AddQuadrupedHead(t, trunk.Top());
  AddFrontLegs(t, Placed(.66f, {0, -.26f, 0}, kSideBoth), trunk.Top(), true);
  AddBackLegs(t, Placed(.64f, {0, .34f, 0}, kSideBoth), trunk.pelvis);
  AddTails(t, {{0, .36f, .66f}, {0, .42f, .66f}, -1.0f, .45f}, trunk.pelvis);
}

void Centaur(TemplateBuilder& t) {
  const Trunk trunk = AddCentaurSpine(t);
  AddUpperBody(t, trunk, -.20f);
  // The front legs hang on the last control of the horse's back: the largest place along the spine below one half.
  const int n = static_cast<int>(trunk.spine.size());
  int back = 0;
  while (2 * (back + 1) < n - 1) ++back;
  AddFrontLegs(t, Placed(.475f, {0, -.187f, 0}, kSideBoth), trunk.spine.empty() ? trunk.pelvis : trunk.spine[back],
               false);
  AddBackLegs(t, Placed(.46f, {0, .245f, 0}, kSideBoth), trunk.pelvis);
  AddTails(t, {{0, .24f, .475f}, {0, .30f, .50f}, -1.0f, .40f}, trunk.pelvis);
}

void Insect(TemplateBuilder& t) {
  const Trunk trunk = AddInsectSpine(t);
  if (t.params().On(kHeads)) AddInsectHead(t, Placed(.14f, {0, -.24f, .44f}, kSideBoth), trunk.Top());
  AddInsectLegs(t, {{}, kSideBoth}, trunk.pelvis);
  AddTails(t, {{0, .10f, .45f}, {0, .20f, .45f}, -.15f, .38f}, trunk.pelvis);
}

void Hands(TemplateBuilder& t) {
  const int side = Side(t);
  const Block block = side == kSideBoth ? Placed(.8f, {-.2f, 0, 0}, side) : Block{{}, side};
  AddHand(t, block, 0, t.AddPair({L"hand", 0, rig_param::kArmPairs, {}, {}, 0}, block));
}

/// Feet and paws of a pair stand apart.
Block ApartBlock(const TemplateBuilder& t) {
  const int side = Side(t);
  return side == kSideBoth ? Placed(1, {-.4f, 0, 0}, side) : Block{{}, side};
}

void Feet(TemplateBuilder& t) {
  const Block block = ApartBlock(t);
  AddFoot(t, block, 0, t.AddPair({L"foot", 0, rig_param::kLegPairs, {0, 0, .28f}, {}, 0}, block));
}

void Arms(TemplateBuilder& t) { AddArms(t, Placed(1, {0, 0, .5f}, Side(t)), -1, .10f / .55f); }
void Legs(TemplateBuilder& t) { AddLegs(t, {{}, Side(t)}, -1); }
void Spine(TemplateBuilder& t) { AddBipedSpine(t, {{}, kSideCenter}); }
void Head(TemplateBuilder& t) { AddBipedHead(t, {{}, kSideBoth}, -1); }
void Tail(TemplateBuilder& t) { AddTails(t, {{0, 0, .5f}, {0, 0, .5f}, 0, 1}, -1); }
void FrontLegs(TemplateBuilder& t) { AddFrontLegs(t, {{}, Side(t)}, AddPelvis(t), false); }
void BackLegs(TemplateBuilder& t) { AddBackLegs(t, {{}, Side(t)}, AddPelvis(t)); }
void FrontPaws(TemplateBuilder& t) { AddPaws(t, ApartBlock(t), true); }
void BackPaws(TemplateBuilder& t) { AddPaws(t, ApartBlock(t), false); }
void InsectLeg(TemplateBuilder& t) { AddInsectLegs(t, {{}, Side(t)}, -1); }

void Face(TemplateBuilder& t) {
  const Block center{{}, kSideCenter};
  const SidePair head = t.AddPair({L"head", -1, kHeads, {}, {}, 0}, center);
  t.SetAim(head, t.AddPair({L"head_end", -1, kHeads, {0, .03f, 1.0f}, head, 0}, center));
  AddFace(t, {{}, kSideBoth}, head.right);
}

void Nothing(TemplateBuilder&) {}

using TemplateFunction = void (*)(TemplateBuilder&);
constexpr TemplateFunction kTemplates[] = {
    Biped,    Hands,     Feet,     Arms,    Legs,      Spine,    Head,      Tail,   Nothing, FrontLegs,
    BackLegs, Quadruped, Minotaur, Centaur, FrontPaws, BackPaws, InsectLeg, Insect, Face,
};

}  // namespace

RigPoints BuildTemplate(RigType type, const TemplateParams& params, const RigPoints& saved,
                        const std::vector<RigExtra>& extras) {
  TemplateBuilder t(params, saved);
  const size_t index = static_cast<size_t>(type);
  if (index < std::size(kTemplates)) kTemplates[index](t);
  AddExtras(t, extras);
  return t.Take();
}

}  // namespace tavrilon
