// SPDX-License-Identifier: MIT
#include "plugin/rig/panel_record.h"

#include <cmath>

namespace tavrilon {

using namespace corvanta;

namespace {

/// Panel places are told to a tenth of a unit.
WStr Number(float value) {
  const long tenths = std::lround(value * 10);
  WStr text = std::to_wstring(std::labs(tenths) / 10);
  if (tenths % 10 != 0) text += L"." + std::to_wstring(std::labs(tenths) % 10);
  return tenths < 0 ? L"-" + text : text;
}

WStr Line(const wchar_t* kind, const WStr& label, const PanelRect& r) {
  return WStr(kind) + L" \"" + label + L"\" at " + Number(r.x) + L", " + Number(r.y) + L" size " + Number(r.width) +
         L" x " + Number(r.height);
}

WStr NodeName(const PanelLink<INode>& link) {
  const INode* node = link.Get();
  return node ? node->GetName() : WStr(L"(gone)");
}

WStr Nodes(const std::vector<PanelLink<INode>>& nodes) {
  if (nodes.size() == 1) return L": " + NodeName(nodes.front());
  return L": " + std::to_wstring(nodes.size()) + L" nodes";
}

WStr Bound(const PanelSpinner& spinner) {
  const ParamBlock2* block = spinner.block.Get();
  const ParamRow* row = block ? block->GetParamDef(spinner.param) : nullptr;
  WStr text = L": " + NodeName(spinner.node) + L" " + (row ? row->name : L"(gone)");
  if (spinner.min != spinner.max) text += L", " + Number(spinner.min) + L" to " + Number(spinner.max);
  return text + L", initially " + Number(spinner.initial);
}

}  // namespace

std::vector<WStr> PanelParts(const PanelRecord& record) {
  std::vector<WStr> lines;
  const auto button = [&](const PanelButton& b) {
    lines.push_back(Line(L"button", b.label, b.rect) + (b.node.Get() ? L": " + NodeName(b.node) : WStr()));
  };
  for (const PanelPicker& p : record.pickers) lines.push_back(Line(L"picker", p.label, p.rect) + Nodes(p.nodes));
  for (const PanelVisibility& v : record.visibility)
    lines.push_back(Line(L"visibility", v.label, v.rect) + Nodes(v.nodes));
  for (const PanelButton& b : record.buttons) button(b);
  for (const PanelGroup& group : record.groups) {
    lines.push_back(Line(L"group", group.title, group.rect));
    for (const PanelButton& b : group.buttons) button(b);
    for (const PanelSpinner& s : group.spinners) lines.push_back(Line(L"spinner", s.label, s.rect) + Bound(s));
  }
  return lines;
}

}  // namespace tavrilon
