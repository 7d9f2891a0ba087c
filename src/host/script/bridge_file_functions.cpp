// SPDX-License-Identifier: MIT
#include "host/script/bridge_functions.h"
#include "host/script/script_error.h"

namespace corvanta::script {
namespace {
Value NotThere(const CallArgs& args) { Fail(args.CalleeName() + L": scene files are not available in this build"); }
const BuiltinRow kRows[] = {
    {L"saveScene", NotThere, 1, 1}, {L"loadScene", NotThere, 1, 1}, {L"resetScene", NotThere, 0, 0}};
}  // namespace
std::span<const BuiltinRow> FileFunctions() { return kRows; }
}  // namespace corvanta::script
