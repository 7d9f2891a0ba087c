// SPDX-License-Identifier: MIT
// How far long work is, on one line of the terminal.
#pragma once

namespace app {

/// While one lives, the host's progress is shown on the error output when that is a terminal, and Ctrl-C stops the
/// work at its next safe place.
class ProgressLine {
 public:
  ProgressLine();
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
};

}  // namespace app
