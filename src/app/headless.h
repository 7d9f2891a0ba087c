// SPDX-License-Identifier: MIT
// Running without a display.
#pragma once

namespace app {

/// Sets QT_QPA_PLATFORM to "offscreen" when there is no display and the variable is not given: Qt would end the
/// process otherwise. Call before an application object is made.
void ChooseHeadlessPlatform();

/// Makes the application object that drawing text needs, once; pictures without text, files and scripts do without. It
/// costs some ten milliseconds, so only subcommands that draw call this. The object lives to the end of the process:
/// ending it unloads the platform's library while it still holds memory.
void StartDrawing();

}  // namespace app
