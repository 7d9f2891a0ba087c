// SPDX-License-Identifier: MIT
// The table of the host's controller classes, and what is asked of any controller.
#include "host/anim/euler_control.h"
#include "host/anim/keyframe_control.h"
#include "host/anim/list_control.h"
#include "host/anim/position_xyz_control.h"
#include "host/anim/prs_control.h"
#include "host/core/class_desc.h"

namespace corvanta {
namespace {

constexpr KeyframeClass kBezierFloat{L"Bezier Float", kFloatControlSuper, kBezierFloatId};
constexpr KeyframeClass kBezierPosition{L"Bezier Position", kPositionControlSuper, kBezierPositionId};
constexpr KeyframeClass kBezierPoint3{L"Bezier Point3", kPoint3ControlSuper, kBezierPoint3Id};
constexpr KeyframeClass kBezierColour{L"Bezier Colour", kPoint3ControlSuper, kBezierColourId};
constexpr KeyframeClass kBezierScale{L"Bezier Scale", kScaleControlSuper, kBezierScaleId};
constexpr KeyframeClass kBezierPoint4{L"Bezier Point4", kPoint4ControlSuper, kBezierPoint4Id};
constexpr KeyframeClass kBezierRgba{L"Bezier RGBA", kPoint4ControlSuper, kBezierRgbaId};
constexpr KeyframeClass kTcbFloat{L"TCB Float", kFloatControlSuper, kTcbFloatId};
constexpr KeyframeClass kTcbPosition{L"TCB Position", kPositionControlSuper, kTcbPositionId};
constexpr KeyframeClass kTcbRotation{L"TCB Rotation", kRotationControlSuper, kTcbRotationId};
constexpr KeyframeClass kTcbScale{L"TCB Scale", kScaleControlSuper, kTcbScaleId};

constexpr ListClass kPositionList{L"Position List", kPositionControlSuper, kPositionListId,
                                  NewDefaultPositionController};
constexpr ListClass kRotationList{L"Rotation List", kRotationControlSuper, kRotationListId,
                                  NewDefaultRotationController};
constexpr ListClass kScaleList{L"Scale List", kScaleControlSuper, kScaleListId, NewDefaultScaleController};
constexpr ListClass kFloatList{L"Float List", kFloatControlSuper, kFloatListId, NewDefaultFloatController};
constexpr ListClass kTransformList{L"Transform List", kMatrixControlSuper, kTransformListId,
                                   NewDefaultMatrix3Controller};

template <class Key, const KeyframeClass& row>
ReferenceTarget* CreateKeyframe(bool) {
  return new KeyframeControl<Key>(row);
}
template <const ListClass& row>
ReferenceTarget* CreateList(bool loading) {
  return new ListControl(row, loading);
}
template <class T>
ReferenceTarget* CreateComposite(bool loading) {
  return new T(loading);
}
ReferenceTarget* CreateTrackCurves(bool) { return new TrackCurves; }

template <class Key, const KeyframeClass& row>
constexpr ClassDesc KeyframeDesc(const wchar_t* internalName) {
  return {row.name, internalName, row.superClass, row.id, L"Controllers", true, CreateKeyframe<Key, row>};
}
template <const ListClass& row>
constexpr ClassDesc ListDesc(const wchar_t* internalName) {
  return {row.name, internalName, row.superClass, row.id, L"Controllers", true, CreateList<row>};
}

const ClassDesc kDescs[] = {
    KeyframeDesc<IBezFloatKey, kBezierFloat>(L"bezier_float"),
    KeyframeDesc<IBezPoint3Key, kBezierPosition>(L"bezier_position"),
    KeyframeDesc<IBezPoint3Key, kBezierPoint3>(L"bezier_point3"),
    KeyframeDesc<IBezPoint3Key, kBezierColour>(L"bezier_color"),
    KeyframeDesc<IBezScaleKey, kBezierScale>(L"bezier_scale"),
    KeyframeDesc<IBezPoint4Key, kBezierPoint4>(L"bezier_point4"),
    KeyframeDesc<IBezPoint4Key, kBezierRgba>(L"bezier_rgba"),
    KeyframeDesc<ITCBFloatKey, kTcbFloat>(L"tcb_float"),
    KeyframeDesc<ITCBPoint3Key, kTcbPosition>(L"tcb_position"),
    KeyframeDesc<ITCBRotKey, kTcbRotation>(L"tcb_rotation"),
    KeyframeDesc<ITCBScaleKey, kTcbScale>(L"tcb_scale"),
    ListDesc<kPositionList>(L"position_list"),
    ListDesc<kRotationList>(L"rotation_list"),
    ListDesc<kScaleList>(L"scale_list"),
    ListDesc<kFloatList>(L"float_list"),
    ListDesc<kTransformList>(L"transform_list"),
    {L"Euler XYZ", L"euler_xyz", kRotationControlSuper, kEulerXyzId, L"Controllers", true,
     CreateComposite<EulerControl>},
    {L"Position/Rotation/Scale", L"prs", kMatrixControlSuper, kPrsId, L"Controllers", true,
     CreateComposite<PrsControl>},
    {L"Position XYZ", L"position_xyz", kPositionControlSuper, kPositionXyzId, L"Controllers", true,
     CreateComposite<PositionXyzControl>},
    {L"Track Curves", L"TrackCurves", kReferenceTargetSuper, kTrackCurvesId, L"", false, CreateTrackCurves},
};

const HostClassRegistrar kRegistrar([] {
  for (const ClassDesc& desc : kDescs) ClassDirectory::Get().Register(&desc);
});

template <class Key>
bool ReduceOne(Control* control, float threshold, TimeValue step, const Interval& range, int& gone) {
  auto* track = dynamic_cast<KeyframeControl<Key>*>(control);
  if (track) gone = track->Reduce(threshold, step, range);
  return track != nullptr;
}
template <class... Keys>
int ReduceAny(Control* control, float threshold, TimeValue step, const Interval& range) {
  int gone = -1;
  (ReduceOne<Keys>(control, threshold, step, range, gone) || ...);
  return gone;
}

}  // namespace

IKeyControl* GetKeyControl(Animatable* anim) {
  return anim ? static_cast<IKeyControl*>(anim->GetInterface(I_KEYCONTROL)) : nullptr;
}
ICurveList* GetEaseList(Animatable* anim) {
  return anim ? static_cast<ICurveList*>(anim->GetInterface(I_EASELIST)) : nullptr;
}
ICurveList* GetMultiplierList(Animatable* anim) {
  return anim ? static_cast<ICurveList*>(anim->GetInterface(I_MULTLIST)) : nullptr;
}

Control* NewEaseCurve(const Interval& range) {
  Control* curve = NewDefaultFloatController();
  for (const TimeValue t : {range.start, range.end}) {
    IBezFloatKey key;
    key.time = t;
    key.flags = TangentFlags(Tangent::Linear, Tangent::Linear);
    key.value = static_cast<float>(t);
    GetKeyControl(curve)->AppendKey(&key);
  }
  curve->SetORT(ORT::Linear, false);
  curve->SetORT(ORT::Linear, true);
  return curve;
}

Control* NewMultiplierCurve() {
  auto* curve = new KeyframeControl<IBezFloatKey>(kBezierFloat);
  curve->SetConstant(1);
  return curve;
}

int ReduceKeys(Control* control, float threshold, TimeValue step, const Interval& range) {
  return ReduceAny<IBezFloatKey, IBezPoint3Key, IBezPoint4Key, IBezScaleKey, ITCBFloatKey, ITCBPoint3Key, ITCBRotKey,
                   ITCBScaleKey>(control, threshold, step, range);
}

}  // namespace corvanta
