// SPDX-License-Identifier: MIT
// Meshes: points, polygons, normals, smoothing, material IDs and texture coordinates.
#include <algorithm>

#include "plugin/fbx/importer/conversion.h"
#include "plugin/fbx/importer/deformer_conversion.h"
#include "plugin/fbx/importer/smoothing_groups.h"

namespace tavrilon::fbx_import {

using namespace corvanta;
using namespace fbx;

namespace {

class MeshConverter {
 public:
  MeshConverter(const Conversion& conversion, FbxMesh& source, std::string name)
      : conversion_(conversion), source_(source), name_(std::move(name)) {}

  Mesh Convert() {
    TakePoints();
    TakePolygons();
    TakeNormals();
    TakeMaterials();
    for (size_t i = 0; i < source_.uvs.size(); ++i) TakeMap(source_.uvs[i], static_cast<int>(i) + 1);
    TakeSmoothing();
    return std::move(mesh_);
  }

 private:
  void TakePoints() {
    bool lost = false;
    mesh_.points.reserve(source_.controlPoints.size());
    for (const Vector3& point : source_.controlPoints) {
      const bool sane = IsSane(point);
      lost |= !sane;
      mesh_.points.push_back(sane ? ToPoint3(point) : Point3());
    }
    if (lost) Note("Points of meshes that are not finite are put to the origin");
  }

  bool IsWhole(size_t begin, size_t end) const {
    if (end > source_.polygonVertices.size() || end < begin + 3) return false;
    return std::all_of(source_.polygonVertices.begin() + static_cast<std::ptrdiff_t>(begin),
                       source_.polygonVertices.begin() + static_cast<std::ptrdiff_t>(end),
                       [&](int point) { return point >= 0 && point < mesh_.NumPoints(); });
  }

  void TakePolygons() {
    bool lost = false;
    for (size_t p = 0; p + 1 < source_.polygonStarts.size(); ++p) {
      const auto begin = static_cast<size_t>(std::max(source_.polygonStarts[p], 0));
      const auto end = static_cast<size_t>(std::max(source_.polygonStarts[p + 1], 0));
      if (!IsWhole(begin, end)) {
        lost = true;
        continue;
      }
      for (size_t c = begin; c < end; ++c) {
        mesh_.corners.push_back(source_.polygonVertices[c]);
        corners_.push_back({p, c});
      }
      mesh_.starts.push_back(mesh_.NumCorners());
      polygons_.push_back(p);
    }
    if (lost) Note("Polygons of less than three corners, or of missing points, are left out");
  }

  /// The number of the layer's value at a kept corner; -1 for none.
  template <class T>
  int ValueAt(const LayerElement<T>& layer, size_t corner) const {
    size_t place = 0;
    switch (layer.mapping) {
      case Mapping::ByControlPoint:
        place = static_cast<size_t>(mesh_.corners[corner]);
        break;
      case Mapping::ByPolygonVertex:
        place = corners_[corner].corner;
        break;
      case Mapping::ByPolygon:
        place = corners_[corner].polygon;
        break;
      case Mapping::AllSame:
        break;
      default:
        return -1;
    }
    const T* value = layer.At(place);
    return value ? static_cast<int>(value - layer.values.data()) : -1;
  }

  /// Of all kept corners; false when one has none.
  template <class T>
  bool TakeCorners(const LayerElement<T>& layer, std::vector<int>& corners) const {
    corners.resize(corners_.size());
    for (size_t c = 0; c < corners.size(); ++c)
      if ((corners[c] = ValueAt(layer, c)) < 0) return false;
    return true;
  }

  // All or none: a normal that is missing or without a direction leaves it to the smoothing groups.
  void TakeNormals() {
    if (source_.normals.IsEmpty()) return;
    bool sound = TakeCorners(source_.normals, mesh_.normalCorners);
    for (const Vector3& normal : source_.normals.values) {
      const double length = Length(normal);
      sound = sound && IsSane(normal) && length > 1e-12;
      mesh_.normals.push_back(sound ? ToPoint3(normal * (1 / length)) : Point3());
    }
    if (sound) return;
    mesh_.normals.clear();
    mesh_.normalCorners.clear();
    Note("Normals that are missing or have no direction are computed instead");
  }

  void TakeMaterials() {
    if (source_.materials.IsEmpty()) return;
    for (const size_t polygon : polygons_) {
      const int* id = source_.materials.mapping == Mapping::ByPolygon || source_.materials.mapping == Mapping::AllSame
                          ? source_.materials.At(polygon)
                          : nullptr;
      mesh_.materials.push_back(id ? static_cast<uint16_t>(std::clamp(*id, 0, 0xFFFF)) : 0);
    }
  }

