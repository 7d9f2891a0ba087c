// SPDX-License-Identifier: MIT
// The core interfaces besides "Tavrilon", each defined in the folder of what it publishes.
#pragma once

namespace corvanta {
class FPInterface;
}

namespace tavrilon {

// fbx/
corvanta::FPInterface& FbxExportCoreInterface();

}  // namespace tavrilon
