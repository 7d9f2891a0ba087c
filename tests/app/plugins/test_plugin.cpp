// SPDX-License-Identifier: MIT
// A plug-in of one class, built once whole and once with each fault: see plugins/CMakeLists.txt.
#ifndef PLUGIN_VERSION
#define PLUGIN_VERSION 0x5DC03C00
#endif
#ifndef PLUGIN_CLASSES
#define PLUGIN_CLASSES 1
#endif

namespace corvanta {
class ClassDesc;
}

namespace {
int storage;  // stands for a descriptor, which the loader only hands on
}

extern "C" {
const wchar_t* LibDescription() { return L"Test plug-in"; }
int LibNumberClasses() { return PLUGIN_CLASSES; }
const corvanta::ClassDesc* LibClassDesc(int index) {
  return index == 0 ? reinterpret_cast<const corvanta::ClassDesc*>(&storage) : nullptr;
}
unsigned long LibVersion() { return PLUGIN_VERSION; }
int LibInitialize() { return 1; }
#ifndef PLUGIN_WITHOUT_SHUTDOWN
int LibShutdown() { return 1; }
#endif
unsigned long CanAutoDefer() { return 0; }
}
