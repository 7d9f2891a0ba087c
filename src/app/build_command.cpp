// SPDX-License-Identifier: MIT
// tavrilon build: makes a rig from a type, a template and the user's changes, and saves the scene. Nothing is written
// before the rig stands and has passed the checks that were asked for.
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "app/build_report.h"
#include "app/command_line.h"
#include "app/host_session.h"
#include "app/read_numbers.h"
#include "app/rest_pose.h"
#include "app/rig_draft.h"
#include "app/scene_picture.h"
#include "host/io/scene_file.h"

namespace app {

using namespace corvanta;

namespace {

struct Lists {
  bool types = false, params = false, points = false;
  bool Any() const { return types || params || points; }
};

struct BuildOptions {
  std::string type;
  std::string rigTemplate;
  std::string name;
  double height = 0;
  std::vector<std::string> settings;
  std::vector<std::string> points;
  std::string output;
  std::string saveTemplate;
  std::string picture;
  std::string view = "persp";
  bool checkRestPose = false;
  bool json = false;
  Lists lists;
};

struct Setting {
  std::string name, value;
};
struct Point {
  std::string name;
  Point3 place;
};

/// The options read, before anything is made.
struct BuildPlan {
  std::vector<Setting> settings;
  std::vector<Point> points;
};

std::string ReadPlan(const BuildOptions& options, BuildPlan& plan) {
  if (!options.name.empty()) plan.settings.push_back({"rig_name", options.name});
  if (options.height > 0) plan.settings.push_back({"helper_size", WriteNumber(static_cast<float>(options.height))});
  for (const std::string& text : options.settings) {
    Setting setting;
    if (!ReadAssignment(text, setting.name, setting.value)) return "--set " + text + ": give NAME=VALUE";
    plan.settings.push_back(setting);
  }
  for (const std::string& text : options.points) {
    Point point;
    std::string value;
    const bool named = ReadAssignment(text, point.name, value);
    const std::vector<float> numbers = ReadNumbers(value);
    if (!named || numbers.size() != 3) return "--point " + text + ": give NAME=X,Y,Z, three numbers";
    point.place = {numbers[0], numbers[1], numbers[2]};
    plan.points.push_back(point);
  }
  return "";
}

// Type first, since it discards the points; then the template; then counts, which add and take away points; then
// points.
std::string Draft(const BuildOptions& options, const BuildPlan& plan, RigDraft& rig) {
  if (!rig.Problem().empty()) return rig.Problem();
  std::string problem;
  if (!options.type.empty()) problem = rig.SetType(options.type);
  const std::string type = rig.TypeName();
  if (problem.empty() && !options.rigTemplate.empty()) problem = rig.Load(options.rigTemplate);
  if (!problem.empty()) return problem;
  if (!options.type.empty() && rig.TypeName() != type)
    return options.rigTemplate + ": it is the template of a " + rig.TypeName() + ", not of a " + type;
  for (const Setting& setting : plan.settings)
    if (problem.empty()) problem = rig.SetParameter(setting.name, setting.value);
  for (const Point& point : plan.points)
    if (problem.empty()) problem = rig.SetPoint(point.name, point.place);
  return problem;
}

void PrintLists(const RigDraft& rig, const Lists& lists) {
  if (lists.types)
    for (const std::string& name : rig.TypeNames()) std::printf("%s\n", name.c_str());
  if (lists.params)
    for (const RigParameter& p : rig.Parameters()) {
      std::printf("%-26s %-14s %-12s %-12s %s\n", p.name.c_str(), p.kind.c_str(), p.value.c_str(), p.range.c_str(),
                  p.label.c_str());
    }
  if (lists.points)
    for (const std::string& name : rig.PointNames()) std::printf("%s\n", name.c_str());
}

std::string WriteFiles(const BuildOptions& options, RigDraft& rig, BuildReport& report) {
  std::string problem;
  if (!options.saveTemplate.empty()) {
    problem = rig.Save(options.saveTemplate);
    if (!problem.empty()) return problem;
    report.files.push_back(options.saveTemplate);
  }
  if (!options.output.empty()) {
    problem = ToUtf8(SaveScene(FromUtf8(options.output)));
    if (!problem.empty()) return problem;
    report.files.push_back(options.output);
  }
  if (options.picture.empty()) return "";
  PictureOptions picture;
  picture.view = ViewOf(options.view);
  picture.show = {NodeKind::Control, NodeKind::Bone};
  problem = WritePicture(options.picture, picture);
  report.files.push_back(options.picture);
  return problem;
}

BuildReport Describe(const BuildOptions& options, const RigDraft& rig) {
  BuildReport report;
  report.type = rig.TypeName();
  report.name = rig.Name();
  report.height = rig.Height();
  for (const Ref<INode>& node : GetScene().Nodes()) ++report.counts[static_cast<int>(KindOf(*node))];
  report.notes = rig.Notes();
  report.panel = rig.PanelParts();
  report.unknownPoints = rig.UnknownPoints();
  report.templateFile = options.rigTemplate;
  return report;
}

int Build(const BuildOptions& options) {
  BuildPlan plan;
  if (const std::string problem = ReadPlan(options, plan); !problem.empty()) return WrongUsage(problem);
  const HostSession session;
  if (!session.IsStarted()) return Fail(session.Problem());
  RigDraft rig;
  std::string problem = Draft(options, plan, rig);
  if (!problem.empty()) return Fail(problem);
  if (options.lists.Any()) return PrintLists(rig, options.lists), kOk;
  problem = rig.Create();
  if (!problem.empty()) return Fail(problem);
  BuildReport report = Describe(options, rig);
  if (options.checkRestPose) {
    const RestPose pose = CheckRestPose(GetScene());
    if (!pose.fault.empty()) return Fail("rest pose: " + pose.fault + "; nothing was written");
    report.restControls = pose.controls;
  }
  problem = WriteFiles(options, rig, report);
  if (!problem.empty()) return Fail(problem);
  options.json ? PrintReportAsJson(report) : PrintReport(report);
  return kOk;
}

}  // namespace

void AddBuildCommand(CommandLine& line) {
  auto options = std::make_shared<BuildOptions>();
  line.Add("build", "Build a rig and save it as a scene", [options] { return Build(*options); })
      .Text("--type", options->type, Given::Optional, "The type of rig; without one that of the template, or Biped")
      .Text("--template", options->rigTemplate, Given::Optional, "The template (.rig) to start from")
      .Text("--name", options->name, Given::Optional, "The name of the rig")
      .Number("--height", options->height, 0, 1e6, "The figure's height in scene units; 0 leaves the template's")
      .List("--set", options->settings, "NAME=VALUE: a parameter of the rig; may come several times")
      .List("--point", options->points,
            "NAME=X,Y,Z: a template point, in units of the figure's height; may come several times")
      .Text("-o,--out", options->output, Given::Optional, "The scene to write (.tvs)")
      .Text("--save-template", options->saveTemplate, Given::Optional, "The template to write (.rig)")
      .Text("--png", options->picture, Given::Optional, "A picture of the rig to write (.png)")
      .Choice("--view", options->view, ViewNames(), "Where the picture is taken from")
      .Flag("--check-rest-pose", options->checkRestPose, "Fail, and write nothing, unless every control is at rest")
      .Flag("--json", options->json, "Print what was built as JSON")
      .Flag("--list-types", options->lists.types, "Print the types of rig, and build nothing")
      .Flag("--list-params", options->lists.params, "Print the parameters with value and range, and build nothing")
      .Flag("--list-points", options->lists.points, "Print the names of the template points, and build nothing");
}

}  // namespace app
