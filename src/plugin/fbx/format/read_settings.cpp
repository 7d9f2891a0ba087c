// SPDX-License-Identifier: MIT
// What stands once in a file: axes, unit, frame rate, ticks, the current stack.
#include "plugin/fbx/format/read_objects.h"

namespace tavrilon::fbx {

namespace {

struct SettingValues {
  FbxAxisSystem axes;
  double unit = 1;
  int timeMode = 0;
  double customRate = 0;
  int64_t spanStart = 0, spanStop = 0;
};

const PropertyRow<SettingValues> kSettingRows[] = {
    {"UpAxis", [](SettingValues& v, RecordView p) { v.axes.up = IntOf(p); }},
    {"UpAxisSign", [](SettingValues& v, RecordView p) { v.axes.upSign = IntOf(p); }},
    {"FrontAxis", [](SettingValues& v, RecordView p) { v.axes.front = IntOf(p); }},
    {"FrontAxisSign", [](SettingValues& v, RecordView p) { v.axes.frontSign = IntOf(p); }},
    {"CoordAxis", [](SettingValues& v, RecordView p) { v.axes.coord = IntOf(p); }},
    {"CoordAxisSign", [](SettingValues& v, RecordView p) { v.axes.coordSign = IntOf(p); }},
    {"UnitScaleFactor", [](SettingValues& v, RecordView p) { v.unit = NumberOf(p); }},
    {"TimeMode", [](SettingValues& v, RecordView p) { v.timeMode = IntOf(p); }},
    {"CustomFrameRate", [](SettingValues& v, RecordView p) { v.customRate = NumberOf(p); }},
    {"TimeSpanStart", [](SettingValues& v, RecordView p) { v.spanStart = p.Int(kFirstValue); }},
    {"TimeSpanStop", [](SettingValues& v, RecordView p) { v.spanStop = p.Int(kFirstValue); }},
};

}  // namespace

void ReadGlobalSettings(ReadContext& context, FbxGlobalSettings& settings) {
  SettingValues values;
  ReadProperties(context.document.Find("GlobalSettings"), kSettingRows, values);
  if (!(values.unit > 0)) {
    context.log.Note("The unit is no length; centimetres are taken", std::to_string(values.unit));
    values.unit = 1;
  }
  if (values.timeMode < 0 || values.timeMode > static_cast<int>(TimeMode::Frames11988)) {
    context.log.Note("The time mode is not known", std::to_string(values.timeMode));
    values.timeMode = 0;
  }
  settings.SetAxisSystem(values.axes);
  settings.SetSystemUnit({values.unit, 1});
  settings.SetTimeMode(static_cast<TimeMode>(values.timeMode));
  settings.SetCustomFrameRate(values.customRate > 0 ? values.customRate : 0);
  settings.spanStart = context.TimeOf(values.spanStart);
  settings.spanStop = context.TimeOf(values.spanStop);
}

bool HasCoarseTicks(const FbxDocument& document) {
  constexpr int kFirstHeaderVersion = 1004;
  // 127 stands for the usual ticks, 0 for the coarse ones.
  constexpr int kCoarse = 0, kUsual = 127;
  const RecordView header = document.Find("FBXHeaderExtension");
  if (header.Find("FBXHeaderVersion").Int(0) < kFirstHeaderVersion) return false;
  const RecordView inFlags = header.Find("OtherFlags").Find("TCDefinition");
  const RecordView definition = inFlags ? inFlags : header.Find("TCDefinition");
  return definition && definition.Int(0, kUsual) == kCoarse;
}

std::string CurrentStackName(const FbxDocument& document) {
  const std::string_view current = document.Find("Takes").Find("Current").Text(0);
  if (!current.empty()) return std::string(current);
  for (const RecordView row : document.Find("Documents").Find("Document").Find("Properties70").Children()) {
    if (row.Text(0) == "ActiveAnimStackName") return TextOf(row);
  }
  return {};
}

}  // namespace tavrilon::fbx
