// SPDX-License-Identifier: MIT
// What the body-part builders share: finding points, measuring them, and hanging parts on parts.
#pragma once

#include "plugin/rig/detail/node_factory.h"
#include "plugin/rig/detail/panel_recorder.h"

namespace tavrilon::detail {

/// A row of controls from points "<word>_1" on, each the child of the one before.
struct RowSpec {
  WStr word;
  int side = kSideCenter;
  /// The first index of every name, for rows of which there are several; -1 for none.
  int row = -1;
  int count = 0;
  ShapeType shape = ShapeType::Circle;
  /// In lengths of the segment.
  float sizeOfSegment = 1;
  /// Above 0: one size for the whole row.
  float size = 0;
  /// 0 draws slim bones.
  float boneWidth = 0;
  bool secondary = false;
  WStr group;
};

class Parts {
 public:
  Parts(RigSystem& rig, const PointFrames& frames, BuildState& state)
      : rig(rig),
        frames(frames),
        state(state),
        make(rig, state),
        height(rig.Size()),
        panel(rig.Size(), rig.Type() == RigType::Quadruped || rig.Type() == RigType::Centaur) {}

  int Point(const PartName& name) const { return frames.Find(name.Base()); }
  bool Has(const PartName& name) const { return Point(name) >= 0; }
  Matrix3 TM(const PartName& name) const { return frames.PointTM(Point(name), height); }
  Point3 Place(int point) const { return rig.Places().At(point) * height; }
  /// Distance of two points; 0 when one is missing.
  float Distance(int a, int b) const { return a >= 0 && b >= 0 ? Length(Place(a) - Place(b)) : 0; }
  /// From a point to the one that it aims at.
  float SegmentLength(int point) const;

  /// What the part of this point hangs on, by the point's attach word or its parent's name; (main, root) at the top.
  /// A parent that is not built yet is noted, and attached when the components are finished.
  Anchor ParentOf(int point) const;
  /// Remembers control and bone under the point's name.
  void Leave(int point, const Anchor& anchor);
  void LeaveAs(const WStr& point, const Anchor& anchor) { state.anchors[point] = anchor; }
  /// Notes that these wait for a parent which is not there.
  void Wait(int point, const Anchor& made);

  /// The control and the bone of one point.
  Anchor MakePart(const ControlSpec& spec, INode* parentBone, float boneLength, float boneWidth = 0);
  /// A row under `parent`; gives its last part. Each control has its bone.
  Anchor MakeRow(const RowSpec& spec, Anchor parent);
  /// Bone at a row's end point.
  void MakeEndBone(const PartName& name, INode* parentBone);

  RigSystem& rig;
  const PointFrames& frames;
  BuildState& state;
  NodeFactory make;
  float height;
  PanelRecorder panel;
};

// Builders of the body parts.
void BuildSpine(Parts& parts);
void BuildPelvisPoint(Parts& parts);
void BuildHead(Parts& parts);
void BuildTails(Parts& parts);
void BuildExtraRow(Parts& parts, const RigExtra& extra, int side);

enum class LimbKind { Arm, Leg, BackLeg, FrontLeg, Foreleg, InsectLeg, Hand, Foot, FrontPaw, BackPaw };
/// Every pair of a kind, for the sides that the rig's `side` names (`sides` = kSideBoth builds right, then left).
void BuildLimbs(Parts& parts, LimbKind kind, int sides);

/// What the rig's options ask for that this build leaves out, one line each.
std::vector<WStr> MissingParts(const RigSystem& rig);

}  // namespace tavrilon::detail
