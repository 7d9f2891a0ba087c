// SPDX-License-Identifier: MIT
#include "plugin/fbx/importer/material_building.h"

namespace tavrilon::fbx_import {

using namespace corvanta;

namespace {

void SetMap(ParamBlock2& block, ParamID id, const std::optional<PlannedBitmap>& planned) {
  if (!planned) return;
  const Ref<BitmapMap> map(new BitmapMap);
  map->GetParamBlock()->SetValue(BitmapMap::kFileName, 0, planned->file);
  map->GetParamBlock()->SetValue(BitmapMap::kMapChannel, 0, planned->mapChannel);
  block.SetValue(id, 0, static_cast<ReferenceTarget*>(map.Get()));
}

Ref<Mtl> Build(const PlannedMaterial& planned) {
  using P = PhysicalMaterial;
  const Ref<P> material(new P);
  material->SetName(planned.name);
  ParamBlock2& block = *material->GetParamBlock();
  block.SetValue(P::kBaseColor, 0, planned.base);
  block.SetValue(P::kRoughness, 0, planned.roughness);
  block.SetValue(P::kTransparency, 0, planned.transparency);
  block.SetValue(P::kEmission, 0, planned.emissionAmount);
  block.SetValue(P::kEmitColor, 0, planned.emission);
  SetMap(block, P::kBaseColorMap, planned.baseMap);
  SetMap(block, P::kCutoutMap, planned.cutoutMap);
  SetMap(block, P::kBumpMap, planned.bumpMap);
  return material.Get();
}

}  // namespace

std::vector<Ref<Mtl>> BuildMaterials(const std::vector<PlannedMaterial>& planned) {
  std::vector<Ref<Mtl>> materials;
  for (const PlannedMaterial& material : planned) materials.push_back(Build(material));
  return materials;
}

Ref<Mtl> MaterialOf(const std::vector<int>& numbers, const std::vector<Ref<Mtl>>& materials, const WStr& name) {
  if (numbers.size() == 1) return materials[static_cast<size_t>(numbers[0])];
  const Ref<MultiMaterial> list(new MultiMaterial);
  list->SetName(name);
  for (const int number : numbers) list->AppendSubMtl(materials[static_cast<size_t>(number)].Get());
  return list.Get();
}

}  // namespace tavrilon::fbx_import
