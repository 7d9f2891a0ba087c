// SPDX-License-Identifier: MIT
#include "host/scene/material.h"

#include "host/core/class_desc.h"
#include "host/core/state_restore.h"

namespace corvanta {

namespace {

/// A slot for objects of one kind; empty is fine too.
template <class T>
class KindValidator final : public PBValidator {
 public:
  bool Validate(ReferenceTarget*, ParamID, ReferenceTarget* candidate) override {
    return !candidate || dynamic_cast<T*>(candidate);
  }
};
KindValidator<Texmap> mapsOnly;
KindValidator<Mtl> materialsOnly;

constexpr auto Bool = ParamType::Bool;
constexpr auto Float = ParamType::Float;
constexpr auto Tint = ParamType::Colour;
constexpr auto Target = ParamType::RefTarg;

constexpr ParamRow MapRow(ParamID id, const wchar_t* name, const wchar_t* label) {
  return {id, name, Target, kNone, {}, {}, label, 0, nullptr, &mapsOnly};
}

// clang-format off
constexpr ParamRow kPhysicalRows[] = {
    // id                                     name                   type   flags        default             range   label
    {PhysicalMaterial::kBaseColor,          L"base_color",         Tint,  kAnimatable, {0.5f, 0.5f, 0.5f}, {},     L"Base Color"},
    MapRow(PhysicalMaterial::kBaseColorMap, L"base_color_map", L"Base Color Map"),
    {PhysicalMaterial::kBaseColorMapOn,     L"base_color_map_on",  Bool,  kNone,       true,               {},     L"Base Color Map On"},
    {PhysicalMaterial::kRoughness,          L"roughness",          Float, kAnimatable, 0.3f,               {0, 1}, L"Roughness"},
    {PhysicalMaterial::kMetalness,          L"metalness",          Float, kAnimatable, 0.0f,               {0, 1}, L"Metalness"},
    {PhysicalMaterial::kTransparency,       L"transparency",       Float, kAnimatable, 0.0f,               {0, 1}, L"Transparency"},
    MapRow(PhysicalMaterial::kCutoutMap, L"cutout_map", L"Cutout Map"),
    {PhysicalMaterial::kCutoutMapOn,        L"cutout_map_on",      Bool,  kNone,       true,               {},     L"Cutout Map On"},
    MapRow(PhysicalMaterial::kGeometryOpacityMap, L"geometry_opacity_map", L"Opacity Map"),
    {PhysicalMaterial::kGeometryOpacityMapOn, L"geometry_opacity_map_on", Bool, kNone, true,               {},     L"Opacity Map On"},
    MapRow(PhysicalMaterial::kBumpMap, L"bump_map", L"Bump Map"),
    {PhysicalMaterial::kBumpMapOn,          L"bump_map_on",        Bool,  kNone,       true,               {},     L"Bump Map On"},
    {PhysicalMaterial::kEmission,           L"emission",           Float, kAnimatable, 0.0f,               {0, 1}, L"Emission"},
    {PhysicalMaterial::kEmitColor,          L"emit_color",         Tint,  kAnimatable, {1, 1, 1},          {},     L"Emission Color"},
};

constexpr ParamRow kMultiRows[] = {
    {MultiMaterial::kMaterials, L"materials", Target, kTab, {}, {}, L"Materials", 0, nullptr, &materialsOnly},
};

constexpr ParamRow kBitmapRows[] = {
    {BitmapMap::kFileName,   L"filename",    ParamType::FileName, kNone, L"", {},      L"File"},
    {BitmapMap::kMapChannel, L"map_channel", ParamType::Int,      kNone, 1,   {0, 99}, L"Map Channel"},
};

constexpr ParamRow kBlendRows[] = {
    {BlendMap::kColor1,    L"color1",     Tint,  kAnimatable, {0, 0, 0}, {},     L"Color 1"},
    {BlendMap::kColor2,    L"color2",     Tint,  kAnimatable, {1, 1, 1}, {},     L"Color 2"},
    MapRow(BlendMap::kMap1, L"map1", L"Map 1"),
    MapRow(BlendMap::kMap2, L"map2", L"Map 2"),
    MapRow(BlendMap::kMask, L"mask", L"Mask"),
    {BlendMap::kMixAmount, L"mix_amount", Float, kAnimatable, 0.0f,      {0, 1}, L"Mix Amount"},
    {BlendMap::kOutput,    L"output",     Float, kAnimatable, 1.0f,      {0, 1e30f}, L"Output"},
};
// clang-format on

template <class T>
ReferenceTarget* Create(bool loading) {
  return new T(loading);
}

const ClassDesc kDescs[] = {
    {L"PhysicalMaterial", L"PhysicalMaterial", kMaterialSuper, PhysicalMaterial::kClassId, L"Standard", true,
     Create<PhysicalMaterial>},
    {L"MultiMaterial", L"MultiMaterial", kMaterialSuper, MultiMaterial::kClassId, L"Standard", true,
     Create<MultiMaterial>},
    {L"Bitmap", L"Bitmap", kTextureMapSuper, BitmapMap::kClassId, L"Standard", true, Create<BitmapMap>},
    {L"Blend", L"Blend", kTextureMapSuper, BlendMap::kClassId, L"Standard", true, Create<BlendMap>},
};
const HostClassRegistrar kRegistrar([] {
  for (const ClassDesc& desc : kDescs) ClassDirectory::Get().Register(&desc);
});

enum : uint16_t { kNameChunk = 1 };

constexpr Colour kGrey{0.5f, 0.5f, 0.5f};

}  // namespace

void MaterialBase::SetName(const WStr& name) {
  if (name_ == name) return;
  RecordState(this, &MaterialBase::name_);
  name_ = name;
  StateRestored();
}

IOResult MaterialBase::Save(ISave& save) {
  save.BeginChunk(kNameChunk);
  save.WriteWStr(name_);
  save.EndChunk();
  return save.Status();
}

IOResult MaterialBase::Load(ILoad& load) {
  while (load.OpenChunk() == IOResult::OK) {
    if (load.CurChunkID() == kNameChunk) load.ReadWStr(name_);
    load.CloseChunk();
  }
  return load.Status();
}

void MaterialBase::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  name_ = static_cast<MaterialBase&>(source).name_;
}

