// SPDX-License-Identifier: MIT
// The seven exports of the library, and its load entry. exports.map keeps everything else inside.
#include <dlfcn.h>

#include "plugin/frame/class_table.h"
#include "plugin/frame/library.h"

namespace {

/// Host release 24000 in the high 16 bits, host API number 60 in the next 8, SDK revision 0 in the low 8.
constexpr unsigned long kLibVersion = 0x5DC03C00;

// Runs when the host opens the library.
__attribute__((constructor)) void LoadEntry() {
  Dl_info info;
  if (dladdr(reinterpret_cast<void*>(&LoadEntry), &info)) tavrilon::AttachLibrary(info.dli_fbase);
}

}  // namespace

extern "C" {

const wchar_t* LibDescription() { return L"Tavrilon"; }
int LibNumberClasses() { return tavrilon::kNumClasses; }
/// Null for an index beyond the table.
const corvanta::ClassDesc* LibClassDesc(int index) { return tavrilon::LibraryClassDesc(index); }
unsigned long LibVersion() { return kLibVersion; }
int LibInitialize() {
  tavrilon::InitializeLibrary();
  return 1;
}
int LibShutdown() {
  tavrilon::ShutdownLibrary();
  return 1;
}
/// The host loads the library at its start, never later.
unsigned long CanAutoDefer() { return 0; }

}  // extern "C"
