// SPDX-License-Identifier: MIT
// A scene as text, every number to its last bit, so that two scenes are compared in all they hold and the first
// difference is a line to read. Objects that several others share are numbered where they are met first.
#pragma once

#include <map>
#include <sstream>
#include <string>

#include "plugin/fbx/format/key_flags.h"
#include "plugin/fbx/format/scene.h"

namespace tavrilon::fbx {

class SceneListing {
 public:
  static std::string Of(const FbxScene& scene) {
    SceneListing listing;
    listing.Scene(scene);
    return listing.out_.str();
  }

 private:
  SceneListing() { out_.precision(17); }

  template <class... T>
  void Line(const T&... parts) {
    ((Put(parts), out_ << ' '), ...);
    out_ << '\n';
  }
  void Put(const char* text) { out_ << text; }
  void Put(const std::string& text) { out_ << '"' << text << '"'; }
  void Put(double value) { out_ << value; }
  void Put(float value) { out_ << value; }
  void Put(int value) { out_ << value; }
  void Put(int64_t value) { out_ << value; }
  void Put(bool value) { out_ << value; }
  void Put(FbxTime time) { out_ << time.ticks; }
  void Put(const Vector2& v) { out_ << v.x << ',' << v.y; }
  void Put(const Vector3& v) { out_ << v.x << ',' << v.y << ',' << v.z; }
  void Put(const Affine& m) {
    for (const Vector3& row : m.row) Put(row), out_ << ';';
  }
  template <class T>
  void Put(const std::vector<T>& values) {
    out_ << values.size() << ':';
    for (const T& value : values) out_ << ' ', Put(value);
  }
  template <class T>
  void Put(const LayerElement<T>& e) {
    if (e.IsEmpty()) return Put("none");
    out_ << '"' << e.name << "\" " << static_cast<int>(e.mapping) << " values ";
    Put(e.values);
    out_ << " indices ";
    Put(e.indices);
  }
  void Put(const FbxObject* object) { out_ << '#' << numbers_.try_emplace(object, numbers_.size()).first->second; }

  /// Numbers `object`; true when it was not listed before.
  bool Meet(const char* kind, const FbxObject* object) {
    const bool isNew = numbers_.count(object) == 0;
    Line(kind, object, object->GetName());
    return isNew;
  }

  void Scene(const FbxScene& scene) {
    const FbxGlobalSettings& settings = scene.GetGlobalSettings();
    const FbxAxisSystem& a = settings.GetAxisSystem();
    Line("axes", a.up, a.upSign, a.front, a.frontSign, a.coord, a.coordSign);
    Line("unit", settings.GetSystemUnit().centimetres * settings.GetSystemUnit().multiplier);
    Line("time", static_cast<int>(settings.GetTimeMode()), settings.GetCustomFrameRate(), settings.spanStart,
         settings.spanStop);
    for (const FbxNode* node : scene.Nodes()) Meet("is", node);
    Children(scene.GetRootNode());
    for (const FbxNode* node : scene.Nodes()) Node(*node);
    for (const FbxSurfaceMaterial* material : scene.Materials()) Material(*material);
    for (const FbxPose* pose : scene.Poses()) {
      Line("pose", pose->GetName(), pose->isBindPose);
      for (const FbxPose::Entry& entry : pose->entries) Line(static_cast<const FbxObject*>(entry.node), entry.matrix);
    }
    for (const FbxAnimStack* stack : scene.Stacks()) Stack(*stack);
    if (scene.CurrentStack()) Line("current", scene.CurrentStack()->GetName());
  }

  void Children(const FbxNode* node) {
    out_ << "children";
    for (int i = 0; i < node->GetChildCount(); ++i) out_ << ' ', Put(static_cast<const FbxObject*>(node->GetChild(i)));
    out_ << '\n';
  }

  void Node(const FbxNode& node) {
    const NodeTransform& t = node.transform;
    Meet("node", &node);
    Line("local", t.translation, t.rotation, t.scaling, static_cast<int>(t.order), static_cast<int>(t.inherit));
    Line("pivots", t.rotationOffset, t.rotationPivot, t.scalingOffset, t.scalingPivot);
    Line("turns", t.rotationActive, t.preRotation, t.postRotation);
    Line("geometric", t.geometricTranslation, t.geometricRotation, t.geometricScaling);
    Line("visible", node.visible);
    for (const auto& [name, text] : node.userProperties) Line("user", name, text);
    for (const FbxSurfaceMaterial* material : node.materials) Meet("material", material);
    if (node.GetNodeAttribute()) Attribute(*node.GetNodeAttribute());
    Children(&node);
  }

