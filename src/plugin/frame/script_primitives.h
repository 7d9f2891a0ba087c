// SPDX-License-Identifier: MIT
// The functions that the library adds to the script language, each defined beside what it makes.
#pragma once

namespace tavrilon {

// solvers/
void RegisterIKFKSolverPrimitive();
void UnregisterIKFKSolverPrimitive();
void RegisterCurveIKSolverPrimitive();
void UnregisterCurveIKSolverPrimitive();

}  // namespace tavrilon
