// SPDX-License-Identifier: MIT
// The operations of a float operation, as plain arithmetic.
#pragma once

#include "plugin/connections/connection_params.h"

namespace tavrilon {

inline constexpr int kOperationCount = static_cast<int>(float_operation::Op::Blend) + 1;

/// Which of the inputs an operation reads: those that it does not read need not be evaluated.
enum OperationInputs : int { kReadsA = 1, kReadsB = 2, kReadsC = 4, kReadsLo = 8, kReadsHi = 16 };

/// Angles are radians.
struct OperationIn {
  float a = 0, b = 0, c = 0, lo = 0, hi = 0;
};

struct Operation {
  const wchar_t* name;
  int inputs;
  float (*apply)(const OperationIn& in);
};

/// The row of an operation; for a number beyond the table that of A.
///
/// Clamp holds a in lo..hi, ClampTo in lo..b (the lower bound wins where the bounds cross). A divisor nearer to 0 than
/// 0.001 counts as 0.001. Mod has the sign of b; Power and Sqrt of what has no real power give 0; Less is 1 or 0; Blend
/// is a at c = 0 and b at c = 1. Finite inputs give finite results, up to overflow.
const Operation& OperationAt(int number);

/// The number of an operation by its name, case ignored; -1 when there is none.
int FindOperation(const wchar_t* name);

/// scale * result + offset, held in outMin..outMax when `clamp` is on.
struct OperationOutput {
  float scale = 1, offset = 0;
  bool clamp = false;
  float outMin = 0, outMax = 0;
};
float Shaped(const OperationOutput& out, float result);

}  // namespace tavrilon
