// SPDX-License-Identifier: MIT
// Scenes of all that the scene model can hold, by a seed: small, sound, and different in every part.
#pragma once

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>

#include "plugin/fbx/format/scene.h"

namespace tavrilon::fbx {

class RandomScene {
 public:
  /// Equal seeds give equal scenes.
  static std::unique_ptr<FbxScene> Make(unsigned seed) {
    RandomScene random(seed);
    random.Settings();
    random.Materials();
    random.Nodes();
    for (FbxMesh* mesh : random.meshes_) random.Deform(*mesh);
    random.Poses();
    random.Animation();
    return std::move(random.scene_);
  }

 private:
  explicit RandomScene(unsigned seed) : rng_(seed), scene_(FbxScene::Create("sample")) {}

  int Int(int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng_); }
  size_t Index(size_t count) { return static_cast<size_t>(Int(0, static_cast<int>(count) - 1)); }
  bool Chance(int percent) { return Int(0, 99) < percent; }
  double Number(double size = 100) { return std::uniform_real_distribution<double>(-size, size)(rng_); }
  Vector3 Vector(double size = 100) { return {Number(size), Number(size), Number(size)}; }
  Vector3 Colour() { return {std::abs(Number(1)), std::abs(Number(1)), std::abs(Number(1))}; }
  Affine Matrix() { return {{Vector(1), Vector(1), Vector(1), Vector()}}; }
  FbxTime Time() { return {std::uniform_int_distribution<int64_t>(-1LL << 40, 1LL << 40)(rng_)}; }
  template <class T>
  T* New(const char* word) {
    return T::Create(*scene_, Name(word));
  }
  template <class T>
  T* Any(const std::vector<T*>& list) {
    return list[Index(list.size())];
  }

  /// Signs that files use for other things, letters beyond ASCII, and names that come twice.
  std::string Name(const char* word) {
    static const char* const kParts[] = {"", ":", "|", " ", "::", "é", "骨", "_01", "ns:"};
    return kParts[Index(std::size(kParts))] + std::string(word) + kParts[Index(std::size(kParts))] +
           std::to_string(Int(0, 30));
  }

  void Settings() {
    int axes[] = {0, 1, 2};
    std::shuffle(std::begin(axes), std::end(axes), rng_);
    const auto sign = [this] { return Chance(50) ? 1 : -1; };
    FbxGlobalSettings& settings = scene_->GetGlobalSettings();
    settings.SetAxisSystem({axes[0], sign(), axes[1], sign(), axes[2], sign()});
    settings.SetSystemUnit({Chance(50) ? 2.54 : 100, 1});
    settings.SetTimeMode(static_cast<TimeMode>(Int(0, 18)));
    settings.SetCustomFrameRate(std::abs(Number()));
    settings.spanStart = Time();
    settings.spanStop = Time();
  }

  void Materials() {
    for (int i = Int(0, 3); i > 0; --i) {
      auto* texture = New<FbxTexture>("texture");
      texture->fileName = "C:\\textures\\" + texture->GetName();
      texture->relativeFileName = "textures\\" + texture->GetName();
      texture->uvSet = Chance(50) ? "map1" : "";
      textures_.push_back(texture);
    }
    for (int i = Int(1, 3); i > 0; --i) {
      auto* material = New<FbxSurfaceMaterial>("material");
      if (Chance(30)) material->shadingModel = "Lambert";
      for (Vector3* colour :
           {&material->diffuse, &material->emissive, &material->specular, &material->transparentColour}) {
        if (Chance(60)) *colour = Colour();
      }
      for (double* factor : {&material->diffuseFactor, &material->emissiveFactor, &material->specularFactor,
                             &material->transparencyFactor, &material->shininess}) {
        if (Chance(50)) *factor = std::abs(Number(50));
      }
      for (const char* property : {"DiffuseColor", "Bump", "NormalMap"}) {
        if (!textures_.empty() && Chance(40)) material->textures.push_back({property, Any(textures_)});
      }
    }
  }

  void Nodes() {
    for (int i = Int(2, 15); i > 0; --i) {
      auto* node = New<FbxNode>("node");
      if (scene_->Nodes().size() > 1 && Chance(70)) Any(scene_->Nodes())->AddChild(node);
      Transform(node->transform);
      node->visible = Chance(80);
      for (int k = Int(0, 2); k > 0; --k) node->userProperties[Name("user")] = Name("text");
      Attribute(*node);
      if (!dynamic_cast<FbxMesh*>(node->GetNodeAttribute())) continue;
      std::vector<FbxSurfaceMaterial*> materials = scene_->Materials();
      std::shuffle(materials.begin(), materials.end(), rng_);
      materials.resize(Index(materials.size() + 1));
      node->materials = materials;
    }
  }

  void Transform(NodeTransform& t) {
    for (Vector3* part : {&t.translation, &t.rotation, &t.scaling, &t.rotationOffset, &t.rotationPivot,
                          &t.scalingOffset, &t.scalingPivot, &t.preRotation, &t.postRotation, &t.geometricTranslation,
                          &t.geometricRotation, &t.geometricScaling}) {
      if (Chance(40)) *part = Vector();
    }
    t.order = static_cast<RotationOrder>(Chance(50) ? 0 : Int(0, 6));
    t.inherit = static_cast<InheritType>(Int(0, 2));
    t.rotationActive = Chance(50);
  }

