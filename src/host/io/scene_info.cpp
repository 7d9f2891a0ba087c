// SPDX-License-Identifier: MIT
#include "host/io/scene_info.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

#include "host/core/control.h"
#include "host/core/cust_attrib.h"
#include "host/core/param_block.h"
#include "host/io/detail/object_index.h"
#include "host/io/detail/opaque.h"
#include "host/io/detail/param_io.h"

namespace corvanta {
namespace {

const char* KindOf(const INode& node) {
  const Object* object = node.GetBaseObject();
  if (node.State().boneOn) return "bone";
  if (!object) return "empty";
  switch (object->SuperClassID()) {
    case kGeomObjectSuper:
      return "geometry";
    case kShapeSuper:
      return "shape";
    case kHelperSuper:
      return "helper";
    default:
      return "other";
  }
}

int DepthOf(const INode& node) {
  int depth = 0;
  for (const INode* up = &node; !up->IsRootNode(); up = up->GetParentNode()) ++depth;
  return depth;
}

void CountNode(const INode& node, SceneInfo* info) {
  ++info->nodes;
  ++info->nodesByKind[KindOf(node)];
  info->depth = std::max(info->depth, DepthOf(node));
  info->hidden += node.IsHidden();
  info->frozen += node.IsFrozen();
  info->selected += node.Selected();
  if (node.GetLayer())
    ++info->nodesByLayer[node.GetLayer()->GetName()];
  else
    ++info->nodesOnNoLayer;
}

/// Controllers with parts show the keys of their parts; those are counted where they are.
void CountKeys(const Control& control, SceneInfo* info) {
  const int count = control.IsLeaf() ? control.NumKeys() : 0;
  if (count == 0) return;
  ++info->animatedTracks;
  info->keys += count;
  const TimeValue first = control.GetKeyTime(0), last = control.GetKeyTime(count - 1);
  const Interval range{std::min(first, last), std::max(first, last)};
  info->keyRange = info->keyRange.IsEmpty()
                       ? range
                       : Interval{std::min(info->keyRange.start, range.start), std::max(info->keyRange.end, range.end)};
}

void CountObject(ReferenceTarget& object, SceneInfo* info) {
  if (AsBlock(object) || dynamic_cast<const CustAttribContainer*>(&object)) return;
  const OpaqueObject* opaque = AsOpaque(object);
  if (opaque && opaque->state.isBlock) return;
  ++info->classes[object.GetClassName()];
  if (opaque) ++info->unknownClasses[object.GetClassName()];
  if (const Control* control = object.AsControl()) CountKeys(*control, info);
}

template <class Key>
void AddCounts(const char* title, const std::map<Key, int>& counts, std::string* out) {
  if (counts.empty()) return;
  *out += title;
  *out += '\n';
  for (const auto& [name, count] : counts) {
    std::string text;
    if constexpr (std::is_same_v<Key, WStr>)
      text = ToUtf8(name);
    else
      text = name;
    *out += "  " + text + ": " + std::to_string(count) + '\n';
  }
}

double Frames(const TimeConfig& time, TimeValue t) { return static_cast<double>(t) * time.frameRate / kTicksPerSecond; }

QString Text(const WStr& text) { return QString::fromStdString(ToUtf8(text)); }
QString Text(const std::string& text) { return QString::fromStdString(text); }

template <class Key>
QJsonObject Counts(const std::map<Key, int>& counts) {
  QJsonObject out;
  for (const auto& [name, count] : counts) out[Text(name)] = count;
  return out;
}

}  // namespace

SceneInfo CollectSceneInfo(const Scene& scene) {
  SceneInfo info;
  info.time = scene.time;
  for (const Ref<SceneLayer>& layer : scene.Layers()) info.nodesByLayer[layer->GetName()];
  for (const Ref<INode>& node : scene.Nodes()) CountNode(*node, &info);
  const ObjectIndex index(scene);
  for (ReferenceTarget* object : index.Objects()) CountObject(*object, &info);
  return info;
}

std::string SceneInfoText(const SceneInfo& info) {
  const auto frame = [&](TimeValue t) { return Format(L"%g", Frames(info.time, t)); };
  std::string out = ToUtf8(Format(L"Nodes: %d (depth %d, %d hidden, %d frozen, %d selected)\n", info.nodes, info.depth,
                                  info.hidden, info.frozen, info.selected));
  AddCounts("By kind:", info.nodesByKind, &out);
  AddCounts("By layer:", info.nodesByLayer, &out);
  AddCounts("Classes:", info.classes, &out);
  AddCounts("Classes that this program does not know (kept as they are):", info.unknownClasses, &out);
  out += ToUtf8(Format(L"Time: frame %s of %s to %s at %d frames a second\n", frame(info.time.time).c_str(),
                       frame(info.time.range.start).c_str(), frame(info.time.range.end).c_str(), info.time.frameRate));
  out += ToUtf8(Format(L"Keys: %lld on %d tracks", info.keys, info.animatedTracks));
  if (!info.keyRange.IsEmpty())
    out += ToUtf8(Format(L", frames %s to %s", frame(info.keyRange.start).c_str(), frame(info.keyRange.end).c_str()));
  return out + '\n';
}

std::string SceneInfoJson(const SceneInfo& info) {
  QJsonObject out{
      {"nodes", info.nodes},
      {"depth", info.depth},
      {"hidden", info.hidden},
      {"frozen", info.frozen},
      {"selected", info.selected},
      {"nodesByKind", Counts(info.nodesByKind)},
      {"nodesByLayer", Counts(info.nodesByLayer)},
      {"nodesOnNoLayer", info.nodesOnNoLayer},
      {"classes", Counts(info.classes)},
      {"unknownClasses", Counts(info.unknownClasses)},
      {"frameRate", info.time.frameRate},
      {"firstFrame", Frames(info.time, info.time.range.start)},
      {"lastFrame", Frames(info.time, info.time.range.end)},
      {"frame", Frames(info.time, info.time.time)},
      {"animatedTracks", info.animatedTracks},
      {"keys", static_cast<qint64>(info.keys)},
  };
  if (!info.keyRange.IsEmpty()) {
    out["firstKeyFrame"] = Frames(info.time, info.keyRange.start);
    out["lastKeyFrame"] = Frames(info.time, info.keyRange.end);
  }
  return QJsonDocument(out).toJson(QJsonDocument::Indented).toStdString();
}

}  // namespace corvanta
