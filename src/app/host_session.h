// SPDX-License-Identifier: MIT
// The host with its plug-in, from start to end: what a subcommand needs before it touches a scene.
#pragma once

#include <string>

#include "app/plugin_loader.h"

namespace app {

/// Registers the host's classes, loads Tavrilon.dlc from the program's folder, registers its classes and starts it; the
/// destructor ends it. One a process.
class HostSession {
 public:
  HostSession();
  ~HostSession();
  HostSession(const HostSession&) = delete;
  HostSession& operator=(const HostSession&) = delete;

  bool IsStarted() const { return problem_.empty(); }
  /// Why it has not started: one line for the user.
  const std::string& Problem() const { return problem_; }
  const PluginLibrary& Plugin() const { return plugin_; }

 private:
  std::string Start();

  PluginLibrary plugin_;
  std::string problem_;
};

}  // namespace app
