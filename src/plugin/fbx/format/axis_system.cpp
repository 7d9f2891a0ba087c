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

}  // namespace tavrilon::fbx
