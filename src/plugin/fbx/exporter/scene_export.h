// SPDX-License-Identifier: MIT
// From the host's scene to the scene of a file. Nothing is written here, so that a failure touches no file.
#pragma once

#include <memory>

#include "plugin/fbx/fbx_export.h"
#include "plugin/fbx/format/scene.h"

namespace tavrilon::fbx_export {

/// Checks the options and makes the scene that `file` will hold; textures are told relative to it. Null with the error
/// in `report`. The scene on show is only read: undo, selection and the present time stay as they are.
std::unique_ptr<fbx::FbxScene> BuildFbxScene(const std::vector<corvanta::INode*>& nodes, const corvanta::WStr& file,
                                             const FbxExportOptions& options, corvanta::ExchangeReport& report);

}  // namespace tavrilon::fbx_export
