// SPDX-License-Identifier: MIT
// Geometry of kind "Mesh": points, polygons, edges, and the elements laid over them.
#include <algorithm>

#include "plugin/fbx/format/read_objects.h"

namespace tavrilon::fbx {

namespace {

struct MappingWord {
  std::string_view word;
  Mapping mapping;
};
constexpr MappingWord kMappings[] = {{"ByPolygonVertex", Mapping::ByPolygonVertex},
                                     {"ByVertice", Mapping::ByControlPoint},
                                     {"ByVertex", Mapping::ByControlPoint},
                                     {"ByControlPoint", Mapping::ByControlPoint},
                                     {"ByPolygon", Mapping::ByPolygon},
                                     {"ByEdge", Mapping::ByEdge},
                                     {"AllSame", Mapping::AllSame}};

Mapping MappingOf(RecordView element) {
  const std::string_view word = element.Find("MappingInformationType").Text(0);
  for (const MappingWord& row : kMappings) {
    if (row.word == word) return row.mapping;
  }
  return Mapping::None;
}

size_t PlacesOf(const FbxMesh& mesh, Mapping mapping) {
  switch (mapping) {
    case Mapping::ByControlPoint:
      return mesh.controlPoints.size();
    case Mapping::ByPolygonVertex:
      return mesh.polygonVertices.size();
    case Mapping::ByPolygon:
      return mesh.polygonStarts.size() - 1;
    case Mapping::ByEdge:
      return mesh.edges.size();
    case Mapping::AllSame:
      return 1;
    case Mapping::None:
      break;
  }
  return 0;
}

std::vector<Vector2> Pairs(const std::vector<double>& numbers) {
  std::vector<Vector2> pairs(numbers.size() / 2);
  for (size_t i = 0; i < pairs.size(); ++i) pairs[i] = {Finite(numbers[i * 2]), Finite(numbers[i * 2 + 1])};
  return pairs;
}

/// Reads one mesh; a member each for its kinds of values.
class MeshReader {
 public:
  MeshReader(ReadContext& context, RecordView geometry, FbxMesh& mesh)
      : context_(context), geometry_(geometry), mesh_(mesh) {}
  bool Read();

 private:
  bool ReadPoints();
  bool ReadPolygons();
  bool ReadEdges();
  bool ReadElement(RecordView element);
  bool ReadNormals(RecordView element);
  bool ReadUvs(RecordView element);
  bool ReadInts(RecordView element, std::string_view leaf, LayerElement<int>& into);
  template <class T>
  bool Finish(RecordView element, std::string_view indexLeaf, LayerElement<T>& into);
  void Note(const std::string& kind) { context_.log.Note(kind, mesh_.GetName()); }

