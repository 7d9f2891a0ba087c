// SPDX-License-Identifier: MIT
// tavrilon fbx info|tree FILE: tells what an FBX file holds, without a scene.
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "app/command_line.h"
#include "plugin/fbx/format/sdk.h"

namespace app {

using namespace tavrilon::fbx;

namespace {

struct FbxOptions {
  std::string question = "info";
  std::string file;
  int depth = 8;
};

constexpr size_t kShownText = 60;
constexpr size_t kShownValues = 4;

// A text for the terminal: no control characters, not too long.
std::string Shown(std::string_view text) {
  std::string shown;
  for (const char c : text.substr(0, kShownText)) shown += static_cast<unsigned char>(c) < 32 || c == 127 ? '.' : c;
  return "\"" + shown + (text.size() > kShownText ? "\"..." : "\"");
}

std::string Shown(double number) {
  char text[40];
  std::snprintf(text, sizeof text, "%.9g", number);
  return text;
}

std::string ShownArray(const PropertyView& property) {
  std::string text = "*" + std::to_string(property.Count()) + " (";
  std::vector<double> values;
  if (!property.Read(values)) return text + "damaged)";
  for (size_t i = 0; i < std::min(values.size(), kShownValues); ++i) text += (i == 0 ? "" : ", ") + Shown(values[i]);
  return text + (values.size() > kShownValues ? ", ...)" : ")");
}

std::string Shown(const PropertyView& property) {
  if (property.IsText()) return Shown(property.AsText());
  if (property.IsArray()) return ShownArray(property);
  return property.Type() == PropertyType::Float || property.Type() == PropertyType::Double
             ? Shown(property.AsDouble())
             : std::to_string(property.AsInt());
}

void PrintTree(RecordView::Range records, int indent, int depth) {
  for (const RecordView record : records) {
    std::string line(static_cast<size_t>(indent) * 2, ' ');
    line += record.Name();
    line += ":";
    for (size_t i = 0; i < record.NumProperties(); ++i) line += (i == 0 ? " " : ", ") + Shown(record.Property(i));
    std::puts(line.c_str());
    if (indent + 1 < depth) PrintTree(record.Children(), indent + 1, depth);
  }
}

std::string AxisName(int axis, int sign) { return std::string(sign < 0 ? "-" : "") + "XYZ"[axis % 3]; }

void PrintSettings(const FbxDocument& document, const FbxScene& scene) {
  const FbxGlobalSettings& settings = scene.GetGlobalSettings();
  const FbxAxisSystem& axes = settings.GetAxisSystem();
  std::printf("%s: version %d, %s, %zu records\n", document.FileName().c_str(), document.Version(),
              document.IsAscii() ? "text" : "binary", document.NumRecords());
  std::printf("  up %s, front %s, unit %s cm, %s frames a second\n", AxisName(axes.up, axes.upSign).c_str(),
              AxisName(axes.front, axes.frontSign).c_str(), Shown(settings.GetSystemUnit().centimetres).c_str(),
              settings.GetFrameRate() > 0 ? Shown(settings.GetFrameRate()).c_str() : "unknown");
}

const char* KindOf(const FbxNode& node) {
  const FbxNodeAttribute* attribute = node.GetNodeAttribute();
  if (attribute == nullptr) return "";
  switch (attribute->Kind()) {
    case AttributeKind::Null:
      return "null";
    case AttributeKind::Skeleton:
      return "bone";
    case AttributeKind::Mesh:
      return "mesh";
    case AttributeKind::Camera:
      return "camera";
    case AttributeKind::Light:
      return "light";
    default:
      return "other";
  }
}

void PrintMesh(const FbxMesh& mesh) {
  std::printf("    %zu points, %d polygons, %zu UV sets, %zu shapes", mesh.controlPoints.size(), mesh.NumPolygons(),
              mesh.uvs.size(), mesh.blendShapes.empty() ? size_t{0} : mesh.blendShapes.front()->channels.size());
  if (!mesh.skins.empty()) std::printf(", skin of %zu bones", mesh.skins.front()->clusters.size());
  std::puts("");
}

void PrintNodes(const FbxNode& node, int indent) {
  for (int i = 0; i < node.GetChildCount(); ++i) {
    const FbxNode& child = *node.GetChild(i);
    std::printf("  %*s%s  %s\n", indent * 2, "", child.GetName().c_str(), KindOf(child));
    if (const auto* mesh = dynamic_cast<const FbxMesh*>(child.GetNodeAttribute())) PrintMesh(*mesh);
    PrintNodes(child, indent + 1);
  }
}

int CountCurves(const FbxAnimLayer& layer) {
  int curves = 0;
  for (const FbxAnimCurveNode* node : layer.curveNodes) {
    curves += static_cast<int>(std::count_if(node->curves.begin(), node->curves.end(),
                                             [](const FbxAnimCurve& curve) { return !curve.IsEmpty(); }));
  }
  return curves;
}

void PrintAnimation(const FbxScene& scene) {
  for (const FbxAnimStack* stack : scene.Stacks()) {
    FbxTime first, last;
    stack->GetKeySpan(first, last);
    std::printf("  stack \"%s\"%s: %.4g to %.4g seconds\n", stack->GetName().c_str(),
                stack == scene.CurrentStack() ? " (current)" : "", first.Seconds(), last.Seconds());
    for (const FbxAnimLayer* layer : stack->layers) {
      std::printf("    layer \"%s\": %d curves\n", layer->GetName().c_str(), CountCurves(*layer));
    }
  }
}

int Describe(FbxImporter& importer) {
  const auto scene = FbxScene::Create("Info");
  if (!scene || !importer.Import(*scene)) return Fail(importer.GetStatus().GetErrorString());
  PrintSettings(importer.Document(), *scene);
  PrintNodes(*scene->GetRootNode(), 0);
  for (const FbxSurfaceMaterial* material : scene->Materials()) {
    std::printf("  material \"%s\": %s, %zu textures\n", material->GetName().c_str(), material->shadingModel.c_str(),
                material->textures.size());
  }
  PrintAnimation(*scene);
  for (const std::string& line : scene->Log().Lines()) std::printf("  %s\n", line.c_str());
  return kOk;
}

int Fbx(const FbxOptions& options) {
  const auto manager = FbxManager::Create();
  if (!manager) return Fail("memory is short");
  const auto importer = FbxImporter::Create(*manager, "FBX Importer");
  if (!importer->Initialize(options.file)) return Fail(importer->GetStatus().GetErrorString());
  if (options.question == "info") return Describe(*importer);
  PrintTree(importer->Document().Records(), 0, options.depth);
  const FbxStatus& status = importer->Document().GetStatus();
  return status.IsGood() ? kOk : Fail(status.GetErrorString());
}

}  // namespace

void AddFbxCommand(CommandLine& line) {
  auto options = std::make_shared<FbxOptions>();
  line.Add("fbx", "Tell what an FBX file holds", [options] { return Fbx(*options); })
      .Choice("question", options->question, {"info", "tree"},
              "info: nodes, meshes, animation; tree: every record with its values")
      .Text("file", options->file, Given::Required, "The file (.fbx)")
      .Number("--depth", options->depth, 1, 64, "Levels of the tree to print");
}

}  // namespace app
