// SPDX-License-Identifier: MIT
// tavrilon export SCENE -o FILE: writes bones, meshes and baked animation for other programs.
#include <fnmatch.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "app/command_line.h"
#include "app/host_session.h"
#include "app/interrupt.h"
#include "app/nearest_name.h"
#include "app/node_kind.h"
#include "app/progress_line.h"
#include "app/published_call.h"
#include "host/io/scene_file.h"
#include "host/scene/core_interface.h"

namespace app {

using namespace corvanta;

namespace {

struct ExportOptions {
  std::string scene;
  std::string output;
  std::vector<std::string> select;
  std::string frames;
  std::string up = "scene";
  int subSamples = 1;
  bool noMesh = false;
  bool noAnimation = false;
};

// What an engine takes: the bones, and the meshes that hang on them.
bool IsForEngines(INode& node) {
  const NodeKind kind = KindOf(node);
  return kind == NodeKind::Bone || kind == NodeKind::Mesh;
}

/// Nodes of one word of --select. An empty list is a word that names nothing.
std::vector<INode*> NodesOf(const std::string& word) {
  std::vector<INode*> found;
  for (const Ref<INode>& node : GetScene().Nodes()) {
    const bool taken = word == "all"     ? KindOf(*node) != NodeKind::Guide
                       : word == "bones" ? IsForEngines(*node)
                                         : fnmatch(word.c_str(), ToUtf8(node->GetName()).c_str(), 0) == 0;
    if (taken) found.push_back(node.Get());
  }
  return found;
}

std::vector<std::string> NodeNames() {
  std::vector<std::string> names;
  for (const Ref<INode>& node : GetScene().Nodes()) names.push_back(ToUtf8(node->GetName()));
  return names;
}

/// Gives an empty text and makes the selection, or what is wrong with the words.
std::string Select(const std::vector<std::string>& words) {
  GetScene().ClearNodeSelection();
  if (words.empty()) {
    std::vector<INode*> nodes = NodesOf("bones");
    if (nodes.empty()) nodes = NodesOf("all");
    GetScene().SelectNodeTab(nodes, true);
    return "";
  }
  for (const std::string& word : words) {
    const std::vector<INode*> nodes = NodesOf(word);
    if (nodes.empty()) return "--select: no node is called \"" + word + "\"" + Suggestion(word, NodeNames());
    GetScene().SelectNodeTab(nodes, true);
  }
  return "";
}

bool ReadFrames(const std::string& text, int& first, int& last) {
  int end = 0;
  return std::sscanf(text.c_str(), "%9d:%9d%n", &first, &last, &end) == 2 && end == static_cast<int>(text.size());
}

/// Why the export failed, and what to do about it where the exporter says so.
std::string Refusal(FPInterface& fbx) {
  std::string text = ToUtf8(GetProperty(fbx, L"Error").ToWStr());
  for (const std::string& line : Texts(GetProperty(fbx, L"Log"))) text += "\n  " + line;
  return text;
}

int Export(const ExportOptions& options) {
  if (!options.output.ends_with(".fbx") && !options.output.ends_with(".FBX")) {
    return WrongUsage("-o " + options.output + ": give a name that ends in .fbx");
  }
  int first = 0, last = 0;
  if (!options.frames.empty() && !ReadFrames(options.frames, first, last)) {
    return WrongUsage("--frames " + options.frames + ": give FIRST:LAST, two whole numbers");
  }
  const HostSession session;
  if (!session.IsStarted()) return Fail(session.Problem());
  if (const WStr problem = LoadScene(FromUtf8(options.scene)); !problem.empty()) return Fail(ToUtf8(problem));
  if (const std::string problem = Select(options.select); !problem.empty()) return Fail(problem);
  if (options.up != "scene") GetScene().units.upAxis = options.up == "y" ? UpAxis::Y : UpAxis::Z;
  FPInterface* fbx = FindCoreInterface(L"FBXExport");
  if (fbx == nullptr) return Fail("the plug-in offers no FBX export");
  SetProperty(*fbx, L"ExportSkeletalMesh", !options.noMesh);
  SetProperty(*fbx, L"ExportAnimation", !options.noAnimation);
  SetProperty(*fbx, L"TimeSegment", options.frames.empty() ? 0 : 1);
  SetProperty(*fbx, L"StartFrame", first);
  SetProperty(*fbx, L"EndFrame", last);
  SetProperty(*fbx, L"SubSamples", options.subSamples);

  const InterruptWatch watch;
  {
    const ProgressLine progress;
    if (!Call(*fbx, L"ExportFile", {FromUtf8(options.output)}).ToBool()) return Fail(Refusal(*fbx));
  }
  std::printf("%s: %zu nodes\n", options.scene.c_str(), GetScene().Selection().size());
  for (const std::string& line : Texts(GetProperty(*fbx, L"Log"))) std::printf("  %s\n", line.c_str());
  std::printf("wrote %s\n", options.output.c_str());
  return kOk;
}

}  // namespace

void AddExportCommand(CommandLine& line) {
  auto options = std::make_shared<ExportOptions>();
  line.Add("export", "Write a scene's bones, meshes and motion to an FBX file", [options] { return Export(*options); })
      .Text("scene", options->scene, Given::Required, "The scene (.tvs)")
      .Text("-o,--out", options->output, Given::Required, "The file to write (.fbx)")
      .List("--select", options->select,
            "bones (with the meshes), all, or a node's name, * for any letters; may come several times. Without it "
            "bones; all when there are none")
      .Text("--frames", options->frames, Given::Optional, "FIRST:LAST; without it the scene's animation range")
      .Number("--subsamples", options->subSamples, 1, 100, "Samples a frame")
      .Choice("--up", options->up, {"scene", "y", "z"}, "Which axis points up in the file")
      .Flag("--no-mesh", options->noMesh, "Leave meshes, skins, blend shapes and materials out")
      .Flag("--no-animation", options->noAnimation, "Leave the animation out");
}

}  // namespace app
