// SPDX-License-Identifier: MIT
// The adding of points, which all blocks of a template share.
#pragma once

#include <functional>
#include <initializer_list>
#include <unordered_map>

#include "host/maths/matrix3.h"
#include "plugin/rig/template.h"

namespace tavrilon::detail {

using corvanta::Matrix3;

/// Indices of the right and left point of a pair; a centre point stands in both.
struct SidePair {
  int right = -1, left = -1;
  bool operator==(const SidePair&) const = default;
};
inline SidePair Center(int index) { return {index, index}; }

/// Where a block of points stands, and for which side. Positions are told for the right side.
struct Block {
  Matrix3 right;
  int side = kSideBoth;

  Matrix3 Left() const {
    Matrix3 left = right;
    left.Scale({-1, 1, 1}, true);
    return left;
  }
  /// A block inside this one: scaled, then moved to `origin`, both in this block's units.
  Block At(const Point3& origin, float scale = 1) const {
    Matrix3 inner = corvanta::ScaleMatrix({scale, scale, scale});
    inner.Translate(origin);
    return {inner * right, side};
  }
};

/// A point to add, in the units of its block.
struct NewPoint {
  WStr word;
  /// Appended to the word plus 1; none when below 0.
  int index = -1;
  int component = 0;
  Point3 position;
  SidePair parent;
  int flags = 0;
};

/// One line of a block's table. `parent` and `aim` are lines of the same table, -1 for the block's own parent and
/// for no aim.
struct BlockRow {
  const wchar_t* word;
  int component;
  int parent;
  int aim;
  Point3 position;
};

/// A centre row of control points (spine, neck, tail): how many, and where each stands.
struct CenterRow {
  WStr word;
  int component = 0;
  int count = 0;
  /// Position of point i, counted from 0, in template units.
  std::function<Point3(int)> position;
  int parent = -1;
};

class TemplateBuilder {
 public:
  TemplateBuilder(const TemplateParams& params, const RigPoints& saved);

  const TemplateParams& params() const { return params_; }
  const RigPoints& points() const { return points_; }
  RigPoints Take() { return std::move(points_); }

  /// Appends one point as it stands and gives its index; -1 once the template is full.
  int Add(RigPoint point);
  /// Adds the right point, the left one or both, linked as each other's mirror, as the block's side says.
  SidePair AddPair(const NewPoint& point, const Block& block);
  /// A smooth row of centre points, each the child of the one before and aimed at the next.
  std::vector<int> AddRow(const CenterRow& row);
  /// `count` in-between points named `word` and a number, evenly spread over a row of points and its side.
  void AddRowBones(const WStr& word, int component, int count, const std::vector<int>& row);
  void SetAim(const SidePair& from, const SidePair& to);
  void SetSecondParent(const SidePair& of, const SidePair& parent);
  /// The indices of the rows, in order.
  std::vector<SidePair> AddRows(std::initializer_list<BlockRow> rows, const Block& block, int pair,
                                const SidePair& parent);

 private:
  const TemplateParams& params_;
  std::unordered_map<WStr, const RigPoint*> saved_;
  RigPoints points_;
};

/// The trunk that limbs, heads and tails hang on.
struct Trunk {
  int pelvis = -1;
  std::vector<int> spine;
  int Top() const { return spine.empty() ? pelvis : spine.back(); }
};

// The blocks. Each reads its own counts.
Trunk AddBipedSpine(TemplateBuilder& t, const Block& block);
Trunk AddQuadrupedSpine(TemplateBuilder& t);
Trunk AddCentaurSpine(TemplateBuilder& t);
Trunk AddInsectSpine(TemplateBuilder& t);
void AddBipedHead(TemplateBuilder& t, const Block& block, int parent);
void AddQuadrupedHead(TemplateBuilder& t, int parent);
void AddInsectHead(TemplateBuilder& t, const Block& block, int parent);
/// The face's points around a head; `block` is a head block.
void AddFace(TemplateBuilder& t, const Block& block, int head);

struct TailShape {
  /// Further tails are turned about the upright axis through here.
  Point3 pivot;
  Point3 base;
  /// Radians above the horizontal, and the whole length.
  float angle = 0, length = 1;
};
void AddTails(TemplateBuilder& t, const TailShape& shape, int parent);

/// `block` stands at the first pair; each further pair stands lower by `drop` in the block's units.
void AddArms(TemplateBuilder& t, const Block& block, int parent, float drop);
/// One hand at the block's origin, in units of wrist to middle fingertip.
void AddHand(TemplateBuilder& t, const Block& block, int pair, const SidePair& hand);
void AddLegs(TemplateBuilder& t, const Block& block, int parent);
void AddMinotaurLegs(TemplateBuilder& t, const Block& block, int parent);
void AddFoot(TemplateBuilder& t, const Block& block, int pair, const SidePair& foot);
void AddBackLegs(TemplateBuilder& t, const Block& block, int parent);
/// With the words of an arm (a quadruped's foreleg), or with words of their own.
void AddFrontLegs(TemplateBuilder& t, const Block& block, int parent, bool armWords);
void AddPaws(TemplateBuilder& t, const Block& block, bool front);
void AddInsectLegs(TemplateBuilder& t, const Block& block, int parent);

void AddExtras(TemplateBuilder& t, const std::vector<RigExtra>& extras);

}  // namespace tavrilon::detail
