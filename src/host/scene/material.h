// SPDX-License-Identifier: MIT
// Materials and texture maps: what a mesh's polygons look like, and what goes to other programs with it. All values
// are in parameter blocks; nothing here renders but the base colour.
#pragma once

#include "host/core/block_owner.h"
#include "host/maths/colour.h"

namespace corvanta {

/// Base of materials and maps: a name and one parameter block. References: 0 the block.
class MaterialBase : public BlockOwner<ReferenceTarget> {
 public:
  const WStr& GetName() const { return name_; }
  /// Undoable.
  void SetName(const WStr& name);
  ParamBlock2* GetParamBlock() const { return block_; }

  IOResult Save(ISave& save) override;
  IOResult Load(ILoad& load) override;
  void CopyStateFrom(ReferenceTarget& source, RemapDir& remap) override;
  void StateRestored() { NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE); }

 protected:
  /// Without a block, for placeholders of unknown classes.
  MaterialBase() = default;
  MaterialBase(const ParamBlockDesc2& desc, bool loading) : BlockOwner(desc, loading) {}

 private:
  WStr name_;
};

class Mtl : public MaterialBase {
 public:
  using MaterialBase::MaterialBase;
  SClass_ID SuperClassID() const override { return kMaterialSuper; }
  /// The colour that polygons of material ID `id` are drawn with.
  virtual Colour DisplayColour(TimeValue t, int id) = 0;
  /// Materials of a list of such; 0 for one that is none.
  virtual int NumSubMtls() const { return 0; }
  virtual Mtl* GetSubMtl(int i) const { return nullptr; }
};

class Texmap : public MaterialBase {
 public:
  using MaterialBase::MaterialBase;
  SClass_ID SuperClassID() const override { return kTextureMapSuper; }
};

/// Parameters: base_color, base_color_map, base_color_map_on, roughness, metalness, transparency, cutout_map,
/// cutout_map_on, geometry_opacity_map, geometry_opacity_map_on, bump_map, bump_map_on, emission, emit_color.
class PhysicalMaterial final : public Mtl {
 public:
  enum Param : ParamID {
    kBaseColor = 0,
    kBaseColorMap = 1,
    kBaseColorMapOn = 2,
    kRoughness = 3,
    kMetalness = 4,
    kTransparency = 5,
    kCutoutMap = 6,
    kCutoutMapOn = 7,
    kGeometryOpacityMap = 8,
    kGeometryOpacityMapOn = 9,
    kBumpMap = 10,
    kBumpMapOn = 11,
    kEmission = 12,
    kEmitColor = 13,
  };
  explicit PhysicalMaterial(bool loading = false) : Mtl(BlockDesc(), loading) {}
  static constexpr Class_ID kClassId{kHostClassWord, 0x140};
  Class_ID ClassID() const override { return kClassId; }
  WStr GetClassName() const override { return L"PhysicalMaterial"; }
  static const ParamBlockDesc2& BlockDesc();
  Colour DisplayColour(TimeValue t, int id) override;
};

/// A list of materials, taken by material ID (modulo its length). Parameter: materials, a tab.
class MultiMaterial final : public Mtl {
 public:
  enum Param : ParamID { kMaterials = 0 };
  explicit MultiMaterial(bool loading = false) : Mtl(BlockDesc(), loading) {}
  static constexpr Class_ID kClassId{kHostClassWord, 0x141};
  Class_ID ClassID() const override { return kClassId; }
  WStr GetClassName() const override { return L"MultiMaterial"; }
  static const ParamBlockDesc2& BlockDesc();
  Colour DisplayColour(TimeValue t, int id) override;
  int NumSubMtls() const override;
  Mtl* GetSubMtl(int i) const override;
  /// Undoable.
  void AppendSubMtl(Mtl* material);
};

/// A picture file. Parameters: filename, map_channel.
class BitmapMap final : public Texmap {
 public:
  enum Param : ParamID { kFileName = 0, kMapChannel = 1 };
  explicit BitmapMap(bool loading = false) : Texmap(BlockDesc(), loading) {}
  static constexpr Class_ID kClassId{kHostClassWord, 0x142};
  Class_ID ClassID() const override { return kClassId; }
  WStr GetClassName() const override { return L"Bitmap"; }
  static const ParamBlockDesc2& BlockDesc();
};

/// Two colours or maps, mixed by an amount or a mask. Parameters: color1, color2, map1, map2, mask, mix_amount, output.
class BlendMap final : public Texmap {
 public:
  enum Param : ParamID {
    kColor1 = 0,
    kColor2 = 1,
    kMap1 = 2,
    kMap2 = 3,
    kMask = 4,
    kMixAmount = 5,
    kOutput = 6,
  };
  explicit BlendMap(bool loading = false) : Texmap(BlockDesc(), loading) {}
  static constexpr Class_ID kClassId{kHostClassWord, 0x143};
  Class_ID ClassID() const override { return kClassId; }
  WStr GetClassName() const override { return L"Blend"; }
  static const ParamBlockDesc2& BlockDesc();
};

}  // namespace corvanta