  void TakeMap(const LayerElement<Vector2>& layer, int channel) {
    if (layer.IsEmpty()) return;
    MeshMap map;
    map.channel = channel;
    map.name = FromUtf8(layer.name);
    const bool whole = TakeCorners(layer, map.corners);
    for (const Vector2& uv : layer.values) {
      const bool sane = IsSane(uv.x) && IsSane(uv.y);
      map.values.push_back(sane ? Point3{static_cast<float>(uv.x), static_cast<float>(uv.y), 0} : Point3());
    }
    if (whole) {
      mesh_.maps.push_back(std::move(map));
    } else {
      Note("Texture coordinates that do not cover a whole mesh are left out");
    }
  }

  // Groups come from the polygons' own, from soft edges, or from normals that agree over edges.
  void TakeSmoothing() {
    if (source_.smoothing.mapping == Mapping::ByPolygon && !source_.smoothing.IsEmpty()) {
      for (const size_t polygon : polygons_) {
        const int* bits = source_.smoothing.At(polygon);
        mesh_.smoothing.push_back(bits ? static_cast<uint32_t>(*bits) : 0);
      }
      return;
    }
    if (source_.normals.mapping == Mapping::ByControlPoint && !source_.normals.IsEmpty()) {
      mesh_.smoothing.assign(polygons_.size(), 1);
      return;
    }
    const bool haveEdges = source_.smoothing.mapping == Mapping::ByEdge && !source_.smoothing.IsEmpty();
    if (haveEdges || FbxGeometryConverter::ComputeEdgeSmoothingFromNormals(source_))
      mesh_.smoothing = GroupsOfEdges(mesh_, SoftEdges());
  }

  std::unordered_set<uint64_t> SoftEdges() const {
    std::unordered_set<uint64_t> soft;
    const auto& starts = source_.polygonStarts;
    for (size_t e = 0; e < source_.edges.size(); ++e) {
      const int* isSoft = source_.smoothing.At(e);
      const int corner = source_.edges[e];
      if (!isSoft || *isSoft == 0 || corner < 0 || static_cast<size_t>(corner) >= source_.polygonVertices.size())
        continue;
      const auto next = std::upper_bound(starts.begin(), starts.end(), corner);
      const int end = next == starts.end() || *next != corner + 1 ? corner + 1 : *(next - 1);
      if (end < 0 || static_cast<size_t>(end) >= source_.polygonVertices.size()) continue;
      soft.insert(EdgeKey(source_.polygonVertices[static_cast<size_t>(corner)],
                          source_.polygonVertices[static_cast<size_t>(end)]));
    }
    return soft;
  }

  void Note(const char* kind) const { conversion_.Note(kind, name_); }

  const Conversion& conversion_;
  FbxMesh& source_;
  std::string name_;
  Mesh mesh_;
  struct Origin {
    size_t polygon, corner;
  };
  /// Where the kept corners and polygons lie in the file's mesh.
  std::vector<Origin> corners_;
  std::vector<size_t> polygons_;
};

/// Between the node and its mesh: the host's object offset.
void TakeOffset(const Conversion& conversion, const FbxNode& node, PlannedNode& planned) {
  const Affine geometric = GeometricMatrix(node.transform);
  if (!IsSane(geometric)) {
    conversion.Note("Geometric transforms that are not finite are passed over", node.GetName());
    return;
  }
  planned.offsetPos = ToPoint3(node.transform.geometricTranslation);
  planned.offsetScale = ToPoint3(node.transform.geometricScaling);
  planned.offsetRot = QuatFromMatrix(ToMatrix3(Rotation(node.transform.geometricRotation)));
}

int LevelsOf(const FbxMesh& mesh) {
  if (mesh.smoothness <= 0) return 0;
  return std::clamp(mesh.previewLevels > 0 ? mesh.previewLevels : mesh.renderLevels, 0, 5);
}

}  // namespace

WStr ConvertMeshes(Conversion& conversion) {
  std::unordered_map<const FbxMesh*, int> done;
  DeformerConverter deformers(conversion);
  const size_t count = conversion.sources.size();
  for (size_t i = 0; i < count; ++i) {
    PlannedNode& planned = conversion.plan.nodes[i];
    if (planned.kind != PlannedKind::Mesh) continue;
    if (!ShowConversion(1)) return kExchangeStopped;
    const FbxNode& node = *conversion.sources[i];
    auto& source = static_cast<FbxMesh&>(*node.GetNodeAttribute());
    const auto [found, isNew] = done.emplace(&source, static_cast<int>(conversion.plan.meshes.size()));
    if (isNew) {
      auto mesh = std::make_shared<const Mesh>(MeshConverter(conversion, source, node.GetName()).Convert());
      if (const std::string fault = FaultOf(*mesh); !fault.empty())
        return L"Mesh '" + planned.name + L"': " + FromUtf8(fault) + L".";
      conversion.plan.meshes.push_back(std::move(mesh));
    }
    planned.mesh = found->second;
    planned.subdivisionLevels = LevelsOf(source);
    TakeOffset(conversion, node, planned);
    deformers.Convert(node, source, planned);
  }
  return {};
}

}  // namespace tavrilon::fbx_import
