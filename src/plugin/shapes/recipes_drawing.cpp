// SPDX-License-Identifier: MIT
// Pictograms as data. Coordinates are of a unit shape: 1 is half the width or length.
#include "plugin/shapes/recipes.h"

namespace tavrilon {

using corvanta::kDegToRad;
using corvanta::kHalfPi;

namespace {

constexpr auto kOpen = DrawnStroke::Open;
constexpr auto kClosed = DrawnStroke::Closed;
constexpr auto kMirrored = DrawnStroke::Mirrored;

// A standing person from the front.
constexpr DrawnKnot kBody[] = {{0, 0.54f, 's'},      {0.12f, 0.53f, 's'},  {0.33f, 0.46f, 's'},  {0.42f, 0.3f, 's'},
                               {0.52f, -0.12f, 's'}, {0.46f, -0.2f, 's'},  {0.39f, -0.13f, 's'}, {0.27f, 0.26f, 'c'},
                               {0.26f, -0.2f, 's'},  {0.24f, -0.94f, 's'}, {0.15f, -1, 's'},     {0.06f, -0.94f, 's'},
                               {0.03f, -0.25f, 'c'}, {0, -0.22f, 's'}};
constexpr DrawnStroke kCharacterStrokes[] = {{kBody, kMirrored}};
constexpr DrawnOval kCharacterHead[] = {{0, 0.79f, 0.2f, 0.21f}};

constexpr DrawnKnot kLids[] = {{-1, 0, 'c'}, {-0.55f, 0.36f, 's'}, {0, 0.5f, 's'},  {0.55f, 0.36f, 's'},
                               {1, 0, 'c'},  {0.55f, -0.36f, 's'}, {0, -0.5f, 's'}, {-0.55f, -0.36f, 's'}};
constexpr DrawnStroke kEyeStrokes[] = {{kLids, kClosed}};
constexpr DrawnOval kEyeOvals[] = {{0, 0, 0.32f, 0.32f}, {0, 0, 0.14f, 0.14f}};

constexpr DrawnKnot kLipsRim[] = {{0, 0.25f, 'c'}, {0.18f, 0.37f, 's'},  {0.36f, 0.36f, 's'},  {0.7f, 0.16f, 's'},
                                  {1, 0, 'c'},     {0.68f, -0.28f, 's'}, {0.35f, -0.43f, 's'}, {0, -0.46f, 's'}};
constexpr DrawnKnot kLipsLine[] = {{-1, 0, 'c'},       {-0.5f, 0.0f, 's'}, {-0.2f, 0.05f, 's'}, {0, -0.01f, 's'},
                                   {0.2f, 0.05f, 's'}, {0.5f, 0.0f, 's'},  {1, 0, 'c'}};
constexpr DrawnStroke kLipsStrokes[] = {{kLipsRim, kMirrored}, {kLipsLine, kOpen}};

// A footprint of the right foot: sole, then toes from the big one.
constexpr DrawnKnot kSole[] = {{0, -1, 's'},        {0.22f, -0.9f, 's'}, {0.27f, -0.62f, 's'}, {0.27f, -0.25f, 's'},
                               {0.4f, 0.12f, 's'},  {0.42f, 0.34f, 's'}, {0.2f, 0.52f, 's'},   {-0.15f, 0.58f, 's'},
                               {-0.4f, 0.45f, 's'}, {-0.4f, 0.2f, 's'},  {-0.22f, -0.2f, 's'}, {-0.24f, -0.65f, 's'},
                               {-0.2f, -0.9f, 's'}};
constexpr DrawnStroke kFootStrokes[] = {{kSole, kClosed}};
constexpr DrawnOval kToes[] = {{-0.32f, 0.82f, 0.15f, 0.18f},
                               {-0.06f, 0.8f, 0.1f, 0.13f},
                               {0.14f, 0.74f, 0.09f, 0.12f},
                               {0.31f, 0.65f, 0.08f, 0.1f},
                               {0.44f, 0.53f, 0.07f, 0.09f}};

// A shoe from the side, toe to the right: upper, line of the sole, laces.
constexpr DrawnKnot kUpper[] = {{-1, -0.5f, 'c'},     {0.985f, -0.5f, 'c'}, {0.985f, -0.3f, 's'}, {0.86f, -0.08f, 's'},
                                {0.5f, 0.02f, 's'},   {0.1f, 0.22f, 's'},   {-0.3f, 0.62f, 'c'},  {-0.6f, 0.52f, 's'},
                                {-0.92f, 0.66f, 'c'}, {-0.86f, 0.2f, 's'},  {-0.95f, -0.2f, 's'}};
constexpr DrawnKnot kSoleLine[] = {{-0.985f, -0.3f, 'c'}, {0.985f, -0.3f, 'c'}};
constexpr DrawnKnot kLaces[3][2] = {{{-0.22f, 0.5f, 'c'}, {-0.42f, 0.32f, 'c'}},
                                    {{-0.08f, 0.36f, 'c'}, {-0.28f, 0.18f, 'c'}},
                                    {{0.06f, 0.24f, 'c'}, {-0.12f, 0.05f, 'c'}}};
constexpr DrawnStroke kShoeStrokes[] = {
    {kUpper, kClosed}, {kSoleLine, kOpen}, {kLaces[0], kOpen}, {kLaces[1], kOpen}, {kLaces[2], kOpen}};

constexpr DrawnKnot kSmile[] = {
    {-0.48f, -0.22f, 'c'}, {-0.28f, -0.44f, 's'}, {0, -0.53f, 's'}, {0.28f, -0.44f, 's'}, {0.48f, -0.22f, 'c'}};
constexpr DrawnStroke kFaceStrokes[] = {{kSmile, kOpen}};
constexpr DrawnOval kFaceOvals[] = {{0, 0, 1, 1}, {-0.35f, 0.27f, 0.1f, 0.15f}, {0.35f, 0.27f, 0.1f, 0.15f}};

// A nose from the side, tip to the right, closed down the cheek, with its wing.
constexpr DrawnKnot kProfile[] = {{-0.25f, 1, 'c'},     {-0.12f, 0.6f, 's'}, {0.2f, 0, 's'},       {0.55f, -0.42f, 's'},
                                  {0.56f, -0.66f, 's'}, {0.3f, -0.76f, 's'}, {0.02f, -0.72f, 's'}, {-0.1f, -1, 'c'}};
constexpr DrawnKnot kWing[] = {
    {0.1f, -0.3f, 'c'}, {-0.16f, -0.34f, 's'}, {-0.27f, -0.55f, 's'}, {-0.2f, -0.72f, 's'}, {-0.02f, -0.74f, 'c'}};
constexpr DrawnStroke kNoseStrokes[] = {{kProfile, kOpen}, {kWing, kOpen}};

// Finger axes of a hand seen from its back, thumb first: from the root to the centre of the tip.
struct Finger {
  Point2 root, tip;
  float halfWidth;
};
constexpr Finger kFingers[] = {{{-0.3f, -0.42f}, {-0.8f, 0.06f}, 0.12f},
                               {{-0.3f, 0.05f}, {-0.4f, 0.66f}, 0.1f},
                               {{-0.08f, 0.1f}, {-0.1f, 0.89f}, 0.105f},
                               {{0.14f, 0.08f}, {0.2f, 0.78f}, 0.1f},
                               {{0.34f, 0}, {0.48f, 0.5f}, 0.09f}};

constexpr Point2 kLetterI[] = {{0, 1}, {0, -1}};
constexpr Point2 kLetterKStem[] = {{-0.6f, 1}, {-0.6f, -1}};
constexpr Point2 kLetterKArms[] = {{0.65f, 1}, {-0.6f, -0.1f}, {0.65f, -1}};
constexpr Point2 kLetterFStem[] = {{0.6f, 1}, {-0.6f, 1}, {-0.6f, -1}};
constexpr Point2 kLetterFBar[] = {{-0.6f, 0.05f}, {0.4f, 0.05f}};

}  // namespace

const Drawing kCharacter{kCharacterStrokes, kCharacterHead};
const Drawing kEye{kEyeStrokes, kEyeOvals};
const Drawing kLips{kLipsStrokes, {}};
const Drawing kFoot{kFootStrokes, kToes};
const Drawing kShoe{kShoeStrokes, {}};
const Drawing kFace{kFaceStrokes, kFaceOvals};
const Drawing kNose{kNoseStrokes, {}};

void DrawHand(Outline& outline, const RecipeInput&) {
  outline.emplace_back();
  Spline& spline = outline.back();
  spline.closed = true;
  const auto corner = [&spline](float x, float y) { spline.knots.push_back(CornerKnot({x, y, 0})); };
  corner(-0.24f, -1);
  for (const Finger& f : kFingers) {  // up the thumb's side of each finger, over its tip, down the other side
    const Point2 along = (f.tip - f.root) * (1 / Length(f.tip - f.root));
    const Plane cap{{f.tip.x, f.tip.y, 0}, {along.x, along.y, 0}, {-along.y, along.x, 0}};
    const float w = f.halfWidth;
    corner(f.root.x - along.y * w, f.root.y + along.x * w);
    AppendArc(spline, cap, w, kHalfPi, -kHalfPi);
    corner(f.root.x + along.y * w, f.root.y - along.x * w);
  }
  corner(0.42f, -0.45f);
  corner(0.24f, -1);
}

void DrawIKFK(Outline& outline, const RecipeInput&) {
  constexpr float kHalfLetter = 0.4f;
  const auto letter = [&outline](float x, float y, int part, std::initializer_list<std::span<const Point2>> strokes) {
    for (const auto& stroke : strokes) {
      AddPolyline(outline, stroke, {{x, y, 0}, {kHalfLetter, 0, 0}, {0, kHalfLetter, 0}});
      outline.back().part = part;
    }
  };
  letter(-0.5f, 0.5f, 0, {kLetterI});
  letter(0.5f, 0.5f, 0, {kLetterKStem, kLetterKArms});
  letter(-0.5f, -0.5f, 1, {kLetterFStem, kLetterFBar});
  letter(0.5f, -0.5f, 1, {kLetterKStem, kLetterKArms});
}

}  // namespace tavrilon
