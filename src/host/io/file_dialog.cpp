// SPDX-License-Identifier: MIT
#include "host/io/file_dialog.h"

#include <deque>

#include "host/io/settings.h"

namespace corvanta {
namespace {

constexpr const wchar_t* kSection = L"FileHistory";

std::deque<WStr>& Answers() {
  static std::deque<WStr> answers;
  return answers;
}

FileDialogHook& Hook() {
  static FileDialogHook hook;
  return hook;
}

WStr Ask(const FileDialogRequest& request) {
  if (!Answers().empty()) {
    WStr path = std::move(Answers().front());
    Answers().pop_front();
    return path;
  }
  return Hook() ? Hook()(request, FileDialogFolder(request.history)) : WStr();
}

/// "*.rig" gives ".rig".
WStr WithExtension(const WStr& path, const WStr& mask) {
  const size_t slash = path.find_last_of(L"/\\");
  const bool has = path.find(L'.', slash == WStr::npos ? 0 : slash + 1) != WStr::npos;
  return has || mask.size() < 2 ? path : path + mask.substr(1);
}

}  // namespace

void SetFileDialogHook(FileDialogHook hook) { Hook() = std::move(hook); }
void QueueFileDialogAnswer(const WStr& path) { Answers().push_back(path); }

WStr FileDialogFolder(const WStr& history) { return GetIniSetting(SettingsPath(), kSection, history); }

WStr AskForFile(const FileDialogRequest& request) {
  const WStr path = Ask(request);
  if (path.empty()) return path;
  const size_t slash = path.find_last_of(L"/\\");
  // A folder that cannot be remembered only costs the user some clicks next time.
  if (slash != WStr::npos && MakeConfigFolder())
    static_cast<void>(SetIniSetting(SettingsPath(), kSection, request.history, path.substr(0, slash)));
  return request.save ? WithExtension(path, request.mask) : path;
}

}  // namespace corvanta
