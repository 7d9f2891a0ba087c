// SPDX-License-Identifier: MIT
#include "plugin/frame/resource.h"

#include <cwchar>
#include <iterator>

namespace tavrilon {

namespace {

struct ResText {
  int id;
  const wchar_t* text;
};
constexpr ResText kTexts[] = {
    {kStrParameterChange, L"Parameter Change"},
    {kStrNone, L"None"},
    {kStrAnimationLayersChange, L"Animation Layers Change"},
    {kStrBaseLayer, L"Base Layer"},
    {kStrAnimLayer, L"Anim Layer"},
    {kStrSelectObject, L"Select Object"},
    {kStrResetFigure, L"Reset Figure"},
    {kStrChangeEulerOrder, L"Change Euler Order"},
    {kStrFigureModeOn, L"FIGURE MODE ON"},
};

void* module_handle = nullptr;

}  // namespace

void SetModuleHandle(void* handle) { module_handle = handle; }
void* GetModuleHandle() { return module_handle; }

const wchar_t* LoadResString(int id) {
  static wchar_t buffer[512];
  if (!module_handle) return nullptr;
  for (const ResText& row : kTexts) {
    if (row.id != id) continue;
    std::wcsncpy(buffer, row.text, std::size(buffer) - 1);
    return buffer;
  }
  return nullptr;
}

}  // namespace tavrilon
