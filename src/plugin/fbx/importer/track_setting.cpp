// SPDX-License-Identifier: MIT
#include "plugin/fbx/importer/track_setting.h"

#include "host/anim/class_ids.h"
#include "host/anim/key_control.h"
#include "host/core/class_desc.h"
#include "plugin/frame/class_table.h"

namespace tavrilon::fbx_import {

using namespace corvanta;

namespace {

Ref<Control> MakeControl(SClass_ID superClass, Class_ID id) {
  const Ref<ReferenceTarget> made(CreateInstance(superClass, id));
  return made ? made->AsControl() : nullptr;
}

template <class Key>
bool SetKeys(Control& control, const std::vector<Key>& keys) {
  IKeyControl* to = GetKeyControl(&control);
  if (!to || to->GetKeySize() != static_cast<int>(sizeof(Key))) return false;
  to->SetNumKeys(static_cast<int>(keys.size()));
  for (size_t i = 0; i < keys.size(); ++i) to->SetKey(static_cast<int>(i), &keys[i]);
  to->SortKeys();
  return true;
}

/// The constant is set as well: it is what remains when a user deletes the keys.
template <class Track, class Value>
Ref<Control> MakeTrack(SClass_ID superClass, Class_ID id, const Track& track, Value value) {
  Ref<Control> control = MakeControl(superClass, id);
  if (!control) return nullptr;
  control->SetValue(0, value, true, CTRL_ABSOLUTE);
  if (!track.keys.empty() && !SetKeys(*control, track.keys)) return nullptr;
  return control;
}

Ref<Control> MakeRotation(const FloatTrack (&tracks)[3]) {
  Ref<Control> rotation = MakeControl(kRotationControlSuper, ClassIdOf(TavrilonClass::RotationXYZ));
  for (int axis = 0; rotation && axis < 3; ++axis) {
    const Ref<Control> track = MakeFloatTrack(tracks[axis]);
    if (!track || !rotation->AssignController(track.Get(), axis)) return nullptr;
  }
  return rotation;
}

}  // namespace

Ref<Control> MakeFloatTrack(const FloatTrack& track) {
  return MakeTrack(kFloatControlSuper, kBezierFloatId, track, track.value);
}

Ref<Control> MakeTransform(const PlannedTransform& transform) {
  const Ref<Control> position =
      MakeTrack(kPositionControlSuper, kBezierPositionId, transform.position, transform.position.value);
  const Ref<Control> rotation = MakeRotation(transform.rotation);
  const Ref<Control> scale =
      MakeTrack(kScaleControlSuper, kBezierScaleId, transform.scale, ScaleValue{transform.scale.value, {}});
  Ref<Control> prs = MakeControl(kMatrixControlSuper, kPrsId);
  if (!prs || !position || !rotation || !scale) return nullptr;
  const bool set = prs->SetPositionController(position.Get()) && prs->SetRotationController(rotation.Get()) &&
                   prs->SetScaleController(scale.Get());
  return set ? prs : nullptr;
}

}  // namespace tavrilon::fbx_import
