// SPDX-License-Identifier: MIT
// The functions and interfaces that the library adds to the script language, each defined beside what it makes.
#pragma once

namespace tavrilon {

// solvers/
void RegisterIKFKSolverPrimitive();
void UnregisterIKFKSolverPrimitive();
void RegisterCurveIKSolverPrimitive();
void UnregisterCurveIKSolverPrimitive();

// fbx/
void RegisterFBXImportInterface();

}  // namespace tavrilon
