// SPDX-License-Identifier: MIT
// Meshes with their layers, skins and blend shapes.
#pragma once

#include <memory>

#include "plugin/fbx/format/node.h"

namespace tavrilon::fbx {

class FbxSkin;
class FbxBlendShape;

enum class Mapping { None, ByControlPoint, ByPolygonVertex, ByPolygon, ByEdge, AllSame };

/// Values laid over a mesh. With `indices` a place takes values[indices[place]], without them values[place].
template <class T>
struct LayerElement {
  std::string name;
  Mapping mapping = Mapping::None;
  std::vector<T> values;
  std::vector<int> indices;

  bool IsEmpty() const { return mapping == Mapping::None || values.empty(); }
  /// The value at a place (a control point, corner, polygon or edge, as the mapping says; any for AllSame); null when
  /// the layer has none there.
  const T* At(size_t place) const {
    if (mapping == Mapping::AllSame) place = 0;
    if (!indices.empty()) {
      if (place >= indices.size() || indices[place] < 0) return nullptr;
      place = static_cast<size_t>(indices[place]);
    }
    return place < values.size() ? &values[place] : nullptr;
  }
};

class FbxMesh final : public FbxNodeAttribute {
 public:
  static FbxMesh* Create(FbxScene& scene, std::string name);
  AttributeKind Kind() const override { return AttributeKind::Mesh; }

  std::vector<Vector3> controlPoints;
  /// Corners of polygon i: polygonVertices[polygonStarts[i]] to [polygonStarts[i + 1]].
  std::vector<int> polygonStarts{0};
  std::vector<int> polygonVertices;
  /// Each edge as the corner at which it begins; it runs to the polygon's next corner. May be empty.
  std::vector<int> edges;

  LayerElement<Vector3> normals;
  /// By edge: 0 hard, 1 soft. By polygon: bits of groups.
  LayerElement<int> smoothing;
  LayerElement<int> materials;
  std::vector<LayerElement<Vector2>> uvs;
  /// 0 as modelled, 2 shown smooth; levels of the preview and of renderings.
  int smoothness = 0, previewLevels = 0, renderLevels = 0;

  std::vector<FbxSkin*> skins;
  std::vector<FbxBlendShape*> blendShapes;

  int NumPolygons() const { return static_cast<int>(polygonStarts.size()) - 1; }

 private:
  using FbxNodeAttribute::FbxNodeAttribute;
  void Unlink(const FbxObject& gone) override;
};

/// A bone's share of a skin.
struct FbxCluster {
  std::string name;
  /// Null when the file does not say.
  FbxNode* link = nullptr;
  std::vector<int> indices;
  std::vector<double> weights;
  /// The bone's world matrix at bind.
  Affine transformLink;
  /// Mesh at bind times the inverse of `transformLink`.
  Affine transform;
};

class FbxSkin final : public FbxObject {
 public:
  static FbxSkin* Create(FbxScene& scene, std::string name);
  std::vector<FbxCluster> clusters;

 private:
  using FbxObject::FbxObject;
  void Unlink(const FbxObject& gone) override;
};

/// Sparse offsets of control points, and of normals where there are any (as many, or none).
struct FbxShape {
  std::string name;
  std::vector<int> indices;
  std::vector<Vector3> offsets;
  std::vector<Vector3> normals;
};

class FbxBlendShapeChannel final : public FbxObject {
 public:
  static FbxBlendShapeChannel* Create(FbxScene& scene, std::string name);
  double deformPercent = 0;
  /// The weight at which each target stands in full, rising; one for each shape.
  std::vector<double> fullWeights;
  std::vector<FbxShape> shapes;

 private:
  using FbxObject::FbxObject;
};

class FbxBlendShape final : public FbxObject {
 public:
  static FbxBlendShape* Create(FbxScene& scene, std::string name);
  std::vector<FbxBlendShapeChannel*> channels;

 private:
  using FbxObject::FbxObject;
  void Unlink(const FbxObject& gone) override;
};

class FbxGeometryConverter {
 public:
  /// Gives `mesh` its edges, and smoothing by edge from its normals by corner: an edge is soft when both corners have
  /// the same normal on both sides (dot above .9999), hard when they differ or when it is a border. False without
  /// normals by corner.
  static bool ComputeEdgeSmoothingFromNormals(FbxMesh& mesh);
};

}  // namespace tavrilon::fbx
