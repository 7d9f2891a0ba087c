// SPDX-License-Identifier: MIT
#include "plugin/rig/detail/parts.h"

namespace tavrilon::detail {

using namespace corvanta;

float Parts::SegmentLength(int point) const {
  if (point < 0) return 0;
  const int aim = rig.Points()[static_cast<size_t>(point)].aim;
  return aim >= 0 ? Distance(point, aim) : Distance(point, rig.Places().Next(point));
}

Anchor Parts::ParentOf(int point) const {
  const Anchor top{state.main, state.root};
  if (point < 0) return top;
  const RigPoint& p = rig.Points()[static_cast<size_t>(point)];
  WStr name = p.attach;
  if (name.empty() && p.parent >= 0) name = rig.Points()[static_cast<size_t>(p.parent)].name;
  const auto found = state.anchors.find(name);
  return found == state.anchors.end() ? top : found->second;
}

void Parts::Leave(int point, const Anchor& anchor) {
  if (point >= 0) LeaveAs(rig.Points()[static_cast<size_t>(point)].name, anchor);
}

void Parts::Wait(int point, const Anchor& made) {
  if (point < 0) return;
  const RigPoint& p = rig.Points()[static_cast<size_t>(point)];
  const WStr name = !p.attach.empty() ? p.attach
                    : p.parent >= 0   ? rig.Points()[static_cast<size_t>(p.parent)].name
                                      : WStr();
  if (!name.empty() && !state.anchors.contains(name)) state.pending.push_back({made.control, made.bone, name});
}

Anchor Parts::MakePart(const ControlSpec& spec, INode* parentBone, float boneLength, float boneWidth) {
  Anchor part;
  part.control = make.MakeControl(spec);
  BoneSpec bone{spec.name, spec.tm, parentBone, boneLength};
  bone.width = boneWidth;
  bone.follows = part.control;
  part.bone = make.MakeBone(bone);
  return part;
}

Anchor Parts::MakeRow(const RowSpec& spec, Anchor parent) {
  for (int i = 0; i < spec.count; ++i) {
    PartName name{spec.word, spec.side, spec.row >= 0 ? spec.row : i, spec.row >= 0 ? i : -1};
    const int point = Point(name);
    if (point < 0) break;
    const float length = SegmentLength(point);
    ControlSpec control;
    control.name = name;
    control.tm = TM(name);
    control.parent = parent.control;
    control.shape = spec.shape;
    control.size = spec.size > 0 ? spec.size : spec.sizeOfSegment * length;
    control.secondary = spec.secondary;
    control.shapeOffset = {length * 0.5f, 0, 0};
    control.group = spec.group;
    parent = MakePart(control, parent.bone, length, spec.boneWidth);
    Leave(point, parent);
  }
  return parent;
}

void Parts::MakeEndBone(const PartName& name, INode* parentBone) {
  const int point = Point(name);
  if (point < 0 || !parentBone) return;
  // A tip has no length of its own: its bone is a short one of a fifth of the one before.
  const RigPoint& p = rig.Points()[static_cast<size_t>(point)];
  const Matrix3 last = p.parent >= 0 ? frames.PointTM(p.parent, height) : Matrix3();
  Matrix3 tm = last;
  tm.SetTrans(Place(point));
  INode* bone = make.MakeBone({name, tm, parentBone, Distance(point, p.parent) * 0.2f});
  if (bone) bone->SetNodeTM(0, tm);
}

}  // namespace tavrilon::detail
