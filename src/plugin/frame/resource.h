// SPDX-License-Identifier: MIT
// The texts that users see and that more than one place shows, by number.
#pragma once

namespace tavrilon {

enum ResString : int {
  kStrParameterChange = 594,
  kStrNone = 598,
  kStrAnimationLayersChange = 959,
  kStrBaseLayer = 970,
  kStrAnimLayer = 971,
  kStrSelectObject = 994,
  kStrResetFigure = 1001,
  kStrChangeEulerOrder = 1002,
  kStrFigureModeOn = 1003,
};

/// The text of `id` in one shared buffer of 512 wide characters, which the next call overwrites; a longer text is cut.
/// Null for an unknown ID and while no module handle is set.
const wchar_t* LoadResString(int id);

/// The handle of the library, under which its resources are found; null before the library is attached.
void SetModuleHandle(void* handle);
void* GetModuleHandle();

}  // namespace tavrilon
