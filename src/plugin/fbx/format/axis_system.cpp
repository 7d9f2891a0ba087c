// SPDX-License-Identifier: MIT
#include <cstdlib>

#include "plugin/fbx/format/scene.h"

namespace tavrilon::fbx {

bool FbxAxisSystem::IsSound() const {
  const auto isAxis = [](int axis) { return axis >= 0 && axis <= 2; };
  const auto isSign = [](int sign) { return std::abs(sign) == 1; };
  return isAxis(up) && isAxis(front) && isAxis(coord) && up != front && front != coord && coord != up &&
         isSign(upSign) && isSign(frontSign) && isSign(coordSign);
}

Affine FbxAxisSystem::ConversionTo(const FbxAxisSystem& to) const {
  if (!IsSound() || !to.IsSound()) return {};
  Affine m{};
  const auto turn = [&m](int from, int fromSign, int onto, int ontoSign) {
    Vector3 image;
    image[static_cast<size_t>(onto)] = fromSign * ontoSign;
    m.row[from] = image;
  };
  turn(up, upSign, to.up, to.upSign);
  turn(front, frontSign, to.front, to.frontSign);
  turn(coord, coordSign, to.coord, to.coordSign);
  return m;
}

bool FbxAxisSystem::ConvertScene(FbxScene& scene) const {
  FbxGlobalSettings& settings = scene.GetGlobalSettings();
  if (!IsSound() || !settings.GetAxisSystem().IsSound()) return false;
  const Affine turn = settings.GetAxisSystem().ConversionTo(*this);
  scene.topConversion = scene.topConversion * turn;
  for (FbxPose* pose : scene.Poses()) {
    for (FbxPose::Entry& entry : pose->entries) entry.matrix = entry.matrix * turn;
  }
  for (const std::unique_ptr<FbxObject>& object : scene.Objects()) {
    auto* skin = dynamic_cast<FbxSkin*>(object.get());
    if (!skin) continue;
    // A cluster's other matrix leads from mesh to bone, which both turn.
    for (FbxCluster& cluster : skin->clusters) cluster.transformLink = cluster.transformLink * turn;
  }
  settings.SetAxisSystem(*this);
  return true;
}

}  // namespace tavrilon::fbx
