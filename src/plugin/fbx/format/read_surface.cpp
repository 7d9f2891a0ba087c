// SPDX-License-Identifier: MIT
// Materials and textures.
#include "plugin/fbx/format/read_objects.h"

namespace tavrilon::fbx {

namespace {

using Material = SurfaceValues;
const PropertyRow<Material> kMaterialRows[] = {
    {"ShadingModel", [](Material& m, RecordView p) { m.shadingModel = TextOf(p); }},
    {"DiffuseColor", [](Material& m, RecordView p) { m.diffuse = VectorOf(p); }},
    {"DiffuseFactor", [](Material& m, RecordView p) { m.diffuseFactor = NumberOf(p); }},
    {"EmissiveColor", [](Material& m, RecordView p) { m.emissive = VectorOf(p); }},
    {"EmissiveFactor", [](Material& m, RecordView p) { m.emissiveFactor = NumberOf(p); }},
    {"SpecularColor", [](Material& m, RecordView p) { m.specular = VectorOf(p); }},
    {"SpecularFactor", [](Material& m, RecordView p) { m.specularFactor = NumberOf(p); }},
    {"Shininess", [](Material& m, RecordView p) { m.shininess = NumberOf(p); }},
    {"ShininessExponent", [](Material& m, RecordView p) { m.shininess = NumberOf(p); }},
    {"TransparencyFactor", [](Material& m, RecordView p) { m.transparencyFactor = NumberOf(p); }},
    {"TransparentColor", [](Material& m, RecordView p) { m.transparentColour = VectorOf(p); }},
};

const PropertyRow<FbxTexture> kTextureRows[] = {
    {"UVSet", [](FbxTexture& t, RecordView p) { t.uvSet = TextOf(p); }},
};

}  // namespace

void ReadMaterialProperties(RecordView owner, SurfaceValues& values) { ReadProperties(owner, kMaterialRows, values); }

void ReadShadingModel(RecordView record, SurfaceValues& values) {
  if (const RecordView leaf = record.Find("ShadingModel")) values.shadingModel = std::string(leaf.Text(0));
  // Files spell them either way.
  if (values.shadingModel == "phong") values.shadingModel = "Phong";
  if (values.shadingModel == "lambert") values.shadingModel = "Lambert";
}

void ReadTexture(RecordView record, FbxTexture& texture) {
  texture.fileName = std::string(record.Find("FileName").Text(0));
  texture.relativeFileName = std::string(record.Find("RelativeFilename").Text(0));
  ReadProperties(record, kTextureRows, texture);
}

}  // namespace tavrilon::fbx
