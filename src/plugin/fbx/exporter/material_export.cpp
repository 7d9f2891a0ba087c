// SPDX-License-Identifier: MIT
#include "plugin/fbx/exporter/material_export.h"

#include <algorithm>
#include <filesystem>

#include "host/scene/material.h"
#include "plugin/fbx/highlight.h"

namespace tavrilon::fbx_export {

using namespace corvanta;
using namespace fbx;

namespace {

Vector3 ToVector(const Colour& c) { return {c.r, c.g, c.b}; }

/// Parameters of a block by their script names, at one time; `otherwise` for those that are not there.
class NamedParams {
 public:
  NamedParams(ParamBlock2* block, TimeValue t) : block_(block), t_(t) {}

  bool Has(const wchar_t* name) const { return Row(name) != nullptr; }
  double Number(const wchar_t* name, float otherwise) const {
    const ParamRow* row = Row(name);
    return row ? block_->GetValue(row->id, t_).ToFloat(otherwise) : otherwise;
  }
  bool IsOn(const wchar_t* name) const {
    const ParamRow* row = Row(name);
    return !row || block_->GetValue(row->id, t_).ToBool(true);
  }
  Vector3 ColourOf(const wchar_t* name, const Vector3& otherwise) const {
    const ParamRow* row = Row(name);
    return row ? ToVector(block_->GetColour(row->id, t_)) : otherwise;
  }
  Texmap* Map(const wchar_t* name) const {
    const ParamRow* row = Row(name);
    ReferenceTarget* target = row ? block_->GetReferenceTarget(row->id, t_) : nullptr;
    return target && target->SuperClassID() == kTextureMapSuper ? static_cast<Texmap*>(target) : nullptr;
  }

 private:
  const ParamRow* Row(const wchar_t* name) const { return block_ ? block_->GetDesc().FindByName(name) : nullptr; }
  ParamBlock2* block_;
  TimeValue t_;
};

/// A map of the host on a property of the file.
struct MapRow {
  const wchar_t* map;
  const wchar_t* isOn;
  const char* property;
};
constexpr MapRow kMaps[] = {
    {L"base_color_map", L"base_color_map_on", "DiffuseColor"},
    {L"cutout_map", L"cutout_map_on", "TransparentColor"},
    // Opacity comes from the cutout, and without one from here.
    {L"geometry_opacity_map", L"geometry_opacity_map_on", "TransparentColor"},
    {L"bump_map", L"bump_map_on", "Bump"},
};

class MaterialExporter {
 public:
  explicit MaterialExporter(ExportJob& job) : job_(job) {}

  /// Null material: a plain one of its own.
  FbxSurfaceMaterial* Export(Mtl* material) {
    FbxSurfaceMaterial*& out = job_.materials[material];
    if (!out) out = Make(material);
    return out;
  }

 private:
  /// Maps in maps end here: loops are not refused by all hosts.
  static constexpr int kMaxDepth = 16;

  std::string NameFor(const Mtl* material) {
    const WStr name = material ? material->GetName() : WStr();
    if (name.empty())
      return job_.materialNames.Take(L"Material_" + std::to_wstring(++job_.unnamedMaterials), "Material");
    bool changed = false;
    std::string taken = job_.materialNames.Take(name, "Material", &changed);
    if (changed) job_.Log(L"Material '" + name + L"' is exported as '" + FromUtf8(taken) + L"'.");
    return taken;
  }

  FbxSurfaceMaterial* Make(Mtl* material) {
    FbxSurfaceMaterial* out = FbxSurfaceMaterial::Create(job_.scene, NameFor(material));
    if (!material) return out;
    const NamedParams params(material->GetParamBlock(), job_.times.start);
    if (!params.Has(L"base_color"))
      job_.Log(L"Material '" + material->GetName() + L"' has no base colour; it is exported without its look.");
    out->diffuse = params.ColourOf(L"base_color", out->diffuse);
    out->transparencyFactor = params.Number(L"transparency", 0);
    if (params.Has(L"roughness")) out->shininess = ShininessOf(params.Number(L"roughness", 0));
    if (params.Number(L"metalness", 0) > 0)
      job_.Log(L"Material '" + material->GetName() + L"' is metallic, which the file cannot say; it is left out.");
    if (params.Has(L"emit_color")) {
      out->emissive = params.ColourOf(L"emit_color", {});
      out->emissiveFactor = params.Number(L"emission", 1);
    }
    for (const MapRow& row : kMaps) AddMap(params, row, *out);
    return out;
  }

