// SPDX-License-Identifier: MIT
#include "plugin/rig/rig_point.h"

namespace tavrilon {

WStr PointName(const WStr& word, int side, int index, int subIndex) {
  WStr name = side == kSideRight ? L"r_" + word : side == kSideLeft ? L"l_" + word : word;
  if (index >= 0) name += L"_" + std::to_wstring(index + 1);
  if (subIndex >= 0) name += L"_" + std::to_wstring(subIndex + 1);
  return name;
}

int FindPoint(const RigPoints& points, const WStr& name) {
  for (size_t i = 0; i < points.size(); ++i)
    if (points[i].name == name) return static_cast<int>(i);
  return -1;
}

WStr WithoutSide(const WStr& name) {
  const bool sided = name.size() > 2 && name[1] == L'_' && (name[0] == L'r' || name[0] == L'l');
  return sided ? name.substr(2) : name;
}

WStr PointWord(const WStr& name) {
  const WStr word = WithoutSide(name);
  for (size_t i = 1; i + 1 < word.size(); ++i)
    if (word[i] == L'_' && word[i + 1] >= L'0' && word[i + 1] <= L'9') return word.substr(0, i);
  return word;
}

}  // namespace tavrilon
