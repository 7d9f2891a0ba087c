// SPDX-License-Identifier: MIT
// Materials of nodes, and the pictures on them.
#include <algorithm>
#include <filesystem>

#include "plugin/fbx/highlight.h"
#include "plugin/fbx/importer/conversion.h"

namespace tavrilon::fbx_import {

using namespace corvanta;
using namespace fbx;

namespace {

namespace fs = std::filesystem;

/// Which map a property of a file's material becomes.
struct MapRow {
  const char* property;
  std::optional<PlannedBitmap> PlannedMaterial::*map;
};
constexpr MapRow kMaps[] = {
    {"DiffuseColor", &PlannedMaterial::baseMap},
    {"TransparentColor", &PlannedMaterial::cutoutMap},
    {"TransparencyFactor", &PlannedMaterial::cutoutMap},
    {"Bump", &PlannedMaterial::bumpMap},
    {"NormalMap", &PlannedMaterial::bumpMap},
};

Colour ToColour(const Vector3& c, double factor) {
  const auto part = [factor](double v) {
    v *= factor;
    return static_cast<float>(v > 0 ? std::min(v, 1.0) : 0);
  };
  return {part(c.x), part(c.y), part(c.z)};
}

float Share(double v) { return static_cast<float>(v > 0 ? std::min(v, 1.0) : 0); }

std::string WithSlashes(std::string path) {
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

/// Where the picture lies: beside the file as the file tells, at its full name, or beside the file without folders.
/// The full name when it is nowhere.
std::string FindPicture(const FbxTexture& texture, const WStr& file, bool& found) {
  const fs::path folder = fs::path(ToUtf8(file)).parent_path();
  const std::string full = WithSlashes(texture.fileName), relative = WithSlashes(texture.relativeFileName);
  const std::string& named = full.empty() ? relative : full;
  const fs::path places[] = {folder / relative, fs::path(full), folder / fs::path(named).filename()};
  std::error_code ignored;
  for (const fs::path& place : places) {
    found = fs::is_regular_file(place, ignored);
    if (found) return place.lexically_normal().string();
  }
  return full.empty() ? relative : texture.fileName;
}

int ChannelOf(const std::string& uvSet, const FbxMesh* mesh) {
  for (size_t i = 0; mesh && i < mesh->uvs.size(); ++i)
    if (mesh->uvs[i].name == uvSet) return static_cast<int>(i) + 1;
  return 1;
}

void TakeTexture(const Conversion& conversion, const FbxSurfaceMaterial::TextureLink& link, const FbxMesh* mesh,
                 PlannedMaterial& planned) {
  if (!link.texture) return;
  const auto row = std::find_if(std::begin(kMaps), std::end(kMaps),
                                [&](const MapRow& candidate) { return link.property == candidate.property; });
  if (row == std::end(kMaps)) {
    conversion.Note("Textures on other than colour, transparency and bump are left out", link.property);
    return;
  }
  bool found = false;
  const std::string file = FindPicture(*link.texture, conversion.context.file, found);
  if (file.empty()) return;
  if (!found) conversion.Note("Pictures of textures were not found", file);
  planned.*row->map = PlannedBitmap{FromUtf8(file), ChannelOf(link.texture->uvSet, mesh)};
}

PlannedMaterial Convert(const Conversion& conversion, const FbxSurfaceMaterial& source, const FbxMesh* mesh) {
  PlannedMaterial planned;
  planned.name = FromUtf8(source.GetName());
  planned.base = ToColour(source.diffuse, source.diffuseFactor);
  planned.roughness = static_cast<float>(RoughnessOf(source.shininess));
  const Vector3& t = source.transparentColour;
  planned.transparency = Share(source.transparencyFactor * (t.x + t.y + t.z) / 3);
  planned.emission = ToColour(source.emissive, 1);
  const bool glows = !(planned.emission == Colour());
  planned.emissionAmount = glows ? Share(source.emissiveFactor) : 0;
  if (!glows) planned.emission = {1, 1, 1};
  for (const auto& link : source.textures) TakeTexture(conversion, link, mesh, planned);
  return planned;
}

}  // namespace

void ConvertMaterials(Conversion& conversion) {
  std::unordered_map<const FbxSurfaceMaterial*, int> done;
  for (size_t i = 0; i < conversion.sources.size(); ++i) {
    PlannedNode& planned = conversion.plan.nodes[i];
    if (planned.kind != PlannedKind::Mesh) continue;
    const FbxNode& node = *conversion.sources[i];
    const auto* mesh = static_cast<const FbxMesh*>(node.GetNodeAttribute());
    for (const FbxSurfaceMaterial* source : node.materials) {
      const auto [found, isNew] = done.emplace(source, static_cast<int>(conversion.plan.materials.size()));
      // A slot that is empty keeps its number with a material as it comes.
      if (isNew) conversion.plan.materials.push_back(source ? Convert(conversion, *source, mesh) : PlannedMaterial());
      planned.materials.push_back(found->second);
    }
  }
}

}  // namespace tavrilon::fbx_import
