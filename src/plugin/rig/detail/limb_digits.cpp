// SPDX-License-Identifier: MIT
// Fingers and toes. On a rolling foot the toes keep flat on the ground in IK and belong to the foot in FK.
#include <algorithm>

#include "host/core/param_block.h"
#include "plugin/attributes/attrib_params.h"
#include "plugin/connections/connect.h"
#include "plugin/constraints/rotation_space.h"
#include "plugin/rig/detail/limb.h"
#include "plugin/rig/detail/wiring.h"

namespace tavrilon::detail {

using namespace corvanta;
using namespace rig_param;

namespace {

/// The place of the toes is the foot's, also when the leg cannot reach its goal; their orientation is the toe pivot's
/// as far as the limb is in IK. A lone foot has no blend: its toes always keep to the pivot.
INode* ToeBase(const Limb& limb, const PartName& name, const Point3& place, INode* parent) {
  Matrix3 tm = limb.toe->GetNodeTM(0);
  tm.SetTrans(place);
  INode* base = limb.parts.make.MakeHelper(name, tm, parent, 0);
  ParamBlock2* space = base ? AddRotationSpace(base, limb.toe, 1) : nullptr;
  if (space && limb.attrib) ConnectFloat(*space, RotationSpace::kWeight, *limb.attrib, limb_attrib::kIkfkBlend);
  return base ? base : parent;
}

struct Digit {
  int number;
  Anchor parent;
  /// What its first joint hangs on instead of the parent's control; null for the parent.
  INode* base;
};

/// The control and bone between the limb's end and the digit, where the option asks for it.
void AddRoot(const Limb& limb, Digit& digit) {
  Parts& parts = limb.parts;
  if (!*limb.row.digitRoot || !limb.Option(limb.row.digitRoots)) return;
  const PartName name{limb.WordOfPair(limb.row.digitRoot), limb.side, digit.number};
  if (!parts.Has(name)) return;
  const float length = parts.SegmentLength(parts.Point(name));
  ControlSpec spec = limb.Spec(name, parts.TM(name), digit.parent.control);
  spec.size = 0.4f * length;
  spec.shapeOffset = {length * 0.5f, 0, 0};
  spec.secondary = true;
  digit.parent = parts.MakePart(spec, digit.parent.bone, length);
  parts.Leave(parts.Point(name), digit.parent);
  // The root moves with the foot: the digit needs a base of its own at the root's end.
  const int first = parts.Point({limb.WordOfPair(limb.row.digit), limb.side, digit.number, 0});
  if (!digit.base || first < 0) return;
  const PartName own{limb.WordOfPair(WStr(limb.row.digit) + L"_base"), limb.side, digit.number};
  digit.base = ToeBase(limb, own, parts.Place(first), digit.parent.control);
}

void BuildDigit(const Limb& limb, Digit digit) {
  Parts& parts = limb.parts;
  AddRoot(limb, digit);
  RowSpec row;
  row.word = limb.WordOfPair(limb.row.digit);
  row.side = limb.side;
  row.row = digit.number;
  row.count = std::max(limb.Count(limb.row.digitBones), 1);
  row.sizeOfSegment = 0.9f;
  row.secondary = true;
  row.group = limb.group;
  if (digit.base) digit.parent.control = digit.base;
  const Anchor tip = parts.MakeRow(row, digit.parent);
  if (limb.Option(kEndBones))
    parts.MakeEndBone({PartName{row.word, kSideCenter, digit.number}.Base() + L"_end", limb.side}, tip.bone);
}

}  // namespace

void BuildDigits(Limb& limb) {
  if (!*limb.row.digit || !limb.IsWhole()) return;
  const int digits = limb.Count(limb.row.digits);
  const Anchor end{limb.controls.back(), limb.lastBone};
  INode* base = nullptr;
  if (limb.toe && digits > 0 && end.control) {
    const bool roots = *limb.row.digitRoot && limb.Option(limb.row.digitRoots);
    // With roots every digit makes its own.
    base =
        roots ? limb.toe : ToeBase(limb, limb.FootName(L"_toe_base"), limb.toe->GetNodeTM(0).GetTrans(), end.control);
  }
  for (int i = 0; i < digits; ++i) BuildDigit(limb, {i, end, base});
}

}  // namespace tavrilon::detail
