// SPDX-License-Identifier: MIT
#include "app/plugin_loader.h"

#include <dlfcn.h>

#include <cstdio>

namespace app {

namespace {

struct Exports {
  const wchar_t* (*description)() = nullptr;
  int (*numberClasses)() = nullptr;
  const corvanta::ClassDesc* (*classDesc)(int) = nullptr;
  unsigned long (*version)() = nullptr;
  int (*initialize)() = nullptr;
  int (*shutdown)() = nullptr;
  unsigned long (*canAutoDefer)() = nullptr;
};

// Finds one export; the first that is missing is told in `missing`.
template <typename Function>
void Resolve(void* library, const char* name, Function& function, std::string& missing) {
  function = reinterpret_cast<Function>(dlsym(library, name));
  if (function == nullptr && missing.empty()) missing = name;
}

// The name of the first missing export, or an empty text.
std::string ResolveAll(void* library, Exports& exports) {
  std::string missing;
  Resolve(library, "LibDescription", exports.description, missing);
  Resolve(library, "LibNumberClasses", exports.numberClasses, missing);
  Resolve(library, "LibClassDesc", exports.classDesc, missing);
  Resolve(library, "LibVersion", exports.version, missing);
  Resolve(library, "LibInitialize", exports.initialize, missing);
  Resolve(library, "LibShutdown", exports.shutdown, missing);
  Resolve(library, "CanAutoDefer", exports.canAutoDefer, missing);
  return missing;
}

std::string Hex(unsigned long number) {
  char text[32];
  std::snprintf(text, sizeof text, "0x%08lX", number);
  return text;
}

}  // namespace

std::filesystem::path PluginLibrary::DefaultPath() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error).parent_path() / "Tavrilon.dlc";
}

PluginLibrary PluginLibrary::Load(const std::filesystem::path& file) {
  PluginLibrary plugin;
  plugin.problem_ = plugin.Open(file);
  if (!plugin.problem_.empty()) plugin.problem_ = file.string() + ": " + plugin.problem_;
  return plugin;
}

std::string PluginLibrary::Open(const std::filesystem::path& file) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) {
    return "there is no such plug-in library; build it, or install it beside the program";
  }
  // An absolute path has a slash: a bare name would be searched for in the system's library folders.
  void* library = dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) return std::string("cannot be loaded: ") + dlerror();
  Exports exports;
  if (const std::string missing = ResolveAll(library, exports); !missing.empty()) {
    return "is not a plug-in of this host: it does not export " + missing;
  }
  if (const unsigned long version = exports.version(); version != kHostVersion) {
    return "was built for host version " + Hex(version) + ", this one is " + Hex(kHostVersion) +
           "; build both from the same sources";
  }
  description_ = exports.description();
  initialize_ = exports.initialize;
  shutdown_ = exports.shutdown;
  return ReadClasses(exports.numberClasses(), exports.classDesc);
}

std::string PluginLibrary::ReadClasses(int count, const corvanta::ClassDesc* (*classDesc)(int)) {
  for (int i = 0; i < count; ++i) {
    const corvanta::ClassDesc* desc = classDesc(i);
    if (desc == nullptr) {
      return "says it has " + std::to_string(count) + " classes, but gives none at " + std::to_string(i);
    }
    classes_.push_back(desc);
  }
  return "";
}

}  // namespace app
