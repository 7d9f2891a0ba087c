// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/scene_check.h"

#include <algorithm>

#include "plugin/fbx/format/top_turn.h"

namespace tavrilon::fbx {

namespace {

bool AllFinite(const std::vector<Vector3>& values) {
  return std::all_of(values.begin(), values.end(), [](const Vector3& v) { return IsFinite(v); });
}
bool AllFinite(const std::vector<Vector2>& values) {
  return std::all_of(values.begin(), values.end(), [](const Vector2& v) { return std::isfinite(v.x + v.y); });
}
bool AllFinite(const std::vector<double>& values) {
  return std::all_of(values.begin(), values.end(), [](double v) { return std::isfinite(v); });
}
bool AllFinite(const std::vector<int>&) { return true; }

/// Is every index from `low` on and below `count`?
bool AllWithin(const std::vector<int>& indices, int low, size_t count) {
  return std::all_of(indices.begin(), indices.end(),
                     [low, count](int i) { return i >= low && i < static_cast<int64_t>(count); });
}

std::string Named(const char* kind, const std::string& name) { return std::string(kind) + " '" + name + "': "; }

/// Every check of one scene; the status keeps the first fault.
class SceneCheck {
 public:
  SceneCheck(const FbxScene& scene, FbxStatus& status) : scene_(scene), status_(status) {}
  bool Run();

 private:
  bool Name(const std::string& name);
  bool Here(const FbxObject* object, const std::string& who);
  bool Check(const FbxObject& object);
  bool Check(const FbxNode& node);
  bool Check(const FbxMesh& mesh);
  bool Check(const FbxSkin& skin, const FbxMesh& mesh);
  bool Check(const FbxBlendShape& blend, const FbxMesh& mesh);
  bool Check(const FbxBlendShapeChannel& channel, const FbxMesh& mesh);
  bool Check(const FbxSurfaceMaterial& material);
  bool Check(const FbxPose& pose);
  bool Check(const FbxAnimStack& stack);
  bool Check(const FbxAnimLayer& layer);
  bool Check(const FbxAnimCurve& curve, const std::string& who);
  bool Polygons(const FbxMesh& mesh, const std::string& who);
  template <class T>
  bool Layer(const LayerElement<T>& element, const FbxMesh& mesh, const std::string& what);