  void AddMap(const NamedParams& params, const MapRow& row, FbxSurfaceMaterial& out) {
    Texmap* map = params.Map(row.map);
    if (!map || !params.IsOn(row.isOn)) return;
    for (const FbxSurfaceMaterial::TextureLink& link : out.textures)
      if (link.property == row.property) return;
    if (Texmap* picture = FindPicture(map, kMaxDepth)) {
      if (picture != map)
        job_.Log(L"Only the first picture of the map '" + map->GetName() + L"' in material '" +
                 FromUtf8(out.GetName()) + L"' is exported.");
      out.textures.push_back({row.property, ExportPicture(*picture)});
    } else if (out.textures.empty() && std::string_view(row.property) == "DiffuseColor") {
      out.diffuse = PlainColour(*map, out.diffuse);
    } else {
      job_.Log(L"The map '" + map->GetName() + L"' in material '" + FromUtf8(out.GetName()) +
               L"' has no picture and was left out.");
    }
  }

  /// The map itself, or the first picture that it mixes; null when there is none.
  Texmap* FindPicture(Texmap* map, int depth) {
    if (!map || depth == 0) return nullptr;
    const NamedParams params(map->GetParamBlock(), job_.times.start);
    if (params.Has(L"filename")) return FileOf(*map).empty() ? nullptr : map;
    for (const wchar_t* inner : {L"map1", L"map2"})
      if (Texmap* found = FindPicture(params.Map(inner), depth - 1)) return found;
    return nullptr;
  }

  /// What a blend of two colours without pictures comes to.
  Vector3 PlainColour(Texmap& map, const Vector3& otherwise) {
    const NamedParams params(map.GetParamBlock(), job_.times.start);
    if (!params.Has(L"color1") || !params.Has(L"color2")) return otherwise;
    const double mix = std::clamp(params.Number(L"mix_amount", 0), 0.0, 1.0);
    const Vector3 colour =
        params.ColourOf(L"color1", otherwise) * (1 - mix) + params.ColourOf(L"color2", otherwise) * mix;
    return colour * params.Number(L"output", 1);
  }

  WStr FileOf(Texmap& map) {
    ParamBlock2* block = map.GetParamBlock();
    const ParamRow* row = block ? block->GetDesc().FindByName(L"filename") : nullptr;
    return row ? block->GetStr(row->id, job_.times.start) : WStr();
  }

  FbxTexture* ExportPicture(Texmap& map) {
    FbxTexture*& out = job_.textures[&map];
    if (out) return out;
    namespace fs = std::filesystem;
    const fs::path file(ToUtf8(FileOf(map)));
    const WStr name = map.GetName().empty() ? FromUtf8(file.stem().string()) : map.GetName();
    out = FbxTexture::Create(job_.scene, job_.textureNames.Take(name, "Texture"));
    out->fileName = file.string();
    std::error_code error;
    const fs::path folder = fs::absolute(fs::path(ToUtf8(job_.file)), error).parent_path();
    const fs::path relative = file.is_absolute() ? file.lexically_relative(folder) : file;
    out->relativeFileName = relative.empty() ? file.string() : relative.string();
    const NamedParams params(map.GetParamBlock(), job_.times.start);
    out->uvSet = "UVChannel_" + std::to_string(static_cast<int>(params.Number(L"map_channel", 1)));
    return out;
  }

  ExportJob& job_;
};

/// The material that polygons of an ID have, through lists in lists.
Mtl* LeafOf(Mtl* material, int id) {
  for (int depth = 0; material && material->NumSubMtls() > 0 && depth < 16; ++depth)
    material = material->GetSubMtl(id % material->NumSubMtls());
  return material;
}

}  // namespace

void ExportMaterials(ExportJob& job, const ExportNode& node, const Mesh& mesh, const MeshLayout& layout, FbxMesh& out) {
  Mtl* material = node.node->GetMtl();
  if (!material) return;
  MaterialExporter exporter(job);
  std::vector<Mtl*> leaves;
  const auto placeOf = [&](Mtl* leaf) {
    const auto found = std::find(leaves.begin(), leaves.end(), leaf);
    if (found != leaves.end()) return static_cast<int>(found - leaves.begin());
    leaves.push_back(leaf);
    node.out->materials.push_back(exporter.Export(leaf));
    return static_cast<int>(leaves.size()) - 1;
  };
  for (int id = 0; id < std::max(1, material->NumSubMtls()); ++id) placeOf(LeafOf(material, id));

  std::vector<int> places;
  places.reserve(layout.oldPolygons.size());
  for (const int polygon : layout.oldPolygons) {
    const int id = mesh.materials.empty() ? 0 : mesh.materials[static_cast<size_t>(polygon)];
    places.push_back(placeOf(LeafOf(material, id)));
  }
  const bool isOne = leaves.size() == 1 || places.empty();
  out.materials.mapping = isOne ? Mapping::AllSame : Mapping::ByPolygon;
  out.materials.values = isOne ? std::vector<int>{0} : std::move(places);
}

}  // namespace tavrilon::fbx_export