  ReadContext& context_;
  RecordView geometry_;
  FbxMesh& mesh_;
  std::vector<double> numbers_;
};

bool MeshReader::ReadPoints() {
  if (!context_.Array(geometry_, "Vertices", numbers_)) return false;
  if (numbers_.size() % 3 != 0) {
    return context_.Fail(geometry_, std::to_string(numbers_.size()) + " numbers in Vertices are not whole points");
  }
  if (!std::all_of(numbers_.begin(), numbers_.end(), [](double n) { return std::isfinite(n); })) {
    Note("Points that are no numbers were set to 0");
  }
  mesh_.controlPoints = Triples(numbers_);
  return true;
}

/// The last corner of a polygon is stored as its complement.
bool MeshReader::ReadPolygons() {
  if (!context_.Array(geometry_, "PolygonVertexIndex", mesh_.polygonVertices)) return false;
  const auto numPoints = static_cast<int64_t>(mesh_.controlPoints.size());
  for (size_t i = 0; i < mesh_.polygonVertices.size(); ++i) {
    int& corner = mesh_.polygonVertices[i];
    const bool isLast = corner < 0;
    if (isLast) corner = ~corner;
    if (corner >= numPoints) {
      return context_.Fail(geometry_, "a polygon points at point " + std::to_string(corner) + " of " +
                                          std::to_string(numPoints) + "; export the mesh again");
    }
    if (isLast) mesh_.polygonStarts.push_back(static_cast<int>(i) + 1);
  }
  if (static_cast<size_t>(mesh_.polygonStarts.back()) == mesh_.polygonVertices.size()) return true;
  return context_.Fail(geometry_, "the last polygon has no end; export the mesh again");
}

bool MeshReader::ReadEdges() {
  if (!context_.Array(geometry_, "Edges", mesh_.edges)) return false;
  const auto numCorners = static_cast<int64_t>(mesh_.polygonVertices.size());
  const auto isOutside = [numCorners](int corner) { return corner < 0 || corner >= numCorners; };
  if (std::none_of(mesh_.edges.begin(), mesh_.edges.end(), isOutside)) return true;
  Note("Edges that begin outside the polygons were left out");
  mesh_.edges.clear();
  return true;
}

/// Reads the indices and drops an element that does not fit the mesh.
template <class T>
bool MeshReader::Finish(RecordView element, std::string_view indexLeaf, LayerElement<T>& into) {
  into.name = std::string(element.Find("Name").Text(0));
  into.mapping = MappingOf(element);
  const std::string_view reference = element.Find("ReferenceInformationType").Text(0);
  const bool indexed = !indexLeaf.empty() && reference != "Direct";
  if (indexed && !context_.Array(element, indexLeaf, into.indices)) return false;
  const size_t places = PlacesOf(mesh_, into.mapping);
  const auto numValues = static_cast<int64_t>(into.values.size());
  const auto isOutside = [numValues](int index) { return index < -1 || index >= numValues; };
  const bool fits = into.mapping != Mapping::None &&
                    (into.indices.empty() ? into.values.size() : into.indices.size()) >= places &&
                    std::none_of(into.indices.begin(), into.indices.end(), isOutside);
  if (fits) return true;
  Note(std::string(element.Name()) + " that does not fit its mesh was left out");
  into = {};
  return true;
}

bool MeshReader::ReadNormals(RecordView element) {
  if (!mesh_.normals.IsEmpty()) {
    Note("Only the first layer of normals is read");
    return true;
  }
  if (!context_.Array(element, "Normals", numbers_)) return false;
  mesh_.normals.values = Triples(numbers_);
  return Finish(element, "NormalsIndex", mesh_.normals);
}

bool MeshReader::ReadUvs(RecordView element) {
  if (!context_.Array(element, "UV", numbers_)) return false;
  LayerElement<Vector2> uvs;
  uvs.values = Pairs(numbers_);
  if (!Finish(element, "UVIndex", uvs)) return false;
  if (!uvs.IsEmpty()) mesh_.uvs.push_back(std::move(uvs));
  return true;
}

bool MeshReader::ReadInts(RecordView element, std::string_view leaf, LayerElement<int>& into) {
  if (!into.IsEmpty()) {
    Note("Only the first " + std::string(element.Name()) + " is read");
    return true;
  }
  return context_.Array(element, leaf, into.values) && Finish(element, "", into);
}

bool MeshReader::ReadElement(RecordView element) {
  const std::string_view name = element.Name();
  if (name == "LayerElementNormal") return ReadNormals(element);
  if (name == "LayerElementUV") return ReadUvs(element);
  if (name == "LayerElementSmoothing") return ReadInts(element, "Smoothing", mesh_.smoothing);
  if (name == "LayerElementMaterial") return ReadInts(element, "Materials", mesh_.materials);
  // These follow from normals and UVs.
  if (name == "LayerElementTangent" || name == "LayerElementBinormal") return true;
  if (name.substr(0, 12) == "LayerElement") Note(std::string(name) + " is left out");
  return true;
}

bool MeshReader::Read() {
  if (!ReadPoints() || !ReadPolygons() || !ReadEdges()) return false;
  for (const RecordView child : geometry_.Children()) {
    if (!ReadElement(child)) return false;
  }
  for (int& material : mesh_.materials.values) {
    if (material >= 0) continue;
    Note("Polygons without a material take the first");
    material = 0;
  }
  const auto level = [this](std::string_view leaf) {
    constexpr int64_t kMostLevels = 16;
    return static_cast<int>(std::clamp<int64_t>(geometry_.Find(leaf).Int(0), 0, kMostLevels));
  };
  mesh_.smoothness = level("Smoothness");
  mesh_.previewLevels = level("PreviewDivisionLevels");
  mesh_.renderLevels = level("RenderDivisionLevels");
  return true;
}

}  // namespace

bool ReadMesh(ReadContext& context, RecordView geometry, FbxMesh& mesh) {
  AttributeValues values;
  ReadAttributeProperties(geometry, values);
  mesh.colour = values.colour;
  return MeshReader(context, geometry, mesh).Read();
}

}  // namespace tavrilon::fbx