  const FbxScene& scene_;
  FbxStatus& status_;
};

bool SceneCheck::Run() {
  const TopTurn turn(scene_.topConversion);
  if (!turn.IsNone() && !turn.CanBeWritten()) {
    return status_.Fail("the scene was mirrored when its axes were converted, which files cannot say");
  }
  for (const std::unique_ptr<FbxObject>& object : scene_.Objects()) {
    if (!Name(object->GetName()) || !Check(*object)) return false;
  }
  return true;
}

bool SceneCheck::Name(const std::string& name) {
  if (name.find('\0') == std::string::npos) return true;
  return status_.Fail("the name '" + std::string(name.c_str()) + "' goes on behind a zero byte");
}

bool SceneCheck::Here(const FbxObject* object, const std::string& who) {
  if (!object) return status_.Fail(who + "a link leads nowhere");
  if (&object->GetScene() == &scene_) return true;
  return status_.Fail(who + "'" + object->GetName() + "' belongs to another scene");
}

bool SceneCheck::Check(const FbxObject& object) {
  if (const auto* node = dynamic_cast<const FbxNode*>(&object)) return Check(*node);
  if (const auto* mesh = dynamic_cast<const FbxMesh*>(&object)) return Check(*mesh);
  if (const auto* material = dynamic_cast<const FbxSurfaceMaterial*>(&object)) return Check(*material);
  if (const auto* pose = dynamic_cast<const FbxPose*>(&object)) return Check(*pose);
  if (const auto* stack = dynamic_cast<const FbxAnimStack*>(&object)) return Check(*stack);
  if (const auto* layer = dynamic_cast<const FbxAnimLayer*>(&object)) return Check(*layer);
  return true;
}

bool SceneCheck::Check(const FbxNode& node) {
  const std::string who = Named("node", node.GetName());
  const NodeTransform& t = node.transform;
  for (const Vector3& v :
       {t.translation, t.rotation, t.scaling, t.rotationOffset, t.rotationPivot, t.scalingOffset, t.scalingPivot,
        t.preRotation, t.postRotation, t.geometricTranslation, t.geometricRotation, t.geometricScaling}) {
    if (!IsFinite(v)) return status_.Fail(who + "its transform is not finite");
  }
  if (node.GetNodeAttribute() && !Here(node.GetNodeAttribute(), who)) return false;
  return std::all_of(node.materials.begin(), node.materials.end(),
                     [&](const FbxSurfaceMaterial* material) { return Here(material, who); });
}

bool SceneCheck::Check(const FbxMesh& mesh) {
  const std::string who = Named("mesh", mesh.GetName());
  if (!AllFinite(mesh.controlPoints)) return status_.Fail(who + "a point is not finite");
  if (!Polygons(mesh, who)) return false;
  if (!Layer(mesh.normals, mesh, who + "the normals") || !Layer(mesh.smoothing, mesh, who + "the smoothing") ||
      !Layer(mesh.materials, mesh, who + "the materials")) {
    return false;
  }
  for (const LayerElement<Vector2>& uv : mesh.uvs) {
    if (!Layer(uv, mesh, who + "the UV set '" + uv.name + "'")) return false;
  }
  for (const FbxSkin* skin : mesh.skins) {
    if (!Here(skin, who) || !Check(*skin, mesh)) return false;
  }
  for (const FbxBlendShape* blend : mesh.blendShapes) {
    if (!Here(blend, who) || !Check(*blend, mesh)) return false;
  }
  return true;
}

bool SceneCheck::Polygons(const FbxMesh& mesh, const std::string& who) {
  const std::vector<int>& starts = mesh.polygonStarts;
  if (starts.empty() || starts.front() != 0 || starts.back() != static_cast<int64_t>(mesh.polygonVertices.size())) {
    return status_.Fail(who + "the polygons do not take up all corners");
  }
  for (size_t i = 1; i < starts.size(); ++i) {
    if (starts[i] <= starts[i - 1]) {
      return status_.Fail(who + "polygon " + std::to_string(i - 1) + " has no corners");
    }
  }
  if (!AllWithin(mesh.polygonVertices, 0, mesh.controlPoints.size())) {
    return status_.Fail(who + "a polygon has a corner at a point that is not there");
  }
  if (!AllWithin(mesh.edges, 0, mesh.polygonVertices.size())) {
    return status_.Fail(who + "an edge begins at a corner that is not there");
  }
  return true;
}

template <class T>
bool SceneCheck::Layer(const LayerElement<T>& element, const FbxMesh& mesh, const std::string& what) {
  if (element.IsEmpty()) return true;
  size_t places = 1;
  if (element.mapping == Mapping::ByControlPoint) places = mesh.controlPoints.size();
  if (element.mapping == Mapping::ByPolygonVertex) places = mesh.polygonVertices.size();
  if (element.mapping == Mapping::ByPolygon) places = static_cast<size_t>(mesh.NumPolygons());
  if (element.mapping == Mapping::ByEdge) places = mesh.edges.size();
  const size_t given = element.indices.empty() ? element.values.size() : element.indices.size();
  if (given != places && element.mapping != Mapping::AllSame) {
    return status_.Fail(what + " have " + std::to_string(given) + " values for " + std::to_string(places) + " places");
  }
  if (!AllWithin(element.indices, -1, element.values.size())) {
    return status_.Fail(what + " name a value that is not there");
  }
  return Name(element.name) && (AllFinite(element.values) || status_.Fail(what + " are not finite"));
}

bool SceneCheck::Check(const FbxSkin& skin, const FbxMesh& mesh) {
  const std::string mine = Named("skin", skin.GetName());
  for (const FbxCluster& cluster : skin.clusters) {
    const std::string who = mine + Named("cluster", cluster.name);
    if (cluster.link && !Here(cluster.link, who)) return false;
    if (cluster.indices.size() != cluster.weights.size()) return status_.Fail(who + "not every point has a weight");
    if (!AllWithin(cluster.indices, 0, mesh.controlPoints.size())) {
      return status_.Fail(who + "mesh '" + mesh.GetName() + "' has not so many points");
    }
    if (!IsFinite(cluster.transform) || !IsFinite(cluster.transformLink) || !AllFinite(cluster.weights)) {
      return status_.Fail(who + "a weight or matrix is not finite");
    }
    if (!Name(cluster.name)) return false;
  }
  return true;
}

bool SceneCheck::Check(const FbxBlendShape& blend, const FbxMesh& mesh) {
  return std::all_of(blend.channels.begin(), blend.channels.end(), [&](const FbxBlendShapeChannel* channel) {
    return Here(channel, Named("blend shape", blend.GetName())) && Check(*channel, mesh);
  });
}

bool SceneCheck::Check(const FbxBlendShapeChannel& channel, const FbxMesh& mesh) {
  const std::string mine = Named("channel", channel.GetName());
  if (channel.fullWeights.size() != channel.shapes.size()) {
    return status_.Fail(mine + "not every shape has its full weight");
  }
  if (!AllFinite(channel.fullWeights) || !std::isfinite(channel.deformPercent)) {
    return status_.Fail(mine + "a weight is not finite");
  }
  for (const FbxShape& shape : channel.shapes) {
    const std::string who = mine + Named("shape", shape.name);
    const size_t points = shape.indices.size();
    if (shape.offsets.size() != points || (!shape.normals.empty() && shape.normals.size() != points)) {
      return status_.Fail(who + "its lists are not of one length");
    }
    if (!AllWithin(shape.indices, 0, mesh.controlPoints.size())) {
      return status_.Fail(who + "mesh '" + mesh.GetName() + "' has not so many points");
    }
    if (!AllFinite(shape.offsets) || !AllFinite(shape.normals)) return status_.Fail(who + "an offset is not finite");
    if (!Name(shape.name)) return false;
  }
  return true;
}

bool SceneCheck::Check(const FbxSurfaceMaterial& material) {
  return std::all_of(material.textures.begin(), material.textures.end(),
                     [&](const auto& link) { return Here(link.texture, Named("material", material.GetName())); });
}

bool SceneCheck::Check(const FbxPose& pose) {
  const std::string who = Named("pose", pose.GetName());
  return std::all_of(pose.entries.begin(), pose.entries.end(), [&](const FbxPose::Entry& entry) {
    return Here(entry.node, who) && (IsFinite(entry.matrix) || status_.Fail(who + "a matrix is not finite"));
  });
}

bool SceneCheck::Check(const FbxAnimStack& stack) {
  return std::all_of(stack.layers.begin(), stack.layers.end(),
                     [&](const FbxAnimLayer* layer) { return Here(layer, Named("animation stack", stack.GetName())); });
}

bool SceneCheck::Check(const FbxAnimLayer& layer) {
  const std::string who = Named("animation layer", layer.GetName());
  if (!Check(layer.weightCurve, who + "weight: ")) return false;
  for (const FbxAnimCurveNode* node : layer.curveNodes) {
    if (!Here(node, who)) return false;
    if (!node->target) continue;
    if (!Here(node->target, who)) return false;
    const std::string what = who + Named("curve of", node->target->GetName()) + node->property + ": ";
    for (const FbxAnimCurve& curve : node->curves) {
      if (!Check(curve, what)) return false;
    }
  }
  return true;
}

bool SceneCheck::Check(const FbxAnimCurve& curve, const std::string& who) {
  if (curve.IsEmpty()) return true;
  const size_t keys = curve.times.size();
  if (curve.values.size() != keys || (curve.shapes.size() != keys && curve.shapes.size() != 1)) {
    return status_.Fail(who + "its lists are not of one length");
  }
  for (size_t i = 1; i < keys; ++i) {
    if (curve.times[i] <= curve.times[i - 1]) return status_.Fail(who + "the times of its keys do not rise");
  }
  for (const float value : curve.values) {
    if (!std::isfinite(value)) return status_.Fail(who + "a key is not finite");
  }
  for (const KeyShape& shape : curve.shapes) {
    if (!std::isfinite(shape.rightSlope + shape.nextLeftSlope + shape.rightWeight + shape.nextLeftWeight)) {
      return status_.Fail(who + "a tangent is not finite");
    }
  }
  return true;
}

}  // namespace

bool CheckScene(const FbxScene& scene, FbxStatus& status) { return SceneCheck(scene, status).Run(); }

}  // namespace tavrilon::fbx
