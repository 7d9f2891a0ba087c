// SPDX-License-Identifier: MIT
// The face: eyes, jaw, and regions of controls and bones laid out on short curves. Positions are for the right side,
// in the units of a head block (chin near 0, crown at 1).
#include <algorithm>

#include "plugin/rig/detail/template_builder.h"

namespace tavrilon::detail {
namespace {

using namespace rig_param;

enum class FaceParent { Head, Jaw, Both };

struct FaceRegion {
  const wchar_t* word;
  int side;
  FaceParent parent;
  ID controls, bones, useBones;
  Point3 start, middle, end;
  /// Stays when the face is driven by morph channels.
  bool withMorpher = false;
};

const FaceRegion kRegions[] = {
    {L"eyelid_up",
     kSideBoth,
     FaceParent::Head,
     kEyelidsControls,
     kEyelidsBones,
     kUseEyelidBones,
     {-.085f, -.475f, .515f},
     {-.145f, -.515f, .56f},
     {-.205f, -.465f, .52f}},
    {L"eyelid_low",
     kSideBoth,
     FaceParent::Head,
     kEyelidsControls,
     kEyelidsBones,
     kUseEyelidBones,
     {-.085f, -.475f, .515f},
     {-.145f, -.51f, .485f},
     {-.205f, -.465f, .52f}},
    {L"eyebrow",
     kSideBoth,
     FaceParent::Head,
     kEyebrowsControls,
     kEyebrowsBones,
     kUseEyebrowBones,
     {-.06f, -.55f, .60f},
     {-.15f, -.545f, .635f},
     {-.235f, -.47f, .60f}},
    {L"cheekbone",
     kSideBoth,
     FaceParent::Head,
     kCheekboneControls,
     kCheekboneBones,
     kUseCheekboneBones,
     {-.09f, -.53f, .42f},
     {-.18f, -.48f, .40f},
     {-.26f, -.38f, .43f}},
    {L"nose",
     kSideCenter,
     FaceParent::Head,
     kNoseControls,
     kNoseBones,
     kUseNoseBones,
     {0, -.56f, .50f},
     {0, -.62f, .43f},
     {0, -.67f, .36f}},
    {L"lip_up",
     kSideBoth,
     FaceParent::Head,
     kLipsControls,
     kLipsBones,
     kUseLipsBones,
     {-.10f, -.525f, .20f},
     {-.05f, -.585f, .22f},
     {0, -.60f, .225f}},
    {L"lip_low",
     kSideBoth,
     FaceParent::Jaw,
     kLipsControls,
     kLipsBones,
     kUseLipsBones,
     {-.10f, -.525f, .20f},
     {-.05f, -.58f, .18f},
     {0, -.595f, .175f}},
    {L"nasolabial",
     kSideBoth,
     FaceParent::Both,
     kNasolabialControls,
     kNasolabialBones,
     kUseNasolabialBones,
     {-.075f, -.565f, .33f},
     {-.13f, -.53f, .25f},
     {-.125f, -.50f, .16f}},
    {L"chin",
     kSideBoth,
     FaceParent::Jaw,
     kChinControls,
     kChinBones,
     kUseChinBones,
     {-.09f, -.50f, .09f},
     {-.06f, -.54f, .06f},
     {0, -.57f, .05f}},
    {L"tongue",
     kSideCenter,
     FaceParent::Jaw,
     kTongueControls,
     kTongueBones,
     kUseTongueBones,
     {0, -.30f, .20f},
     {0, -.42f, .215f},
     {0, -.54f, .205f},
     true},
};

/// The quadratic through start, middle and end at u = 0, 1/2 and 1.
Point3 OnRegion(const FaceRegion& r, float u) {
  return r.start * (2 * (u - .5f) * (u - 1)) + r.middle * (4 * u * (1 - u)) + r.end * (2 * u * (u - .5f));
}

/// Place of item i of n: the middle of the n-th part.
float RowPlace(int i, int n) { return (static_cast<float>(i) + .5f) / static_cast<float>(n); }

void AddRegion(TemplateBuilder& t, const FaceRegion& region, const Block& face, int head, int jaw) {
  const Block block{face.right, region.side};
  const SidePair parent = Center(region.parent == FaceParent::Jaw ? jaw : head);
  const int controls = t.params().Count(region.controls);
  std::vector<SidePair> row;
  for (int i = 0; i < controls; ++i)
    row.push_back(
        t.AddPair({region.word, i, region.controls, OnRegion(region, RowPlace(i, controls)), parent, 0}, block));
  if (region.parent == FaceParent::Both)
    for (const SidePair& pair : row) t.SetSecondParent(pair, Center(jaw));
  if (!t.params().On(region.useBones)) return;
  const int bones = t.params().Count(region.bones);
  for (int j = 0; j < bones; ++j) {
    const float u = RowPlace(j, bones);
    const int nearest = std::min(static_cast<int>(u * controls), controls - 1);
    t.AddPair({WStr(region.word) + L"_bone", j, region.bones, OnRegion(region, u), row[nearest], 0}, block);
  }
}

}  // namespace

void AddFace(TemplateBuilder& t, const Block& block, int head) {
  const Block center{block.right, kSideCenter};
  const SidePair skull = Center(head);
  const SidePair jaw = t.AddPair({L"jaw", -1, kFace, {0, -.05f, .28f}, skull, 0}, center);
  t.SetAim(jaw, t.AddPair({L"jaw_end", -1, kFace, {0, -.55f, .04f}, jaw, 0}, center));
  const SidePair eye = t.AddPair({L"eye", -1, kFace, {-.145f, -.42f, .52f}, skull, 0}, block);
  t.SetAim(eye, t.AddPair({L"eye_aim", -1, kFace, {-.145f, -1.4f, .52f}, skull, 0}, block));
  const bool morphs = t.params().On(kMorpherBased);
  for (const FaceRegion& region : kRegions)
    if (!morphs || region.withMorpher) AddRegion(t, region, block, head, jaw.right);
  if (morphs) return;
  t.AddPair({L"nostril", -1, kNoseControls, {-.05f, -.60f, .33f}, skull, 0}, block);
  const SidePair corner = t.AddPair({L"lip_corner", -1, kLipsControls, {-.10f, -.525f, .20f}, skull, 0}, block);
  t.SetSecondParent(corner, jaw);
}

}  // namespace tavrilon::detail