  void Attribute(FbxNode& node) {
    FbxNodeAttribute* attribute = nullptr;
    const int kind = Int(0, 6);
    if (kind == 0 && !attributes_.empty()) attribute = Any(attributes_);  // shared
    if (kind == 1) {
      attribute = New<FbxNull>("null");
      static_cast<FbxNull*>(attribute)->size = Number();
    }
    if (kind == 2) attribute = FbxOtherAttribute::Create(*scene_, Name("eye"), AttributeKind::Camera, "Camera");
    if (kind == 3) attribute = FbxOtherAttribute::Create(*scene_, Name("lamp"), AttributeKind::Light, "Light");
    if (kind == 4) {
      auto* skeleton = New<FbxSkeleton>("bone");
      skeleton->type = static_cast<SkeletonType>(Int(0, 3));
      skeleton->size = Number();
      skeleton->limbLength = Number();
      attribute = skeleton;
    }
    if (kind > 4) attribute = Mesh();
    if (!attribute) return;
    if (Chance(50)) attribute->colour = Colour();
    attributes_.push_back(attribute);
    node.SetNodeAttribute(attribute);
  }

  FbxMesh* Mesh() {
    auto* mesh = New<FbxMesh>("mesh");
    for (int i = Int(4, 40); i > 0; --i) mesh->controlPoints.push_back(Vector());
    std::vector<int> points(mesh->controlPoints.size());
    std::iota(points.begin(), points.end(), 0);
    for (int i = Int(1, 30); i > 0; --i) {
      std::shuffle(points.begin(), points.end(), rng_);
      mesh->polygonVertices.insert(mesh->polygonVertices.end(), points.begin(), points.begin() + Int(3, 4));
      mesh->polygonStarts.push_back(static_cast<int>(mesh->polygonVertices.size()));
    }
    const size_t corners = mesh->polygonVertices.size(), polygons = static_cast<size_t>(mesh->NumPolygons());
    if (Chance(50)) mesh->edges = Ints(corners / 2 + 1, static_cast<int>(corners) - 1);
    mesh->smoothness = Chance(30) ? 2 : 0;
    mesh->previewLevels = mesh->smoothness * Int(0, 2);
    mesh->renderLevels = mesh->smoothness * Int(0, 2);
    const auto direction = [this] { return Vector(1); };
    if (Chance(40))
      Layer(mesh->normals, Mapping::ByPolygonVertex, corners, direction);
    else if (Chance(40))
      Layer(mesh->normals, Mapping::ByControlPoint, mesh->controlPoints.size(), direction);
    for (int i = Int(0, 3); i > 0; --i) {
      mesh->uvs.emplace_back();
      Layer(mesh->uvs.back(), Mapping::ByPolygonVertex, corners, [this] { return Vector2{Number(1), Number(1)}; });
    }
    if (!mesh->edges.empty())
      Whole(mesh->smoothing, Mapping::ByEdge, Ints(mesh->edges.size(), 1));
    else if (Chance(50))
      Whole(mesh->smoothing, Mapping::ByPolygon, Ints(polygons, 1 << 30));
    if (Chance(40))
      Whole(mesh->materials, Mapping::ByPolygon, Ints(polygons, 2));
    else if (Chance(50))
      Whole(mesh->materials, Mapping::AllSame, {Int(0, 2)});
    meshes_.push_back(mesh);
    return mesh;
  }

  std::vector<int> Ints(size_t count, int high) {
    std::vector<int> values(count);
    for (int& value : values) value = Int(0, high);
    return values;
  }
  void Whole(LayerElement<int>& element, Mapping mapping, std::vector<int> values) {
    element = {"", mapping, std::move(values), {}};
  }
  template <class T, class Make>
  void Layer(LayerElement<T>& element, Mapping mapping, size_t places, Make make) {
    const bool indexed = Chance(50);
    element.name = Name("layer");
    element.mapping = mapping;
    const size_t count = indexed ? places / 2 + 1 : places;
    for (size_t i = 0; i < count; ++i) element.values.push_back(make());
    if (indexed) element.indices = Ints(places, static_cast<int>(count) - 1);
  }

  /// Some of the mesh's points, rising.
  std::vector<int> Points(const FbxMesh& mesh, int percent) {
    std::vector<int> points;
    for (size_t i = 0; i < mesh.controlPoints.size(); ++i) {
      if (Chance(percent)) points.push_back(static_cast<int>(i));
    }
    return points;
  }

