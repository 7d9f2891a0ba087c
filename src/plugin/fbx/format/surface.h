// SPDX-License-Identifier: MIT
// Materials and textures.
#pragma once

#include <vector>

#include "plugin/fbx/format/affine.h"
#include "plugin/fbx/format/object.h"

namespace tavrilon::fbx {

class FbxTexture final : public FbxObject {
 public:
  static FbxTexture* Create(FbxScene& scene, std::string name);
  /// As the file has it, with its own slashes; and relative to the file.
  std::string fileName, relativeFileName;
  std::string uvSet;

 private:
  using FbxObject::FbxObject;
};

/// What a material says of itself.
struct SurfaceValues {
  /// "Lambert", "Phong", or another program's word.
  std::string shadingModel = "Phong";
  Vector3 diffuse{0.8, 0.8, 0.8};
  double diffuseFactor = 1;
  Vector3 emissive;
  double emissiveFactor = 1;
  Vector3 specular{0.2, 0.2, 0.2};
  double specularFactor = 1;
  double shininess = 20;
  double transparencyFactor = 0;
  Vector3 transparentColour{1, 1, 1};
};

class FbxSurfaceMaterial final : public FbxObject, public SurfaceValues {
 public:
  static FbxSurfaceMaterial* Create(FbxScene& scene, std::string name);

  /// A texture on a property: "DiffuseColor", "TransparentColor", "Bump", "NormalMap"...
  struct TextureLink {
    std::string property;
    FbxTexture* texture;
  };
  std::vector<TextureLink> textures;

 private:
  using FbxObject::FbxObject;
  void Unlink(const FbxObject& gone) override;
};

}  // namespace tavrilon::fbx
