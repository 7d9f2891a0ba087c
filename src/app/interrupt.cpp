// SPDX-License-Identifier: MIT
#include "app/interrupt.h"

#include <csignal>

namespace app {

namespace {

volatile std::sig_atomic_t interrupted = 0;

void Interrupt(int) { interrupted = 1; }

}  // namespace

InterruptWatch::InterruptWatch() {
  interrupted = 0;
  struct sigaction action = {};
  action.sa_handler = Interrupt;
  action.sa_flags = SA_RESETHAND;  // the second Ctrl-C has its ordinary effect
  sigaction(SIGINT, &action, nullptr);
}

InterruptWatch::~InterruptWatch() { std::signal(SIGINT, SIG_DFL); }

bool InterruptWatch::IsInterrupted() { return interrupted != 0; }

}  // namespace app