const ParamBlockDesc2& PhysicalMaterial::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"parameters", kPhysicalRows);
  return desc;
}
const ParamBlockDesc2& MultiMaterial::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"parameters", kMultiRows);
  return desc;
}
const ParamBlockDesc2& BitmapMap::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"parameters", kBitmapRows);
  return desc;
}
const ParamBlockDesc2& BlendMap::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"parameters", kBlendRows);
  return desc;
}

Colour PhysicalMaterial::DisplayColour(TimeValue t, int) {
  return GetParamBlock() ? GetParamBlock()->GetColour(kBaseColor, t) : kGrey;
}

int MultiMaterial::NumSubMtls() const { return GetParamBlock() ? GetParamBlock()->Count(kMaterials) : 0; }

// A file may have anything in the list.
Mtl* MultiMaterial::GetSubMtl(int i) const {
  if (i < 0 || i >= NumSubMtls()) return nullptr;
  return dynamic_cast<Mtl*>(GetParamBlock()->GetReferenceTarget(kMaterials, 0, i));
}

void MultiMaterial::AppendSubMtl(Mtl* material) {
  const Ref<Mtl> keep(material);
  GetParamBlock()->Append(kMaterials, static_cast<ReferenceTarget*>(material));
}

Colour MultiMaterial::DisplayColour(TimeValue t, int id) {
  const int count = NumSubMtls();
  Mtl* material = count > 0 && id >= 0 ? GetSubMtl(id % count) : nullptr;
  return material ? material->DisplayColour(t, id) : kGrey;
}

}  // namespace corvanta
