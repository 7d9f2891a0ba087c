// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/object_table.h"

#include <algorithm>

namespace tavrilon::fbx {

namespace {

struct KindRow {
  std::string_view record, subclass;  // an empty sub-class stands for any
  ObjectKind kind;
};
constexpr KindRow kKinds[] = {
    {"Model", "", ObjectKind::Node},
    {"NodeAttribute", "", ObjectKind::Attribute},
    {"Geometry", "Mesh", ObjectKind::Mesh},
    {"Geometry", "Shape", ObjectKind::Shape},
    {"Geometry", "", ObjectKind::Attribute},
    {"Deformer", "Skin", ObjectKind::Skin},
    {"Deformer", "Cluster", ObjectKind::Cluster},
    {"Deformer", "BlendShape", ObjectKind::BlendShape},
    {"Deformer", "BlendShapeChannel", ObjectKind::Channel},
    {"Material", "", ObjectKind::Material},
    {"Texture", "", ObjectKind::Texture},
    {"LayeredTexture", "", ObjectKind::LayeredTexture},
    {"Pose", "", ObjectKind::Pose},
    {"AnimationStack", "", ObjectKind::Stack},
    {"AnimationLayer", "", ObjectKind::Layer},
    {"AnimationCurveNode", "", ObjectKind::CurveNode},
    {"AnimationCurve", "", ObjectKind::Curve},
    // A file name that its texture has as well, unless the picture itself is in there: see SceneReader.
    {"Video", "", ObjectKind::LeftOut},
    {"SceneInfo", "", ObjectKind::LeftOut},
    {"GlobalSettings", "", ObjectKind::LeftOut},
};

}  // namespace

ObjectKind KindOf(RecordView record) {
  for (const KindRow& row : kKinds) {
    if (row.record == record.Name() && (row.subclass.empty() || row.subclass == record.Text(2))) return row.kind;
  }
  return ObjectKind::Unknown;
}

void ObjectTable::Read(const FbxDocument& document, ReadLog& log) {
  entries_.clear();
  links_.clear();
  byId_.clear();
  ReadObjects(document, log);
  ReadLinks(document, log);
}

void ObjectTable::ReadObjects(const FbxDocument& document, ReadLog& log) {
  entries_.emplace_back().kind = ObjectKind::Root;
  byId_.emplace_back(0, 0);
  for (const RecordView record : document.Find("Objects").Children()) {
    // Records without a number are the settings of old files.
    if (record.NumProperties() == 0 || !record.Property(0).IsNumber()) continue;
    ObjectEntry& entry = entries_.emplace_back();
    entry.id = record.Int(0);
    entry.record = record;
    entry.kind = KindOf(record);
    byId_.emplace_back(entry.id, static_cast<uint32_t>(entries_.size() - 1));
  }
  std::sort(byId_.begin(), byId_.end());
  for (size_t i = 1; i < byId_.size(); ++i) {
    if (byId_[i].first != byId_[i - 1].first) continue;
    ObjectEntry& second = entries_[byId_[i].second];
    log.Note("Of objects with the same number only the first is linked", ObjectName(second.record));
  }
}

uint32_t ObjectTable::Find(int64_t id) const {
  const auto found = std::lower_bound(byId_.begin(), byId_.end(), std::pair<int64_t, uint32_t>(id, 0));
  return found != byId_.end() && found->first == id ? found->second : ObjectEntry::kNone;
}

void ObjectTable::ReadLinks(const FbxDocument& document, ReadLog& log) {
  for (const RecordView record : document.Find("Connections").Children()) {
    const std::string_view kind = record.Text(0);
    if (kind != "OO" && kind != "OP") {
      log.Note("Links from properties are left out", std::string(record.Text(3)));
      continue;
    }
    const ObjectLink link{Find(record.Int(1)), Find(record.Int(2)), kind == "OP" ? record.Text(3) : ""};
    if (link.source == ObjectEntry::kNone || link.destination == ObjectEntry::kNone) {
      const int64_t missing = record.Int(link.source == ObjectEntry::kNone ? 1 : 2);
      log.Note("Links with objects that are not in the file", std::to_string(missing));
      continue;
    }
    links_.push_back(link);
  }
}

}  // namespace tavrilon::fbx
