// SPDX-License-Identifier: MIT
// Materials, and textures with the records that tell where their pictures lie.
#include "plugin/fbx/format/scene_writer.h"

namespace tavrilon::fbx {

namespace {

struct ColourRow {
  std::string_view name;
  Vector3 FbxSurfaceMaterial::*value;
};
constexpr ColourRow kColours[] = {
    {"EmissiveColor", &FbxSurfaceMaterial::emissive},
    {"DiffuseColor", &FbxSurfaceMaterial::diffuse},
    {"TransparentColor", &FbxSurfaceMaterial::transparentColour},
    {"SpecularColor", &FbxSurfaceMaterial::specular},
};
struct NumberRow {
  std::string_view name;
  double FbxSurfaceMaterial::*value;
};
// The gloss has an old and a new name, and readers look for one or the other.
constexpr NumberRow kNumbers[] = {
    {"EmissiveFactor", &FbxSurfaceMaterial::emissiveFactor},
    {"DiffuseFactor", &FbxSurfaceMaterial::diffuseFactor},
    {"TransparencyFactor", &FbxSurfaceMaterial::transparencyFactor},
    {"SpecularFactor", &FbxSurfaceMaterial::specularFactor},
    {"Shininess", &FbxSurfaceMaterial::shininess},
    {"ShininessExponent", &FbxSurfaceMaterial::shininess},
};

}  // namespace

void SceneWriter::WriteMaterial(const FbxSurfaceMaterial& material) {
  BeginObject("Material", plan_.IdOf(&material), material.GetName(), "Material", "");
  out_.Leaf("Version", 102);
  out_.Leaf("ShadingModel", material.shadingModel);
  out_.Leaf("MultiLayer", 0);
  out_.Begin("Properties70");
  for (const ColourRow& row : kColours) {
    const Vector3& colour = material.*row.value;
    out_.PropertyDouble(row.name, "Color", "", "A", {colour.x, colour.y, colour.z});
  }
  for (const NumberRow& row : kNumbers) out_.PropertyDouble(row.name, "Number", "", "A", {material.*row.value});
  out_.End();
  out_.End();
}

void SceneWriter::WriteTexture(const FbxTexture& texture) {
  BeginObject("Texture", plan_.IdOf(&texture), texture.GetName(), "Texture", "");
  out_.Leaf("Type", "TextureVideoClip");
  out_.Leaf("Version", 202);
  out_.Begin("TextureName");
  out_.ObjectName(texture.GetName(), "Texture");
  out_.End();
  out_.Begin("Properties70");
  out_.PropertyText("UVSet", "KString", "", "", texture.uvSet);
  out_.PropertyInt("UseMaterial", "bool", "", "", 1);
  out_.End();
  out_.Begin("Media");
  out_.ObjectName(texture.GetName(), "Video");
  out_.End();
  out_.Leaf("FileName", texture.fileName);
  out_.Leaf("RelativeFilename", texture.relativeFileName);
  for (const auto& [name, value] : {std::pair("ModelUVTranslation", 0.0), std::pair("ModelUVScaling", 1.0)}) {
    out_.Begin(name);
    out_.Double(value);
    out_.Double(value);
    out_.End();
  }
  out_.Leaf("Texture_Alpha_Source", "None");
  out_.Begin("Cropping");
  for (int side = 0; side < 4; ++side) out_.Int(0);
  out_.End();
  out_.End();
}

void SceneWriter::WriteVideo(const FbxTexture& texture) {
  BeginObject("Video", plan_.VideoIdOf(&texture), texture.GetName(), "Video", "Clip");
  out_.Leaf("Type", "Clip");
  out_.Begin("Properties70");
  out_.PropertyText("Path", "KString", "XRefUrl", "", texture.fileName);
  out_.End();
  out_.Leaf("UseMipMap", 0);
  out_.Leaf("Filename", texture.fileName);
  out_.Leaf("RelativeFilename", texture.relativeFileName);
  out_.End();
}

}  // namespace tavrilon::fbx
