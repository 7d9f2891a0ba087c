// SPDX-License-Identifier: MIT
#include "plugin/frame/library.h"

#include "host/core/notify.h"
#include "plugin/frame/core_interfaces.h"
#include "plugin/frame/resource.h"
#include "plugin/frame/script_primitives.h"
#include "plugin/frame/tavrilon_interface.h"

namespace tavrilon {

using namespace corvanta;

namespace {

using InterfaceGetter = FPInterface& (*)();
constexpr InterfaceGetter kCoreInterfaces[] = {
    []() -> FPInterface& { return GetTavrilonInterface(); },
    FbxExportCoreInterface,
};

// The panel and the pose kit of the old scene are no longer the current ones.
void OnSceneReset(void*, NotifyInfo*) { GetTavrilonInterface().Clear(); }

// Both hooks have one step each way so far: the curve editor, which brings the others, is not built yet.
void OnHostStarted(void*, NotifyInfo*) { RegisterNotification(OnSceneReset, nullptr, NOTIFY_SCENE_RESET); }

void OnHostClosing(void*, NotifyInfo*) {
  UnRegisterNotification(OnSceneReset, nullptr, NOTIFY_SCENE_RESET);
  GetTavrilonInterface().Clear();
}

}  // namespace

void AttachLibrary(void* moduleHandle) {
  SetModuleHandle(moduleHandle);
  for (const InterfaceGetter getter : kCoreInterfaces) {
    FPInterface& interface = getter();
    if (!GetCoreInterface(interface.GetDesc().id)) RegisterCoreInterface(&interface);
  }
}

void InitializeLibrary() {
  RegisterIKFKSolverPrimitive();
  RegisterCurveIKSolverPrimitive();
  RegisterNotification(OnSceneReset, nullptr, NOTIFY_SCENE_RESET);
  RegisterNotification(OnHostStarted, nullptr, NOTIFY_HOST_STARTED);
  RegisterNotification(OnHostClosing, nullptr, NOTIFY_HOST_CLOSING);
}

void ShutdownLibrary() {
  UnregisterIKFKSolverPrimitive();
  UnregisterCurveIKSolverPrimitive();
  UnRegisterNotification(OnHostStarted, nullptr, NOTIFY_HOST_STARTED);
  UnRegisterNotification(OnHostClosing, nullptr, NOTIFY_HOST_CLOSING);
  OnHostClosing(nullptr, nullptr);
}

}  // namespace tavrilon
