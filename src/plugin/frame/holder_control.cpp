// SPDX-License-Identifier: MIT
#include "plugin/frame/holder_control.h"

#include "host/scene/core_interface.h"

namespace tavrilon {

using namespace corvanta;

namespace {

struct HolderPlace {
  const wchar_t* name;
  TavrilonClass row;
  /// The tag of the item; the lookup goes by the name and the class instead.
  Class_ID tag;
};
constexpr HolderPlace kPanels{L"UIPanelManager", TavrilonClass::UIPanelHolder, ClassIdOf(TavrilonClass::UIPanel)};
constexpr HolderPlace kPoseKits{L"PoseManager", TavrilonClass::PoseKitHolder, ClassIdOf(TavrilonClass::PoseKit)};

ReferenceTarget* FindOrMake(const HolderPlace& place) {
  TrackViewNode* root = GetCOREInterface()->GetTrackViewRootNode();
  if (!root) return nullptr;
  for (int i = 0; i < root->NumItems(); ++i)
    if (root->GetName(i) == place.name && IsOfClass(root->GetItem(i), place.row)) return root->GetItem(i);
  ReferenceTarget* holder = DescOf(place.row).Create();
  root->AddItem(holder, place.name, place.tag);
  return holder;
}

}  // namespace

ReferenceTarget* GetUIPanelHolder() { return FindOrMake(kPanels); }
ReferenceTarget* GetPoseKitHolder() { return FindOrMake(kPoseKits); }

ReferenceTarget* CreateUIPanelHolder(bool) { return new HolderControl(TavrilonClass::UIPanelHolder); }
ReferenceTarget* CreatePoseKitHolder(bool) { return new HolderControl(TavrilonClass::PoseKitHolder); }

}  // namespace tavrilon
