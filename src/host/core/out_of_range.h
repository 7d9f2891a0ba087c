// SPDX-License-Identifier: MIT
#pragma once

namespace corvanta {

/// What a curve does before its first and after its last key. The numbers are stored in files.
enum class ORT : int {
  Constant = 1,
  Cycle = 2,
  /// A cycle whose interval next to the keys is blended, so that it goes on without a jump.
  Loop = 3,
  PingPong = 4,
  Linear = 5,
  RelativeRepeat = 7,
};

}  // namespace corvanta
