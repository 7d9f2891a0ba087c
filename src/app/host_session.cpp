// SPDX-License-Identifier: MIT
#include "app/host_session.h"

#include "host/core/class_desc.h"
#include "host/core/notify.h"
#include "host/core/wstr.h"

namespace app {

HostSession::HostSession() : problem_(Start()) {}

std::string HostSession::Start() {
  corvanta::RegisterHostClasses();
  const std::filesystem::path file = PluginLibrary::DefaultPath();
  plugin_ = PluginLibrary::Load(file);
  if (!plugin_.IsLoaded()) return plugin_.Problem();
  for (const corvanta::ClassDesc* desc : plugin_.Classes()) {
    if (corvanta::ClassDirectory::Get().Register(desc)) continue;
    return file.string() + ": its class " + corvanta::ToUtf8(desc->internalName) +
           " has the super class and Class_ID of another class";
  }
  if (!plugin_.Initialize()) return file.string() + ": its start failed";
  corvanta::BroadcastNotification(corvanta::NOTIFY_HOST_STARTED);
  return "";
}

HostSession::~HostSession() {
  if (!IsStarted()) return;
  corvanta::BroadcastNotification(corvanta::NOTIFY_HOST_CLOSING);
  plugin_.Shutdown();
}

}  // namespace app