  void Attribute(const FbxNodeAttribute& attribute) {
    if (!Meet("attribute", &attribute)) return;
    Line("kind", static_cast<int>(attribute.Kind()));
    if (attribute.colour) Line("colour", *attribute.colour);
    if (const auto* null = dynamic_cast<const FbxNull*>(&attribute)) Line("size", null->size);
    if (const auto* bone = dynamic_cast<const FbxSkeleton*>(&attribute)) {
      Line("bone", static_cast<int>(bone->type), bone->size, bone->limbLength);
    }
    if (const auto* other = dynamic_cast<const FbxOtherAttribute*>(&attribute)) Line("type", other->TypeName());
    if (const auto* mesh = dynamic_cast<const FbxMesh*>(&attribute)) Mesh(*mesh);
  }

  void Mesh(const FbxMesh& mesh) {
    Line("points", mesh.controlPoints);
    Line("polygons", mesh.polygonStarts, mesh.polygonVertices);
    Line("edges", mesh.edges);
    Line("subdivision", mesh.smoothness, mesh.previewLevels, mesh.renderLevels);
    Line("normals", mesh.normals);
    Line("smoothing", mesh.smoothing);
    Line("materials", mesh.materials);
    for (const auto& uv : mesh.uvs) Line("uv", uv);
    for (const FbxSkin* skin : mesh.skins) {
      Line("skin", skin->GetName());
      for (const FbxCluster& c : skin->clusters) {
        out_ << "cluster \"" << c.name << "\" link ";
        if (c.link) Put(static_cast<const FbxObject*>(c.link));
        out_ << ' ';
        Line(c.indices, c.weights, c.transform, c.transformLink);
      }
    }
    for (const FbxBlendShape* blend : mesh.blendShapes) {
      Line("blend", blend->GetName());
      for (const FbxBlendShapeChannel* channel : blend->channels) {
        Meet("channel", channel);
        Line(channel->deformPercent, channel->fullWeights);
        for (const FbxShape& shape : channel->shapes) Shape(shape);
      }
    }
  }

  // No normals and normals of zero are one thing: files always have them.
  void Shape(const FbxShape& s) {
    Line("shape", s.name, s.indices, s.offsets, s.normals.empty() ? std::vector<Vector3>(s.offsets.size()) : s.normals);
  }

  void Material(const FbxSurfaceMaterial& m) {
    Line("material", m.GetName(), m.shadingModel, m.diffuse, m.diffuseFactor, m.emissive, m.emissiveFactor);
    Line(m.specular, m.specularFactor, m.shininess, m.transparencyFactor, m.transparentColour);
    for (const auto& link : m.textures) {
      Meet("texture", link.texture);
      Line(link.property, link.texture->fileName, link.texture->relativeFileName, link.texture->uvSet);
    }
  }

  void Stack(const FbxAnimStack& stack) {
    Line("stack", stack.GetName(), stack.localStart, stack.localStop, stack.referenceStart, stack.referenceStop);
    for (const FbxAnimLayer* layer : stack.layers) {
      Line("layer", layer->GetName(), layer->weight, layer->mute, layer->solo, static_cast<int>(layer->blend),
           layer->rotationAccumulation, layer->scaleAccumulation);
      Curve(layer->weightCurve);
      for (const FbxAnimCurveNode* node : layer->curveNodes) {
        Line("curves", static_cast<const FbxObject*>(node->target), node->property, node->defaults[0],
             node->defaults[1], node->defaults[2]);
        for (const FbxAnimCurve& curve : node->curves) Curve(curve);
      }
    }
  }

  // One shape for all keys and the same shape for each are one thing; only cubic keys have tangents; weights are as
  // fine as files have them.
  void Curve(const FbxAnimCurve& curve) {
    for (size_t i = 0; i < curve.times.size(); ++i) {
      const KeyShape& s = curve.ShapeOf(i);
      Line(curve.times[i], curve.values[i], static_cast<int>(s.interpolation));
      if (s.interpolation != Interpolation::Cubic) continue;
      Line(s.rightSlope, s.nextLeftSlope, static_cast<int>(PackedWeight(s.rightWeight)),
           static_cast<int>(PackedWeight(s.nextLeftWeight)));
    }
  }

  std::ostringstream out_;
  std::map<const FbxObject*, size_t> numbers_;
};

/// The first line in which the two differ, of both; empty when they are equal.
inline std::string FirstDifference(const FbxScene& a, const FbxScene& b) {
  std::istringstream first(SceneListing::Of(a)), second(SceneListing::Of(b));
  std::string x, y, before;
  while (true) {
    const bool moreFirst = !!std::getline(first, x), moreSecond = !!std::getline(second, y);
    if (!moreFirst && !moreSecond) return {};
    if (moreFirst != moreSecond || x != y) {
      return "behind " + before + "\n" + (moreFirst ? x : "the end") + "\n" + (moreSecond ? y : "the end");
    }
    before = x.substr(0, 200);
  }
}

}  // namespace tavrilon::fbx
