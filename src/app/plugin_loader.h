// SPDX-License-Identifier: MIT
// Loads a plug-in library by its seven exports, as the host does at its start.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace corvanta {
class ClassDesc;
}

namespace app {

/// The host release and API for which a library must have been built: the answer of its LibVersion.
inline constexpr unsigned long kHostVersion = 0x5DC03C00;

/// A loaded library. It stays loaded until the process ends, since scene objects hold its code.
class PluginLibrary {
 public:
  /// Opens the library and asks for its name and its classes. On failure the result is not loaded and `Problem` tells
  /// the file and what is wrong with it: missing, not loadable, an export missing, built for another host.
  static PluginLibrary Load(const std::filesystem::path& file);

  /// Tavrilon.dlc beside the running executable.
  static std::filesystem::path DefaultPath();

  bool IsLoaded() const { return problem_.empty(); }
  const std::string& Problem() const { return problem_; }
  const std::wstring& Description() const { return description_; }
  const std::vector<const corvanta::ClassDesc*>& Classes() const { return classes_; }

  /// LibInitialize and LibShutdown: false when the library says no or is not loaded. Register the classes before the
  /// first.
  bool Initialize() const { return IsLoaded() && initialize_() != 0; }
  bool Shutdown() const { return IsLoaded() && shutdown_() != 0; }

 private:
  // Each returns the problem, or an empty text.
  std::string Open(const std::filesystem::path& file);
  std::string ReadClasses(int count, const corvanta::ClassDesc* (*classDesc)(int));

  std::string problem_ = "no plug-in library was loaded";
  std::wstring description_;
  std::vector<const corvanta::ClassDesc*> classes_;
  int (*initialize_)() = nullptr;
  int (*shutdown_)() = nullptr;
};

}  // namespace app
