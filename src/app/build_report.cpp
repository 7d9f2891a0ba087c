// SPDX-License-Identifier: MIT
#include "app/build_report.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>

namespace app {

namespace {

constexpr NodeKind kCounted[] = {NodeKind::Control, NodeKind::Bone, NodeKind::Helper};

int CountOf(const BuildReport& report, NodeKind kind) { return report.counts[static_cast<int>(kind)]; }

QJsonArray ToJson(const std::vector<std::string>& texts) {
  QJsonArray array;
  for (const std::string& text : texts) array.append(QString::fromStdString(text));
  return array;
}

}  // namespace

void PrintReport(const BuildReport& report) {
  std::printf("%s \"%s\", %g units high:", report.type.c_str(), report.name.c_str(), report.height);
  const char* comma = "";
  for (NodeKind kind : kCounted) {
    std::printf("%s %d %s", comma, CountOf(report, kind), KindName(kind));
    comma = ",";
  }
  std::printf("\n");
  for (const std::string& note : report.notes) std::printf("note: %s\n", note.c_str());
  for (const std::string& point : report.unknownPoints) {
    std::printf("note: %s: its point \"%s\" was passed over, since this rig has no such point\n",
                report.templateFile.c_str(), point.c_str());
  }
  if (report.restControls >= 0) {
    std::printf("rest pose: OK, %d transforms read zero, zero and one\n", report.restControls);
  }
  for (const std::string& file : report.files) std::printf("wrote %s\n", file.c_str());
}

void PrintReportAsJson(const BuildReport& report) {
  QJsonObject json{{"type", QString::fromStdString(report.type)},
                   {"name", QString::fromStdString(report.name)},
                   {"height", static_cast<double>(report.height)},
                   {"notes", ToJson(report.notes)},
                   {"unknown_points", ToJson(report.unknownPoints)},
                   {"files", ToJson(report.files)},
                   {"panel", ToJson(report.panel)}};
  for (NodeKind kind : kCounted) json[KindName(kind)] = CountOf(report, kind);
  if (report.restControls >= 0) json["rest_pose"] = QJsonObject{{"ok", true}, {"controls", report.restControls}};
  std::fputs(QJsonDocument(json).toJson().constData(), stdout);
}

}  // namespace app
