// SPDX-License-Identifier: MIT
#pragma once

#include "host/core/wstr.h"

namespace corvanta::script {

/// By the program's message box, or as a line in the listener.
void ShowMessageBox(const WStr& text, const WStr& title, bool quiet);

}  // namespace corvanta::script
