// SPDX-License-Identifier: MIT
#include "plugin/scene/scene_text_test.h"

#include <algorithm>
#include <cstdio>
#include <unordered_map>

#include "host/core/cust_attrib.h"
#include "host/core/param_block.h"
#include "host/io/scene_file.h"
#include "host/scene/scene.h"

namespace tavrilon::scene_tests {

using namespace corvanta;

namespace {

std::string Hex(const void* data, size_t size) {
  std::string text;
  char digits[3];
  for (size_t i = 0; i < size; ++i) {
    std::snprintf(digits, sizeof digits, "%02x", static_cast<const uint8_t*>(data)[i]);
    text += digits;
  }
  return text;
}

class Describer {
 public:
  std::vector<std::string> Run(const Scene& scene) {
    for (const Ref<SceneLayer>& layer : scene.Layers())
      Line("layer " + ToUtf8(layer->GetName()) + " parent " + NameOf(layer->GetParent()) + " flags " +
           std::to_string(layer->GetState().hidden * 2 + layer->GetState().frozen));
    for (const Ref<INode>& node : scene.Nodes()) Node(*node);
    const TrackViewNode& track = *scene.GetTrackViewRootNode();
    for (int i = 0; i < track.NumItems(); ++i) {
      Line("track item " + ToUtf8(track.GetName(i)));
      Object(track.GetItem(i), "track item " + std::to_string(i));
    }
    std::string selection = "selection";
    for (const INode* node : scene.Selection()) selection += " " + std::to_string(node->GetHandle());
    Line(selection);
    return std::move(lines_);
  }

 private:
  void Line(std::string line) { lines_.push_back(std::move(line)); }
  static std::string NameOf(const SceneLayer* layer) { return layer ? ToUtf8(layer->GetName()) : "-"; }

  std::string Told(ReferenceTarget* target) {
    if (!target) return "null";
    if (const INode* node = target->AsNode()) return "node " + std::to_string(node->GetHandle());
    const auto found = paths_.find(target);
    return found == paths_.end() ? ToUtf8(target->GetClassName()) : found->second;
  }

  void Node(INode& node) {
    const NodeState& s = node.State();
    const std::string path = "node " + std::to_string(node.GetHandle());
    std::string props;
    for (const auto& [key, value] : s.userProps) props += " " + ToUtf8(key) + "=" + ToUtf8(value);
    Line(path + " \"" + ToUtf8(s.name) + "\" flags " +
         std::to_string(s.hidden + 2 * s.frozen + 4 * s.renderable + 8 * s.boneOn + 16 * s.boneFreeze +
                        32 * s.boneAutoAlign) +
         " wire " + std::to_string(s.wireColour) + " locks " + std::to_string(s.locks) + " layer " +
         NameOf(s.layer.Get()) + props);
    Line(path + " offset " + Hex(&s.offsetPos, sizeof s.offsetPos) + Hex(&s.offsetRot, sizeof s.offsetRot) +
         Hex(&s.offsetScale, sizeof s.offsetScale));
    std::string children = path + " parent " + Told(node.GetParentNode()) + " children";
    for (const INode* child : node.Children()) children += " " + std::to_string(child->GetHandle());
    Line(children);
    References(node, path);
  }

  void References(ReferenceTarget& maker, const std::string& path) {
    Object(maker.GetCustAttribContainer(), path + "/attributes");
    for (int i = 0; i < maker.NumRefs(); ++i) Object(maker.GetReference(i), path + "/" + std::to_string(i));
    for (int i = 0; i < maker.NumIndirectRefs(); ++i)
      Line(path + " watches " + std::to_string(i) + " " + Told(maker.GetIndirectRef(i)));
  }

  void Object(ReferenceTarget* object, const std::string& path) {
    if (!object) return;
    if (object->AsNode() || paths_.count(object)) {
      Line(path + " -> " + Told(object));
      return;
    }
    const std::string name = path + ":" + ToUtf8(object->GetClassName());
    paths_[object] = name;
    ISave save;
    object->Save(save);
    Line(name + " data " + Hex(save.Bytes().data(), save.Bytes().size()));
    if (const auto* block = dynamic_cast<const ParamBlock2*>(object)) Values(*block, name);
    References(*object, name);
  }

  void Values(const ParamBlock2& block, const std::string& name) {
    for (const ParamRow& row : block.GetDesc().rows) {
      if (row.Is(kTransient)) continue;
      if (row.Is(kTab)) Line(name + "." + ToUtf8(row.name) + " count " + std::to_string(block.Count(row.id)));
      for (int tab = 0; tab < block.Count(row.id); ++tab)
        Line(name + "." + ToUtf8(row.name) + "(" + std::to_string(row.id) + ")[" + std::to_string(tab) +
             "] = " + Value(block.GetConstant(row.id, tab)));
    }
  }

  std::string Value(const FPValue& value) {
    if (value.As<Ref<ReferenceTarget>>()) return Told(value.ToTarget());
    if (const auto* text = value.As<WStr>()) return ToUtf8(*text);
    if (const auto* m = value.As<Matrix3>()) return Hex(m, sizeof *m);
    if (value.As<Point3>() || value.As<Colour>()) {
      const Point3 p = value.ToPoint3();
      return Hex(&p, sizeof p);
    }
    if (const auto* p = value.As<Point2>()) return Hex(p, sizeof *p);
    const float f = value.ToFloat();
    return std::to_string(f) + " " + Hex(&f, sizeof f);
  }

  std::vector<std::string> lines_;
  std::unordered_map<const ReferenceTarget*, std::string> paths_;
};

}  // namespace

std::vector<std::string> DescribeScene() { return Describer().Run(GetScene()); }

std::string FirstDifference(const Bytes& wanted) {
  const std::vector<std::string> present = DescribeScene();
  if (const WStr error = LoadSceneFromBytes(wanted); !error.empty()) return ToUtf8(error);
  const std::vector<std::string> other = DescribeScene();
  std::string text;
  int shown = 0;
  for (size_t i = 0; i < std::max(present.size(), other.size()) && shown < 4; ++i) {
    const std::string a = i < present.size() ? present[i] : "(nothing)", b = i < other.size() ? other[i] : "(nothing)";
    if (a == b) continue;
    text += "  is     " + a + "\n  wanted " + b + "\n";
    ++shown;
  }
  return text;
}

}  // namespace tavrilon::scene_tests
