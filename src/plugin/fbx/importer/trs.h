// SPDX-License-Identifier: MIT
// A local matrix as scale, rotation and place. Pure functions in double precision.
#pragma once

#include "plugin/fbx/format/affine.h"

namespace tavrilon::fbx_import {

using fbx::Trs;

struct TrsSplit {
  Trs trs;
  /// The largest cosine between two axes of the matrix: what the three parts leave out.
  double shear = 0;
};

/// The angles are those nearest to `near`. A mirrored matrix gets three negative factors. An axis without length keeps
/// a factor of 0 and takes its direction from the others; without any direction the angles of `near` stay.
TrsSplit SplitTrs(const fbx::Affine& m, const fbx::Vector3& near = {});

/// Above this cosine between axes a matrix counts as sheared. The same bound as for files that go out.
inline constexpr double kShearBound = 1e-4;

}  // namespace tavrilon::fbx_import
