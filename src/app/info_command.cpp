// SPDX-License-Identifier: MIT
// tavrilon info [SCENE]: tells what a scene holds; without one, what this installation holds and which of its classes
// can be made.
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
#include "host/io/scene_file.h"
#include "host/io/scene_info.h"

namespace app {

namespace {

struct InfoOptions {
  std::string scene;
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

int DescribeScene(const InfoOptions& options) {
  const std::string problem = corvanta::ToUtf8(corvanta::LoadScene(corvanta::FromUtf8(options.scene)));
  if (!problem.empty()) return Fail(problem);
  const corvanta::SceneInfo info = corvanta::CollectSceneInfo(corvanta::GetScene());
  std::fputs((options.json ? corvanta::SceneInfoJson(info) : corvanta::SceneInfoText(info)).c_str(), stdout);
  return kOk;
}

int Info(const InfoOptions& options) {
  const HostSession session;
  if (!session.IsStarted()) return Fail(session.Problem());
  if (!options.scene.empty()) return DescribeScene(options);
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
  line.Add("info", "Tell what a scene or this installation holds", [options] { return Info(*options); })
      .Text("scene", options->scene, Given::Optional, "The scene (.tvs); without one the installation is described")
      .Flag("--classes", options->classes, "Name every class of the plug-in")
      .Flag("--json", options->json, "Print it all as JSON");
}

}  // namespace app
