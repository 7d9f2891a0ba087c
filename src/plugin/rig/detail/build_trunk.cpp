// SPDX-License-Identifier: MIT
// The body's axis: torso, pelvis and spine, neck and head, tails, ponytails and extras. Rows of controls carry a bone
// each; curve chains between them come with the solvers.
#include <algorithm>

#include "plugin/rig/detail/parts.h"

namespace tavrilon::detail {

using namespace corvanta;
using namespace rig_param;

namespace {

/// Everything of the axis that is no row: a control on a point, with sizes in lengths of the spine.
ControlSpec TrunkControl(const Parts& parts, const wchar_t* word, const Matrix3& tm, INode* parent, ShapeType shape,
                         float size) {
  ControlSpec spec;
  spec.name = {word};
  spec.tm = tm;
  spec.parent = parent;
  spec.shape = shape;
  spec.size = size;
  spec.group = L"spine";
  return spec;
}

int Count(const Parts& parts, ID id) { return std::clamp(parts.rig.Block().GetInt(id), 0, 99); }

/// What outlines of the trunk are measured by: the spine's length from the pelvis, but no more than an upright
/// figure's, or the outlines of a four-legged body would hide it.
float TrunkSize(const Parts& parts, int n) {
  const float length = parts.Distance(parts.Point({L"pelvis"}), parts.Point({L"spine", kSideCenter, n - 1}));
  return length > 0 ? std::min(length, 0.32f * parts.height) : 0.2f * parts.height;
}

}  // namespace

// torso at the pelvis carries fk_spine_1 to n-1; the last of them is the chest. The shoulders stand at the top of the
// spine, and the pelvis control hangs on the torso and not on the first FK control, or the hips would swing with the
// first bend.
void BuildSpine(Parts& parts) {
  const int n = Count(parts, kSpineControls);
  const int pelvisPoint = parts.Point({L"pelvis"});
  if (pelvisPoint < 0 || n < 1) return;
  BuildState& state = parts.state;
  const float length = TrunkSize(parts, n);
  const Matrix3 pelvisTM = parts.TM({L"pelvis"});

  ControlSpec torso = TrunkControl(parts, L"torso", pelvisTM, state.main, ShapeType::ArrowCross, 0.9f * length);
  torso.mirrorPosAxis = 0;  // a child of main: its parent frame is the world's
  state.torso = parts.make.MakeControl(torso);
  parts.panel.BodyPicker(state.torso, PickerKind::Torso);

  ControlSpec pelvis = TrunkControl(parts, L"pelvis", pelvisTM, state.torso, ShapeType::Peanut, 0.75f * length);
  pelvis.shapeOffset = {-0.15f * length, 0, 0};
  Anchor hips{parts.make.MakeControl(pelvis), nullptr};
  parts.panel.BodyPicker(hips.control, PickerKind::Pelvis);
  parts.make.BindParent(hips.control, state.torso);
  hips.bone = parts.make.MakeBone({pelvis.name, pelvisTM, state.root, 0.3f * length, true, false, hips.control});
  parts.Leave(pelvisPoint, hips);

  Anchor last{state.torso, state.root};
  for (int i = 0; i + 1 < n; ++i) {
    const PartName point{L"spine", kSideCenter, i};
    ControlSpec fk = TrunkControl(parts, L"fk_spine", parts.TM(point), last.control, ShapeType::Circle, 0.8f * length);
    const float segment = parts.SegmentLength(parts.Point(point));
    fk.name.index = i;
    fk.shapeOffset = {0.5f * segment, 0, 0};  // clear of torso and pelvis
    last = parts.MakePart(fk, last.bone, segment);
    parts.panel.BodyPicker(last.control, PickerKind::Spine);
    parts.Leave(parts.Point(point), last);
  }
  state.chest = last.control;

  const PartName top{L"spine", kSideCenter, n - 1};
  ControlSpec shoulders =
      TrunkControl(parts, L"shoulders", parts.TM(top), state.chest, ShapeType::ArrowDouble, 0.6f * length);
  shoulders.shapeAxis = 1;  // its arrows point to the sides
  const Anchor topPart{parts.make.MakeControl(shoulders), last.bone};
  parts.panel.BodyPicker(topPart.control, PickerKind::Spine);
  parts.Leave(parts.Point(top), topPart);
}

// Limb rigs with a pelvis point and no spine: the point's own control.
void BuildPelvisPoint(Parts& parts) {
  const PartName name{L"pelvis"};
  if (!parts.Has(name)) return;
  ControlSpec pelvis =
      TrunkControl(parts, L"pelvis", parts.TM(name), parts.state.main, ShapeType::Peanut, 0.25f * parts.height);
  pelvis.mirrorPosAxis = 0;
  const Anchor hips = parts.MakePart(pelvis, parts.state.root, 0.1f * parts.height);
  parts.Leave(parts.Point(name), hips);
}

namespace {

void BuildFangs(Parts& parts, const Anchor& head) {
  for (const int side : {kSideRight, kSideLeft})
    for (const wchar_t* word : {L"fang", L"mouth"}) {
      Anchor last = head;
      const int count = *word == L'f' ? 2 : 1;
      for (int i = 0; i < count; ++i) {
        const PartName name{word, side, i};
        if (!parts.Has(name)) continue;
        ControlSpec spec;
        spec.name = name;
        spec.tm = parts.TM(name);
        spec.parent = last.control;
        spec.secondary = true;
        const float length = std::max(parts.SegmentLength(parts.Point(name)), 0.01f * parts.height);
        spec.size = 1.2f * length;
        spec.group = L"head_0";
        last = parts.MakePart(spec, last.bone, length);
        parts.Leave(parts.Point(name), last);
      }
    }
}

void BuildRows(Parts& parts, const wchar_t* word, int rows, int controls, const wchar_t* group) {
  for (int i = 0; i < rows; ++i) {
    const int first = parts.Point({word, kSideCenter, i, 0});
    if (first < 0) continue;
    RowSpec row;
    row.word = word;
    row.row = i;
    row.count = controls;
    row.sizeOfSegment = 1.2f;
    row.group = group ? WStr(group) : PartName{word, kSideCenter, i}.Base();
    parts.MakeRow(row, parts.ParentOf(first));
  }
}

}  // namespace

void BuildHead(Parts& parts) {
  const int headPoint = parts.Point({L"head"});
  if (headPoint < 0) return;
  BuildState& state = parts.state;
  const int necks = Count(parts, kNeckControls), spines = Count(parts, kSpineControls);
  const float spine = TrunkSize(parts, spines);
  const int firstNeck = parts.Point({L"neck", kSideCenter, 0});

  // The neck follows the chest, not the shoulders: a shrug must not lift the head.
  Anchor parent = parts.ParentOf(firstNeck >= 0 ? firstNeck : headPoint);
  INode* hung = state.chest ? state.chest : parent.control;
  parent.control = state.torso ? state.torso : state.main;
  RowSpec neck;
  neck.word = L"neck";
  neck.count = necks;
  neck.size = 0.35f * spine;
  neck.group = L"head_0";
  const Anchor lastNeck = parts.MakeRow(neck, parent);
  if (firstNeck >= 0 && lastNeck.control != parent.control)
    parts.make.BindParent(state.anchors[PartName{L"neck", kSideCenter, 0}.Base()].control, hung);

  const float length = parts.SegmentLength(headPoint);
  ControlSpec head;
  head.name = {L"head"};
  head.tm = parts.TM(head.name);
  head.parent = lastNeck.control;
  head.size = 0.9f * length;
  head.shapeOffset = {0.5f * length, 0, 0};
  head.group = L"head_0";
  if (!state.torso) head.mirrorPosAxis = firstNeck >= 0 ? 2 : 0;
  const Anchor skull = parts.MakePart(head, lastNeck.bone, length);
  state.head = skull.control;
  parts.panel.BodyPicker(skull.control, PickerKind::Head);
  parts.Leave(headPoint, skull);

  const PartName end{L"head_end"};
  if (parts.Has(end)) {
    ControlSpec marker;
    marker.name = end;
    marker.tm = head.tm;
    marker.tm.SetTrans(parts.Place(parts.Point(end)));
    marker.parent = skull.control;
    marker.shape = ShapeType::Sphere;
    marker.size = 0.12f * length;
    marker.secondary = true;
    marker.group = L"head_0";
    parts.Leave(parts.Point(end), parts.MakePart(marker, skull.bone, 0.2f * length));
  }
  if (parts.rig.Block().GetBool(kFangs)) BuildFangs(parts, skull);
  BuildRows(parts, L"ponytail", Count(parts, kPonytails), Count(parts, kPonytailControls), nullptr);
}

void BuildTails(Parts& parts) { BuildRows(parts, L"tail", Count(parts, kTails), Count(parts, kTailControls), nullptr); }

void BuildExtraRow(Parts& parts, const RigExtra& extra, int side) {
  const int first = parts.Point({extra.name, side, 0});
  if (first < 0) return;
  RowSpec row;
  row.word = extra.name;
  row.side = side;
  row.count = extra.num_controls;
  row.sizeOfSegment = 1.2f;
  row.group = PartName{extra.name, side}.Base();
  const Anchor parent = parts.ParentOf(first);
  const size_t before = parts.state.controls.size();
  parts.MakeRow(row, parent);
  if (parts.state.controls.size() > before) {
    const Anchor made = parts.state.anchors[PartName{extra.name, side, 0}.Base()];
    parts.Wait(first, made);
  }
}

}  // namespace tavrilon::detail
