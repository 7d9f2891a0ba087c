// SPDX-License-Identifier: MIT
// tavrilon info: tells what this installation holds, and which of its classes can be made.
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

#include "app/command_line.h"
#include "app/host_session.h"
#include "host/core/class_desc.h"
#include "host/core/wstr.h"

namespace app {

namespace {

struct InfoOptions {
  bool classes = false;
  bool json = false;
};

QJsonObject ToJson(const PluginLibrary& plugin) {
  QJsonArray classes;
  for (const corvanta::ClassDesc* desc : plugin.Classes()) {
    classes.append(QJsonObject{{"name", QString::fromWCharArray(desc->internalName)},
                               {"title", QString::fromWCharArray(desc->className)},
                               {"category", QString::fromWCharArray(desc->category)},
                               {"available", desc->create != nullptr}});
  }
  return QJsonObject{{"version", TAVRILON_VERSION},
                     {"plugin", QString::fromStdString(PluginLibrary::DefaultPath().string())},
                     {"classes", classes}};
}

void Print(const PluginLibrary& plugin, bool withClasses) {
  const auto& classes = plugin.Classes();
  const auto available = std::count_if(classes.begin(), classes.end(), [](auto* desc) { return desc->create; });
  std::printf("tavrilon " TAVRILON_VERSION "\n%s: %s, %zu classes, %td of them can be made\n",
              PluginLibrary::DefaultPath().c_str(), corvanta::ToUtf8(plugin.Description()).c_str(), classes.size(),
              available);
  if (!withClasses) return;
  for (const corvanta::ClassDesc* desc : classes) {
    std::printf("  %s%s\n", corvanta::ToUtf8(desc->internalName).c_str(), desc->create ? "" : " (not in this build)");
  }
}

int Info(const InfoOptions& options) {
  const HostSession session;
  if (!session.IsStarted()) return Fail(session.Problem());
  if (options.json) {
    std::fputs(QJsonDocument(ToJson(session.Plugin())).toJson().constData(), stdout);
  } else {
    Print(session.Plugin(), options.classes);
  }
  return kOk;
}

}  // namespace

void AddInfoCommand(CommandLine& line) {
  auto options = std::make_shared<InfoOptions>();
  line.Add("info", "Tell what this installation holds", [options] { return Info(*options); })
      .Flag("--classes", options->classes, "Name every class of the plug-in")
      .Flag("--json", options->json, "Print it all as JSON");
}

}  // namespace app
