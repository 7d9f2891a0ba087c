// SPDX-License-Identifier: MIT
#include "app/progress_line.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "app/interrupt.h"
#include "host/io/exchange.h"

namespace app {

namespace {

constexpr int kBarWidth = 30;

// What stands on the line now; it is written again only when it changes.
std::string shown;

void Show(const std::string& title, double share) {
  const int percent = static_cast<int>(std::clamp(share, 0.0, 1.0) * 100);
  const int filled = percent * kBarWidth / 100;
  const std::string line = title + " [" + std::string(static_cast<size_t>(filled), '#') +
                           std::string(static_cast<size_t>(kBarWidth - filled), '.') + "] " + std::to_string(percent) +
                           " %";
  if (line == shown) return;
  std::fprintf(stderr, "\r%s\033[K", line.c_str());
  std::fflush(stderr);
  shown = line;
}

}  // namespace

ProgressLine::ProgressLine() {
  const bool onTerminal = isatty(STDERR_FILENO) != 0;
  corvanta::SetProgressHook([onTerminal](const corvanta::WStr& title, double share) {
    if (onTerminal) Show(corvanta::ToUtf8(title), share);
    return !InterruptWatch::IsInterrupted();
  });
}

ProgressLine::~ProgressLine() {
  corvanta::SetProgressHook(nullptr);
  if (!shown.empty()) std::fprintf(stderr, "\r\033[K");
  shown.clear();
}

}  // namespace app
