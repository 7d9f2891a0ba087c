// SPDX-License-Identifier: MIT
// A local matrix as translation, XYZ angles and scale, sample by sample, so that the channels run on without jumps.
#pragma once

#include "plugin/fbx/format/affine.h"

namespace tavrilon::fbx_export {

using fbx::Trs;

enum class TrsFault { None, NotFinite, Shear, OutOfRange };

/// One node's channels on their way through time: each sample is split near to the one before.
class TrsTrack {
 public:
  /// Splits `local` into `Last`. A mirrored matrix gets its sign on the axes that keep the rotation nearest to the
  /// sample before, and keeps them there. Axes of no length take their direction from the sample before. With a fault
  /// nothing changes. Rows count as sheared when |row i . row j| > 1e-4 |row i| |row j|; beyond 1e15 is out of range.
  TrsFault Split(const fbx::Affine& local);
  const Trs& Last() const { return last_; }

 private:
  int ChooseFlip(const fbx::Affine& axes) const;

  Trs last_;
  fbx::Affine axes_;
  /// Which signs the last sample had; -1 when it was not mirrored.
  int flip_ = -1;
};

}  // namespace tavrilon::fbx_export
