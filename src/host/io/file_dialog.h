// SPDX-License-Identifier: MIT
// File dialogs as a question and an answer: the window asks the user, a program without one answers from a queue.
#pragma once

#include <functional>

#include "host/core/wstr.h"

namespace corvanta {

struct FileDialogRequest {
  /// True asks for a name to write to, false for a file that exists.
  bool save = false;
  const wchar_t* title;
  /// As shown, for instance "Rig Template Files (*.rig)", and the pattern alone.
  const wchar_t* filter;
  const wchar_t* mask;
  /// Category under which the folder of the last answer is remembered.
  const wchar_t* history;
};

/// The path that the user chose; empty when cancelled, and when there is neither a window nor a queued answer.
/// A name to write to gets the mask's extension when it has none. The folder is remembered for the next question.
WStr AskForFile(const FileDialogRequest& request);
/// The folder of the last answer of a category; empty before the first.
WStr FileDialogFolder(const WStr& history);

/// The window's dialog, called with the remembered folder; none by default.
using FileDialogHook = std::function<WStr(const FileDialogRequest& request, const WStr& folder)>;
void SetFileDialogHook(FileDialogHook hook);
/// Answers the next question without a window. Queued answers come before the hook; an empty one cancels.
void QueueFileDialogAnswer(const WStr& path);

}  // namespace corvanta
