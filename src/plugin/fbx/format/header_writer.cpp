// SPDX-License-Identifier: MIT
// What stands in front of the objects: header, global settings, documents, and the counts and defaults of all types.
#include "plugin/fbx/format/scene_writer.h"
#include "plugin/fbx/format/transform_rows.h"

namespace tavrilon::fbx {

namespace {

constexpr std::string_view kCreator = "Tavrilon";
constexpr int64_t kDocumentId = 1;

/// Every file has the same date, the one that its identity and footer belong to.
struct DateRow {
  std::string_view name;
  int32_t value;
};
constexpr DateRow kDate[] = {{"Version", 1000}, {"Year", 1970}, {"Month", 1},  {"Day", 1},
                             {"Hour", 10},      {"Minute", 0},  {"Second", 0}, {"Millisecond", 0}};

void WriteSceneInfo(FbxDocumentWriter& out) {
  out.Begin("SceneInfo");
  out.ObjectName("GlobalInfo", "SceneInfo");
  out.Text("UserData");
  out.Leaf("Type", "UserData");
  out.Leaf("Version", 100);
  out.Begin("MetaData");
  out.Leaf("Version", 100);
  for (const std::string_view name : {"Title", "Subject", "Author", "Keywords", "Revision", "Comment"}) {
    out.Leaf(name, "");
  }
  out.End();
  out.Begin("Properties70");
  out.Property("Original", "Compound", "", "");
  out.PropertyText("Original|ApplicationName", "KString", "", "", kCreator);
  out.Property("LastSaved", "Compound", "", "");
  out.PropertyText("LastSaved|ApplicationName", "KString", "", "", kCreator);
  out.End();
  out.End();
}

}  // namespace

void SceneWriter::WriteHeader() {
  out_.Begin("FBXHeaderExtension");
  out_.Leaf("FBXHeaderVersion", 1003);  // from 1004 on readers look for another time base
  out_.Leaf("FBXVersion", out_.Version());
  out_.Leaf("EncryptionType", 0);
  out_.Begin("CreationTimeStamp");
  for (const DateRow& row : kDate) out_.Leaf(row.name, row.value);
  out_.End();
  out_.Leaf("Creator", kCreator);
  WriteSceneInfo(out_);
  out_.End();
  out_.Begin("FileId");
  out_.Raw(kFileId);
  out_.End();
  out_.Leaf("CreationTime", kCreationTime);
  out_.Leaf("Creator", kCreator);
}

void SceneWriter::WriteGlobalSettings() {
  const FbxGlobalSettings& settings = scene_.GetGlobalSettings();
  const FbxAxisSystem& axes = settings.GetAxisSystem();
  const double unit = settings.GetSystemUnit().centimetres * settings.GetSystemUnit().multiplier;
  const std::pair<std::string_view, int> axisRows[] = {
      {"UpAxis", axes.up},         {"UpAxisSign", axes.upSign},
      {"FrontAxis", axes.front},   {"FrontAxisSign", axes.frontSign},
      {"CoordAxis", axes.coord},   {"CoordAxisSign", axes.coordSign},
      {"OriginalUpAxis", axes.up}, {"OriginalUpAxisSign", axes.upSign},
  };
  out_.Begin("GlobalSettings");
  out_.Leaf("Version", 1000);
  out_.Begin("Properties70");
  for (const auto& [name, value] : axisRows) out_.PropertyInt(name, "int", "Integer", "", value);
  out_.PropertyDouble("UnitScaleFactor", "double", "Number", "", {unit});
  out_.PropertyDouble("OriginalUnitScaleFactor", "double", "Number", "", {unit});
  out_.PropertyDouble("AmbientColor", "ColorRGB", "Color", "", {0, 0, 0});
  out_.PropertyText("DefaultCamera", "KString", "", "", "Producer Perspective");
  out_.PropertyInt("TimeMode", "enum", "", "", static_cast<int>(settings.GetTimeMode()));
  out_.PropertyTime("TimeSpanStart", "KTime", "Time", "", settings.spanStart.ticks);
  out_.PropertyTime("TimeSpanStop", "KTime", "Time", "", settings.spanStop.ticks);
  out_.PropertyDouble("CustomFrameRate", "double", "Number", "", {settings.GetCustomFrameRate()});
  out_.End();
  out_.End();
}

void SceneWriter::WriteDocuments() {
  out_.Begin("Documents");
  out_.Leaf("Count", 1);
  out_.Begin("Document");
  out_.Long(kDocumentId);
  out_.Text(scene_.GetName());
  out_.Text("Scene");
  out_.Begin("Properties70");
  out_.Property("SourceObject", "object", "", "");
  const FbxAnimStack* current = plan_.stacks.empty() ? nullptr : scene_.CurrentStack();
  out_.PropertyText("ActiveAnimStackName", "KString", "", "", current ? std::string_view(current->GetName()) : "");
  out_.End();
  out_.Leaf("RootNode", int64_t{0});
  out_.End();
  out_.End();
  out_.Begin("References");
  out_.End(true);
}

void SceneWriter::WriteDefinitions() {
  const std::pair<std::string_view, size_t> counts[] = {
      {"GlobalSettings", 1},
      {"NodeAttribute", plan_.attributes.size()},
      {"Geometry", plan_.meshes.size() + plan_.numShapes},
      {"Model", plan_.models.size()},
      {"Pose", plan_.poses.size()},
      {"Material", plan_.materials.size()},
      {"Deformer", plan_.skins.size() + plan_.numClusters + plan_.blendShapes.size() + plan_.channels.size()},
      {"Texture", plan_.textures.size()},
      {"Video", plan_.textures.size()},
      {"AnimationStack", plan_.stacks.size()},
      {"AnimationLayer", plan_.layers.size()},
      {"AnimationCurveNode", plan_.curveNodes.size()},
      {"AnimationCurve", plan_.numCurves},
  };
  size_t total = 0;
  for (const auto& [name, count] : counts) total += count;
  out_.Begin("Definitions");
  out_.Leaf("Version", 100);
  out_.Leaf("Count", static_cast<int32_t>(total));
  for (const auto& [name, count] : counts) {
    if (count == 0) continue;
    out_.Begin("ObjectType");
    out_.Text(name);
    out_.Leaf("Count", static_cast<int32_t>(count));
    if (name == "Model") WriteTransformTemplate(out_);
    out_.End();
  }
  out_.End();
}

}  // namespace tavrilon::fbx
