// SPDX-License-Identifier: MIT
// Ctrl-C: the first asks the running work to stop at its next safe place, the second ends the process.
#pragma once

namespace app {

/// While one lives, SIGINT sets the flag. Only one at a time.
class InterruptWatch {
 public:
  InterruptWatch();
  ~InterruptWatch();
  InterruptWatch(const InterruptWatch&) = delete;
  InterruptWatch& operator=(const InterruptWatch&) = delete;

  /// True from the first SIGINT on. Cheap enough to ask on every pass of a loop.
  static bool IsInterrupted();
};

}  // namespace app
