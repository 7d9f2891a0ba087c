// SPDX-License-Identifier: MIT
// Meshes with what lies over them.
#include "plugin/fbx/format/scene_writer.h"

namespace tavrilon::fbx {

namespace {

/// Points are three doubles in memory as in files.
static_assert(sizeof(Vector3) == 3 * sizeof(double) && sizeof(Vector2) == 2 * sizeof(double));
std::span<const double> Flat(const std::vector<Vector3>& values) {
  return {values.empty() ? nullptr : &values[0].x, values.size() * 3};
}
std::span<const double> Flat(const std::vector<Vector2>& values) {
  return {values.empty() ? nullptr : &values[0].x, values.size() * 2};
}
std::span<const int> Flat(const std::vector<int>& values) { return values; }

void WriteArray(FbxDocumentWriter& out, std::string_view name, std::span<const double> values) {
  out.Begin(name);
  out.Array(values);
  out.End();
}
void WriteArray(FbxDocumentWriter& out, std::string_view name, std::span<const int> values) {
  out.Begin(name);
  out.Array(values);
  out.End();
}

std::string_view Word(Mapping mapping) {
  switch (mapping) {
    case Mapping::ByControlPoint:
      return "ByVertice";  // the word that files have
    case Mapping::ByPolygonVertex:
      return "ByPolygonVertex";
    case Mapping::ByPolygon:
      return "ByPolygon";
    case Mapping::ByEdge:
      return "ByEdge";
    case Mapping::AllSame:
      return "AllSame";
    case Mapping::None:
      break;
  }
  return "NoMappingInformation";
}

/// How a kind of element is written. `indices` is null where files have values alone.
struct ElementForm {
  const char* record;
  int version;
  const char* values;
  const char* indices;
  const char* reference;  // of values alone
};
constexpr ElementForm kNormals = {"LayerElementNormal", 101, "Normals", "NormalsIndex", "Direct"};
constexpr ElementForm kUVs = {"LayerElementUV", 101, "UV", "UVIndex", "Direct"};
constexpr ElementForm kSmoothing = {"LayerElementSmoothing", 102, "Smoothing", nullptr, "Direct"};
// The values of this one are the indices, of the node's materials.
constexpr ElementForm kMaterials = {"LayerElementMaterial", 101, "Materials", nullptr, "IndexToDirect"};

template <class T>
std::vector<T> Resolved(const LayerElement<T>& element) {
  std::vector<T> values;
  values.reserve(element.indices.size());
  for (size_t i = 0; i < element.indices.size(); ++i) {
    const T* value = element.At(i);
    values.push_back(value ? *value : T{});
  }
  return values;
}

template <class T>
void WriteElement(FbxDocumentWriter& out, const ElementForm& form, int layer, const LayerElement<T>& element) {
  const bool indexed = form.indices && !element.indices.empty();
  out.Begin(form.record);
  out.Int(layer);
  out.Leaf("Version", form.version);
  out.Leaf("Name", element.name);
  out.Leaf("MappingInformationType", Word(element.mapping));
  out.Leaf("ReferenceInformationType", indexed ? "IndexToDirect" : form.reference);
  if (!form.indices && !element.indices.empty()) {
    WriteArray(out, form.values, Flat(Resolved(element)));
  } else {
    WriteArray(out, form.values, Flat(element.values));
  }
  if (indexed) WriteArray(out, form.indices, element.indices);
  out.End();
}

void WriteLayerRow(FbxDocumentWriter& out, const ElementForm& form, int index) {
  out.Begin("LayerElement");
  out.Leaf("Type", form.record);
  out.Leaf("TypedIndex", index);
  out.End();
}

/// Polygons one behind the other; the last corner of each is told by its complement.
std::vector<int> MarkedCorners(const FbxMesh& mesh) {
  std::vector<int> corners = mesh.polygonVertices;
  for (size_t i = 1; i < mesh.polygonStarts.size(); ++i) {
    int& last = corners[static_cast<size_t>(mesh.polygonStarts[i]) - 1];
    last = ~last;
  }
  return corners;
}

}  // namespace

void SceneWriter::WriteMesh(const FbxMesh& mesh) {
  BeginObject("Geometry", plan_.IdOf(&mesh), mesh.GetName(), "Geometry", "Mesh");
  out_.Begin("Properties70");
  WriteColour(mesh);
  out_.End(true);
  WriteArray(out_, "Vertices", Flat(mesh.controlPoints));
  WriteArray(out_, "PolygonVertexIndex", MarkedCorners(mesh));
  if (!mesh.edges.empty()) WriteArray(out_, "Edges", mesh.edges);
  out_.Leaf("GeometryVersion", 124);
  if (mesh.smoothness != 0 || mesh.previewLevels != 0 || mesh.renderLevels != 0) {
    out_.Leaf("Smoothness", mesh.smoothness);
    out_.Leaf("PreviewDivisionLevels", mesh.previewLevels);
    out_.Leaf("RenderDivisionLevels", mesh.renderLevels);
  }
  WriteLayers(mesh);
  out_.End();
}

// The first layer lists all elements but the further UV sets, which have a layer each: what no layer lists is lost to
// readers.
void SceneWriter::WriteLayers(const FbxMesh& mesh) {
  std::vector<const ElementForm*> first;
  const auto write = [&](const ElementForm& form, const auto& element) {
    if (element.IsEmpty()) return;
    WriteElement(out_, form, 0, element);
    first.push_back(&form);
  };
  write(kNormals, mesh.normals);
  write(kSmoothing, mesh.smoothing);
  write(kMaterials, mesh.materials);
  int numUVs = 0;
  for (const LayerElement<Vector2>& uv : mesh.uvs) {
    if (!uv.IsEmpty()) WriteElement(out_, kUVs, numUVs++, uv);
  }
  for (int layer = 0; layer == 0 || layer < numUVs; ++layer) {
    out_.Begin("Layer");
    out_.Int(layer);
    out_.Leaf("Version", 100);
    for (const ElementForm* form : first) WriteLayerRow(out_, *form, 0);
    if (layer < numUVs) WriteLayerRow(out_, kUVs, layer);
    out_.End();
    first.clear();
  }
}

}  // namespace tavrilon::fbx
