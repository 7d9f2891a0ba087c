// SPDX-License-Identifier: MIT
// The export options that the user used last.
#pragma once

#include "plugin/fbx/fbx_export.h"

namespace tavrilon {

/// From the user's settings; a key that is missing leaves its default. Numbers are taken as they stand, since the
/// export refuses what is wrong with them.
FbxExportOptions LoadFbxExportOptions();
/// False when the settings cannot be written.
bool SaveFbxExportOptions(const FbxExportOptions& options);

}  // namespace tavrilon
