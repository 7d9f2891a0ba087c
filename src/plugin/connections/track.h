// SPDX-License-Identifier: MIT
// The track that a connection follows: a parameter of a block, or a numbered sub-animatable of any other object.
#pragma once

#include "host/core/param_block.h"

namespace tavrilon {

/// Stored in place of a number when a constant stands in for a track.
inline constexpr int kConstantTrack = -1;

/// A track found for one use; nothing here keeps it alive. Empty without an owner.
struct Track {
  corvanta::ReferenceTarget* owner = nullptr;
  /// As stored: of a block the parameter, and the tab index in the upper half; of others the sub-animatable.
  int number = 0;

  bool IsParam() const {
    return owner->SuperClassID() == corvanta::kParamBlockSuper && !owner->TestFlag(corvanta::A_PLACEHOLDER);
  }
  corvanta::ParamBlock2& Block() const { return static_cast<corvanta::ParamBlock2&>(*owner); }
  corvanta::ParamID Param() const { return static_cast<corvanta::ParamID>(number & 0xFFFF); }
  int Tab() const { return number >> 16; }
};

inline int ParamTrackNumber(corvanta::ParamID id, int tab) { return tab << 16 | id; }

/// The row of a parameter track, null when the owner is no block, has no such parameter or not so many entries.
const corvanta::ParamRow* RowOf(const Track& track);
/// The track's controller, null when it has none (a parameter may be a constant).
corvanta::Control* ControllerOf(const Track& track);
/// The same, and a parameter gets one that holds its constant, any other empty place the default one of the super
/// class. Null when the place takes none. Undoable.
corvanta::Control* MakeControllerOf(const Track& track, corvanta::SClass_ID superClass);

/// Does the track give values of this kind? Float tracks: float controllers and parameters that are numbers. Others:
/// controllers of that super class, and of Point3 parameters the value as it is.
bool Gives(const Track& track, corvanta::SClass_ID superClass);

/// The same as ReadFloat for any kind of track.
float ReadAnyFloat(const Track& track, corvanta::TimeValue t, corvanta::Interval& valid);

/// 0 when the track gives no float any more. Float parameters, nearly all that rigs follow, are read on the spot.
inline float ReadFloat(const Track& track, corvanta::TimeValue t, corvanta::Interval& valid) {
  if (!track.IsParam()) return ReadAnyFloat(track, t, valid);
  const corvanta::ParamBlock2& block = track.Block();
  const int index = block.IDtoIndex(track.Param());
  if (index < 0) return 0;
  const corvanta::ParamRow& row = block.GetDesc().rows[static_cast<size_t>(index)];
  using corvanta::ParamType;
  const bool isFloat = row.type == ParamType::Float || row.type == ParamType::Angle || row.type == ParamType::Percent ||
                       row.type == ParamType::World;
  return isFloat && !row.Is(corvanta::kTab) ? block.GetFloat(row.id, t, valid) : ReadAnyFloat(track, t, valid);
}
/// Undoable.
void WriteFloat(const Track& track, corvanta::TimeValue t, float value, bool commit);

/// The track of `owner` whose controller is `target`; empty when there is none.
Track FindTrack(corvanta::ReferenceTarget& owner, const corvanta::ReferenceTarget& target);
/// By the script name of a parameter of the owner or of one of its blocks, or by the name of a sub-animatable; case
/// ignored.
Track FindTrack(corvanta::ReferenceTarget& owner, const corvanta::WStr& name);
/// By the number of a sub-animatable.
Track FindTrack(corvanta::ReferenceTarget& owner, int subAnim);

/// "owner name: track name" for people.
corvanta::WStr TextOf(const Track& track);

}  // namespace tavrilon
