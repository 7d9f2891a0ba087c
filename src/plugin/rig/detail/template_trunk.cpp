// SPDX-License-Identifier: MIT
// Spines, heads and tails. Positions of a block are in the block's units; those without a block are in units of the
// figure's height.
#include <cmath>

#include "plugin/rig/detail/template_builder.h"

namespace tavrilon::detail {
namespace {

using namespace rig_param;

Trunk AddSpine(TemplateBuilder& t, const Point3& pelvis, const std::function<Point3(float)>& spine) {
  Trunk trunk;
  trunk.pelvis = t.AddPair({L"pelvis", -1, kSpineControls, pelvis, {}, 0}, {{}, kSideCenter}).right;
  const int n = t.params().Count(kSpineControls);
  const auto at = [&](int i) { return spine(n > 1 ? static_cast<float>(i) / static_cast<float>(n - 1) : 0.0f); };
  trunk.spine = t.AddRow({L"spine", kSpineControls, n, at, trunk.pelvis});
  if (!trunk.spine.empty()) t.SetAim(Center(trunk.pelvis), Center(trunk.spine.front()));
  if (t.params().On(kUseSpineBones)) {
    // A spine of one control has no span of its own: its bones spread from the pelvis.
    std::vector<int> row = trunk.spine;
    if (row.size() == 1) row.insert(row.begin(), trunk.pelvis);
    t.AddRowBones(L"spine_bone", kSpineBones, t.params().Count(kSpineBones), row);
  }
  return trunk;
}

struct HeadShape {
  /// Root of the neck; its points spread from here to the head.
  Point3 neck;
  Point3 head, headEnd;
  /// First ponytail point and the step from point to point, before the row is turned about the block's Z axis.
  Point3 ponytail, ponytailStep;
  Point3 fang[2];
  Point3 mouth;
};

const HeadShape kBipedHead = {{0, .15f, -.20f},    {0, .03f, .28f},  {0, .03f, 1.0f},
                              {0, .42f, .78f},     {0, .10f, -.32f}, {{-.12f, -.60f, .10f}, {-.05f, -.80f, -.12f}},
                              {-.14f, -.45f, .15f}};
// In units of the height: the head lies forward, its end is the muzzle, and the ponytail is the mane.
const HeadShape kQuadrupedHead = {{0, -.30f, .72f},       {0, -.46f, .955f},
                                  {0, -.665f, .81f},      {0, -.40f, .97f},
                                  {0, .050f, -.065f},     {{-.020f, -.610f, .800f}, {-.014f, -.640f, .765f}},
                                  {-.024f, -.580f, .815f}};
const HeadShape kInsectHead = {{0, .20f, .29f},     {0, -.20f, .30f}, {0, -1.1f, .20f},
                               {0, -.30f, .80f},    {0, -.35f, .20f}, {{-.12f, -.60f, .10f}, {-.05f, -.80f, -.12f}},
                               {-.14f, -.45f, .15f}};

void AddPonytails(TemplateBuilder& t, const HeadShape& shape, const Block& block, int head) {
  const int rows = t.params().Count(kPonytails), controls = t.params().Count(kPonytailControls);
  for (int i = 0; i < rows; ++i) {
    const float turn = (i + 1 - (rows + 1) / 2.0f) * 30 * corvanta::kDegToRad;
    const Matrix3 matrix = corvanta::RotateZMatrix(turn) * block.right;
    const auto at = [&](int j) { return (shape.ponytail + shape.ponytailStep * static_cast<float>(j)) * matrix; };
    const WStr word = PointName(L"ponytail", kSideCenter, i);
    const std::vector<int> row = t.AddRow({word, kPonytails, controls + 1, at, head});
    if (t.params().On(kUsePonytailBones))
      t.AddRowBones(word + L"_bone", kPonytailBones, t.params().Count(kPonytailBones), row);
  }
}

void AddFangs(TemplateBuilder& t, const HeadShape& shape, const Block& block, int head) {
  const SidePair root = t.AddPair({L"fang", 0, kFangs, shape.fang[0], Center(head), 0}, block);
  t.SetAim(root, t.AddPair({L"fang", 1, kFangs, shape.fang[1], root, 0}, block));
  t.AddPair({L"mouth", 0, kFangs, shape.mouth, Center(head), 0}, block);
}

/// Index of the head point.
int AddHead(TemplateBuilder& t, const HeadShape& shape, const Block& block, int parent) {
  const int n = t.params().Count(kNeckControls);
  const auto at = [&](int i) {
    return Lerp(shape.neck, shape.head, static_cast<float>(i) / static_cast<float>(n)) * block.right;
  };
  std::vector<int> row = t.AddRow({L"neck", kNeckControls, n, at, parent});
  const Block center{block.right, kSideCenter};
  const int above = row.empty() ? parent : row.back();
  const SidePair head = t.AddPair({L"head", -1, kHeads, shape.head, Center(above), 0}, center);
  if (!row.empty()) t.SetAim(Center(row.back()), head);
  t.SetAim(head, t.AddPair({L"head_end", -1, kHeads, shape.headEnd, head, 0}, center));
  row.push_back(head.right);
  if (t.params().On(kUseNeckBones) && head.right >= 0)
    t.AddRowBones(L"neck_bone", kNeckBones, t.params().Count(kNeckBones), row);
  AddPonytails(t, shape, block, head.right);
  if (t.params().On(kFangs)) AddFangs(t, shape, block, head.right);
  return head.right;
}

}  // namespace

Trunk AddBipedSpine(TemplateBuilder& t, const Block& block) {
  return AddSpine(t, Point3{} * block.right, [&](float u) {
    return Point3{0, .03f + .185f * u - .15f * u * u, .10f + .90f * u} * block.right;
  });
}

Trunk AddQuadrupedSpine(TemplateBuilder& t) {
  return AddSpine(t, {0, .36f, .66f}, [](float u) {
    return Point3{0, .33f - .60f * u, .675f + .025f * u + .02f * std::sin(corvanta::kPi * u)};
  });
}

Trunk AddCentaurSpine(TemplateBuilder& t) {
  return AddSpine(t, {0, .24f, .475f}, [](float u) {
    if (u == .5f) return Point3{0, -.18f, .504f};  // the withers, where back and human torso meet
    if (u < .5f) return Point3{0, .22f - .80f * u, .486f + .036f * u};
    return Point3{0, -.20f + .03f * (u - .5f), .55f + .58f * (u - .5f)};
  });
}

Trunk AddInsectSpine(TemplateBuilder& t) {
  return AddSpine(t, {0, .10f, .45f}, [](float u) { return Lerp(Point3{0, .06f, .46f}, Point3{0, -.16f, .48f}, u); });
}

void AddBipedHead(TemplateBuilder& t, const Block& block, int parent) {
  const int head = AddHead(t, kBipedHead, block, parent);
  if (t.params().On(kFace)) AddFace(t, block, head);
}

void AddQuadrupedHead(TemplateBuilder& t, int parent) {
  const int head = AddHead(t, kQuadrupedHead, {{}, kSideBoth}, parent);
  if (!t.params().On(kFace)) return;
  // The face looks along the muzzle: a head block pitched down 35 degrees about its head point, 0.3 of the height.
  Matrix3 matrix = corvanta::TransMatrix(-kBipedHead.head);
  matrix.Scale({.3f, .3f, .3f}, true);
  matrix.RotateX(35 * corvanta::kDegToRad);
  matrix.Translate(kQuadrupedHead.head);
  AddFace(t, {matrix, kSideBoth}, head);
}

void AddInsectHead(TemplateBuilder& t, const Block& block, int parent) { AddHead(t, kInsectHead, block, parent); }

void AddTails(TemplateBuilder& t, const TailShape& shape, int parent) {
  const int rows = t.params().Count(kTails), controls = t.params().Count(kTailControls);
  for (int i = 0; i < rows; ++i) {
    const Matrix3 turn = corvanta::RotateZMatrix((i + 1 - (rows + 1) / 2.0f) * 25 * corvanta::kDegToRad);
    const Point3 along = Point3{0, std::cos(shape.angle), std::sin(shape.angle)} * (shape.length / controls);
    const auto at = [&](int j) {
      return shape.pivot + VectorTransform(turn, shape.base - shape.pivot + along * static_cast<float>(j));
    };
    const WStr word = PointName(L"tail", kSideCenter, i);
    const std::vector<int> row = t.AddRow({word, kTails, controls + 1, at, parent});
    if (t.params().On(kUseTailBones)) t.AddRowBones(word + L"_bone", kTailBones, t.params().Count(kTailBones), row);
  }
}

}  // namespace tavrilon::detail
