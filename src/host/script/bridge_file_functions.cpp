// SPDX-License-Identifier: MIT
// Scene files.
#include "host/io/scene_file.h"
#include "host/script/bridge_functions.h"
#include "host/script/script_error.h"

namespace corvanta::script {

namespace {

Value Done(const CallArgs& args, const WStr& problem) {
  if (!problem.empty()) Fail(args.CalleeName() + L": " + problem);
  return Value::Ok();
}

Value Save(const CallArgs& args) { return Done(args, SaveScene(args.Text(0))); }
Value Load(const CallArgs& args) { return Done(args, LoadScene(args.Text(0))); }
Value Reset(const CallArgs& args) {
  return Done(args, ResetScene() ? L"" : L"an undo step is open, so the scene cannot go");
}

const BuiltinRow kRows[] = {{L"saveScene", Save, 1, 1}, {L"loadScene", Load, 1, 1}, {L"resetScene", Reset, 0, 0}};

}  // namespace

std::span<const BuiltinRow> FileFunctions() { return kRows; }

}  // namespace corvanta::script
