// SPDX-License-Identifier: MIT
// tavrilon import FILE -o SCENE: reads another program's file into a scene.
#include <array>
#include <cstdio>
#include <memory>
#include <string>

#include "app/command_line.h"
#include "app/host_session.h"
#include "app/interrupt.h"
#include "app/node_kind.h"
#include "app/progress_line.h"
#include "app/published_call.h"
#include "host/io/exchange.h"
#include "host/io/scene_file.h"
#include "host/scene/core_interface.h"

namespace app {

using namespace corvanta;

namespace {

struct ImportOptions {
  std::string file;
  std::string output;
  std::string into;
  std::string stack;
  double unit = 0;
  bool noMesh = false;
  bool noAnimation = false;
};

// "53 bones, 2 helpers, 1 mesh".
std::string CountNodes(const std::vector<INode*>& nodes) {
  std::array<int, kNodeKinds> counts{};
  for (INode* node : nodes) ++counts[static_cast<size_t>(KindOf(*node))];
  std::string text;
  for (int kind = 0; kind < kNodeKinds; ++kind) {
    const int count = counts[static_cast<size_t>(kind)];
    if (count > 0) {
      text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + KindName(static_cast<NodeKind>(kind), count);
    }
  }
  return text.empty() ? "nothing" : text;
}

void PrintImported(const ImportOptions& options, const ExchangeReport& report) {
  const Interface& program = *GetCOREInterface();
  const int frame = program.GetTicksPerFrame();
  const Interval range = program.GetAnimRange();
  std::printf("%s: %s; frames %d to %d at %d a second\n", options.file.c_str(),
              CountNodes(GetScene().Selection()).c_str(), range.start / frame, range.end / frame,
              program.GetFrameRate());
  for (const WStr& line : report.log) std::printf("  %s\n", ToUtf8(line).c_str());
}

int Import(const ImportOptions& options) {
  const HostSession session;
  if (!session.IsStarted()) return Fail(session.Problem());
  if (!options.into.empty()) {
    if (const WStr problem = LoadScene(FromUtf8(options.into)); !problem.empty()) return Fail(ToUtf8(problem));
  }
  if (options.unit > 0) GetScene().units.centimetres = options.unit;
  FPInterface* fbx = FindCoreInterface(L"FBXImport");
  if (fbx == nullptr) return Fail("the plug-in offers no FBX import");
  SetProperty(*fbx, L"ImportSkeletalMesh", !options.noMesh);
  SetProperty(*fbx, L"ImportAnimation", !options.noAnimation);
  SetProperty(*fbx, L"Stack", FromUtf8(options.stack));

  const InterruptWatch watch;
  ExchangeReport report;
  {
    const ProgressLine progress;
    if (!ImportFile(FromUtf8(options.file), true, report)) return Fail(ToUtf8(report.error));
  }
  PrintImported(options, report);
  // What came in is selected for who goes on with it; in a file that would only mark every node.
  GetScene().ClearNodeSelection();
  if (const WStr problem = SaveScene(FromUtf8(options.output)); !problem.empty()) return Fail(ToUtf8(problem));
  std::printf("wrote %s\n", options.output.c_str());
  return kOk;
}

}  // namespace

void AddImportCommand(CommandLine& line) {
  auto options = std::make_shared<ImportOptions>();
  line.Add("import", "Read an FBX file into a scene", [options] { return Import(*options); })
      .Text("file", options->file, Given::Required, "The file to read (.fbx, binary or text, version 7.1 to 7.7)")
      .Text("-o,--out", options->output, Given::Required, "The scene to write (.tvs)")
      .Text("--into", options->into, Given::Optional, "A scene (.tvs) that the file is added to; without one a new one")
      .Text("--stack", options->stack, Given::Optional, "The animation stack to take; without one the current one")
      .Number("--unit", options->unit, 0, 1e6, "Length of a scene unit in centimetres; 0 leaves the scene's")
      .Flag("--no-mesh", options->noMesh, "Leave meshes, skins, blend shapes and materials out")
      .Flag("--no-animation", options->noAnimation, "Leave the animation out");
}

}  // namespace app