  void Deform(FbxMesh& mesh) {
    if (Chance(70)) {
      auto* skin = New<FbxSkin>("skin");
      for (int i = Int(1, 4); i > 0; --i) {
        FbxCluster cluster{Name("cluster"), Any(scene_->Nodes()), Points(mesh, 40 * Int(0, 2)), {}, Matrix(), Matrix()};
        for (size_t k = 0; k < cluster.indices.size(); ++k) cluster.weights.push_back(std::abs(Number(1)));
        skin->clusters.push_back(cluster);
      }
      mesh.skins.push_back(skin);
    }
    if (!Chance(60)) return;
    auto* blend = New<FbxBlendShape>("blend");
    mesh.blendShapes.push_back(blend);
    for (int i = Int(1, 3); i > 0; --i) {
      auto* channel = New<FbxBlendShapeChannel>("channel");
      channel->deformPercent = Chance(50) ? 0 : Number();
      const int targets = Int(1, 3);
      for (int k = 1; k <= targets; ++k) {
        FbxShape shape{Name("shape"), Points(mesh, 50), {}, {}};
        for (size_t p = 0; p < shape.indices.size(); ++p) shape.offsets.push_back(Vector(1));
        if (Chance(50)) {
          for (size_t p = 0; p < shape.indices.size(); ++p) shape.normals.push_back(Vector(1));
        }
        channel->shapes.push_back(shape);
        channel->fullWeights.push_back(100.0 * k / targets);
      }
      blend->channels.push_back(channel);
      channels_.push_back(channel);
    }
  }

  void Poses() {
    for (int i = Int(0, 2); i > 0; --i) {
      auto* pose = New<FbxPose>("pose");
      pose->isBindPose = Chance(70);
      for (FbxNode* node : scene_->Nodes()) {
        if (Chance(60)) pose->entries.push_back({node, Matrix()});
      }
    }
  }

  void Animation() {
    for (int i = Int(0, 2); i > 0; --i) {
      FbxAnimStack* stack = FbxAnimStack::Create(*scene_, "take " + std::to_string(i));
      for (FbxTime* time : {&stack->localStart, &stack->localStop, &stack->referenceStart, &stack->referenceStop}) {
        *time = Time();
      }
      for (int k = Int(1, 3); k > 0; --k) stack->layers.push_back(AnimLayer());
      if (Chance(50)) scene_->currentStack = stack->GetName();
    }
  }

  FbxAnimLayer* AnimLayer() {
    auto* layer = New<FbxAnimLayer>("layer");
    if (Chance(50)) {
      layer->weight = std::abs(Number());
      layer->mute = Chance(50);
      layer->solo = Chance(50);
      layer->blend = static_cast<LayerBlend>(Int(0, 2));
      layer->rotationAccumulation = Int(0, 1);
      layer->scaleAccumulation = Int(0, 1);
    }
    if (Chance(30)) layer->weightCurve = Curve();
    for (FbxNode* node : scene_->Nodes()) {
      for (const char* property : {"Lcl Translation", "Lcl Rotation", "Lcl Scaling"}) {
        if (Chance(30)) CurveNode(*layer, node, property, 3);
      }
      if (Chance(10)) CurveNode(*layer, node, "Visibility", 1);
    }
    for (FbxBlendShapeChannel* channel : channels_) {
      if (Chance(50)) CurveNode(*layer, channel, "DeformPercent", 1);
    }
    return layer;
  }

  void CurveNode(FbxAnimLayer& layer, FbxObject* target, const char* property, size_t channels) {
    FbxAnimCurveNode* node = FbxAnimCurveNode::Create(*scene_, property);
    node->target = target;
    node->property = property;
    for (size_t i = 0; i < channels; ++i) {
      node->defaults[i] = Number();
      if (Chance(70)) node->curves[i] = Curve();
    }
    layer.curveNodes.push_back(node);
  }

  FbxAnimCurve Curve() {
    FbxAnimCurve curve;
    const int keys = Chance(10) ? 1 : Int(2, 300);  // short lists lie raw in files, long ones deflated
    int64_t time = Time().ticks;
    const bool oneShape = Chance(40);
    KeyShape shape = Shape();
    for (int i = 0; i < keys; ++i) {
      time += Int(1, 1 << 30);
      curve.times.push_back(time);
      curve.values.push_back(static_cast<float>(Number()));
      if (!oneShape && Chance(20)) shape = Shape();
      if (!oneShape || i == 0) curve.shapes.push_back(shape);
    }
    return curve;
  }

  KeyShape Shape() {
    KeyShape shape;
    shape.interpolation = static_cast<Interpolation>(Int(0, 3));
    if (Chance(70)) shape.rightSlope = static_cast<float>(Number());
    if (Chance(70)) shape.nextLeftSlope = static_cast<float>(Number());
    if (Chance(30)) shape.rightWeight = static_cast<float>(Int(1, 9999)) / 9999;
    if (Chance(30)) shape.nextLeftWeight = static_cast<float>(Int(1, 9999)) / 9999;
    return shape;
  }

  std::mt19937 rng_;
  std::unique_ptr<FbxScene> scene_;
  std::vector<FbxTexture*> textures_;
  std::vector<FbxNodeAttribute*> attributes_;
  std::vector<FbxMesh*> meshes_;
  std::vector<FbxBlendShapeChannel*> channels_;
};

}  // namespace tavrilon::fbx
