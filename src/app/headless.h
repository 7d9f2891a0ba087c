// SPDX-License-Identifier: MIT
// Running without a display.
#pragma once

#include <memory>

class QGuiApplication;

namespace app {

/// Sets QT_QPA_PLATFORM to "offscreen" when there is no display and the variable is not given: Qt would end the
/// process otherwise. Call before an application object is made.
void ChooseHeadlessPlatform();

/// The application object that drawing text needs; pictures without text, files and scripts do without. It costs some
/// ten milliseconds, so only subcommands that draw make one, and keep it to their end.
std::unique_ptr<QGuiApplication> MakeDrawingApplication();

}  // namespace app
