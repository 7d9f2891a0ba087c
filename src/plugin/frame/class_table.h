// SPDX-License-Identifier: MIT
// The classes of the plug-in: one table, through which the host creates every object. Its order is fixed, since hosts
// ask for rows by number. A Class_ID is unique only together with its super class: three pairs are used twice.
#pragma once

#include "host/core/class_desc.h"
#include "plugin/frame/class_factories.h"

namespace tavrilon {

/// The rows of the class table by name.
enum class TavrilonClass : int {
  StaticFloat,
  StepFloat,
  MsgChecker,
  StretchConstraint,
  AimConstraint,
  FloatExposeTM,
  FloatConnection,
  ScaleConstraint,
  TransformConstraint,
  StaticPosition,
  StaticRotation,
  StaticScale,
  StaticTransform,
  CurveIKControl,
  CurveIKChain,
  ControlHelper,
  UIPanel,
  UIGroup,
  UIImage,
  UIPicker,
  UIVisibility,
  UIToggle,
  UIAction,
  UISlider,
  UI2DSlider,
  UISpinner,
  UI2DSpinner,
  UIPanelHolder,
  Rig,
  RigSystem,
  IKFKChain,
  IKFKControl,
  IKFKLink,
  ParentConstraint,
  RotationSpace,
  PoseKit,
  PoseKitHolder,
  LimbAttrib,
  CurveAttrib,
  HeadAttrib,
  FootAttrib,
  LinkAttrib,
  FloatOperation,
  FloatWave,
  RigControl,
  PositionConnection,
  RotationConnection,
  ScaleConnection,
  MirrorMorph,
  CorrectiveMorph,
  Dynamics,
  AnimationManagerMod,
  RootAttrib,
  RootConstraint,
  TwistPosesFloat,
  TwistPosesRotation,
  UILabel,
  DummyFloat,
  DummyRotation,
  AnimationLayers,
  FloatLayers,
  PositionLayers,
  RotationLayers,
  ScaleLayers,
  ControlShape,
  IKFKDisplayMod,
  AnimLayersLocalWeights,
  RotationXYZ,
  TavrilonFBXExporter,
  TavrilonFBXImporter,
};

inline constexpr int kNumClasses = 70;

// clang-format off
inline constexpr corvanta::ClassDesc kClassTable[kNumClasses] = {
  // class name, internal name, super class, Class_ID, category, public, create (null: not built yet)
  {L"Static Float", L"StaticFloat", corvanta::kFloatControlSuper, {0x45596D56, 0x1E847B36}, L"Animation", true, CreateStaticFloat},
  {L"Step Float", L"StepFloat", corvanta::kFloatControlSuper, {0x45596D56, 0x1E847B37}, L"Animation", true, CreateStepFloat},
  {L"MsgChecker", L"MsgChecker", corvanta::kReferenceTargetSuper, {0x8443DFA5, 0x3F434885}, L"Animation", true, nullptr},
  {L"Stretch Constraint", L"StretchConstraint", corvanta::kMatrixControlSuper, {0x45596D56, 0x1E847B40}, L"Animation", true, nullptr},
  {L"Aim Constraint", L"AimConstraint", corvanta::kRotationControlSuper, {0x45596D56, 0x1E847B39}, L"Animation", true, nullptr},
  {L"Float Expose TM", L"FloatExposeTM", corvanta::kFloatControlSuper, {0x45596D56, 0x1E847B41}, L"Animation", true, CreateFloatExposeTM},
  {L"Float Connection", L"FloatConnection", corvanta::kFloatControlSuper, {0x45596D56, 0x1E847B43}, L"Animation", true, CreateFloatConnection},
  {L"Scale Constraint", L"ScaleConstraint", corvanta::kScaleControlSuper, {0x45596D56, 0x1E847B44}, L"Animation", true, CreateScaleConstraint},
  {L"Transform Constraint", L"TransformConstraint", corvanta::kMatrixControlSuper, {0x45596D56, 0x1E847B45}, L"Animation", true, CreateTransformConstraint},
  {L"Static Position", L"StaticPosition", corvanta::kPositionControlSuper, {0x45596D56, 0x1E847B50}, L"Animation", true, CreateStaticPosition},
  {L"Static Rotation", L"StaticRotation", corvanta::kRotationControlSuper, {0x45596D56, 0x1E847B47}, L"Animation", true, CreateStaticRotation},
  {L"Static Scale", L"StaticScale", corvanta::kScaleControlSuper, {0x45596D56, 0x1E847B48}, L"Animation", true, CreateStaticScale},
  {L"Static Transform", L"StaticTransform", corvanta::kMatrixControlSuper, {0x45596D56, 0x1E847B49}, L"Animation", true, CreateStaticTransform},
  {L"CurveIK Control", L"CurveIKControl", corvanta::kMatrixControlSuper, {0x45596D56, 0x1E847B51}, L"Animation", false, CreateCurveIKControl},
  {L"CurveIK Chain", L"CurveIKChain", corvanta::kMatrixControlSuper, {0x45596D56, 0x1E847B52}, L"Animation", false, CreateCurveIKChain},
  {L"Control Helper", L"ControlHelper", corvanta::kHelperSuper, {0x45596D57, 0x1E847B30}, L"", true, CreateControlHelper},
  {L"UI Panel", L"UIPanel", corvanta::kHelperSuper, {0x45596D56, 0x1E847F00}, L"", true, nullptr},
  {L"UIGroup", L"UIGroup", corvanta::kReferenceTargetSuper, {0x45596D56, 0x1E847F01}, L"Animation", true, nullptr},
  {L"UIImage", L"UIImage", corvanta::kReferenceTargetSuper, {0x45596D56, 0x1E847F03}, L"Animation", true, nullptr},
  {L"UIPicker", L"UIPicker", corvanta::kReferenceTargetSuper, {0x45596D56, 0x1E847F04}, L"Animation", true, nullptr},
  {L"UIVisibility", L"UIVisibility", corvanta::kReferenceTargetSuper, {0x45596D56, 0x1E847F0B}, L"Animation", true, nullptr},
  {L"UIToggle", L"UIToggle", corvanta::kReferenceTargetSuper, {0x45596D56, 0x1E847F05}, L"Animation", true, nullptr},
  {L"Vertical Offset", L"UIAction", corvanta::kReferenceTargetSuper, {0x45596D56, 0x1E847F06}, L"Animation", true, nullptr},
  {L"UISlider", L"UISlider", corvanta::kReferenceTargetSuper, {0x45596D56, 0x1E847F07}, L"Animation", true, nullptr},
  {L"UI2DSlider", L"UI2DSlider", corvanta::kReferenceTargetSuper, {0x45596D56, 0x1E847F08}, L"Animation", true, nullptr},
  {L"UISpinner", L"UISpinner", corvanta::kReferenceTargetSuper, {0x45596D56, 0x1E847F09}, L"Animation", true, nullptr},
  {L"UI2DSpinner", L"UI2DSpinner", corvanta::kReferenceTargetSuper, {0x45596D56, 0x1E847F0A}, L"Animation", true, nullptr},
  {L"UIPanel Holder", L"UIPanelHolder", corvanta::kFloatControlSuper, {0x45596D56, 0x1E847F99}, L"Animation", false, CreateUIPanelHolder},
  {L"Rig", L"Rig", corvanta::kHelperSuper, {0x45596D57, 0x1E847B40}, L"", false, CreateRig},
  {L"Rig", L"Rig", corvanta::kSystemSuper, {0x45596D57, 0x1E847B41}, L"", true, CreateRigSystem},
  {L"IKFK Chain", L"IKFKChain", corvanta::kMatrixControlSuper, {0x45596D56, 0x1E847B60}, L"Animation", false, CreateIKFKChain},
  {L"IKFK Control", L"IKFKControl", corvanta::kMatrixControlSuper, {0x45596D56, 0x1E847B62}, L"Animation", false, CreateIKFKControl},
  {L"IKFK Link", L"IKFKLink", corvanta::kFloatControlSuper, {0x45596D56, 0x1E847B63}, L"Animation", false, CreateIKFKLink},
  {L"Parent Constraint", L"ParentConstraint", corvanta::kMatrixControlSuper, {0x45596D56, 0x1E847B54}, L"Animation", true, CreateParentConstraint},
  {L"Rotation Space", L"RotationSpace", corvanta::kMatrixControlSuper, {0x45596D56, 0x1E847B55}, L"Animation", true, CreateRotationSpace},
  {L"Pose Kit", L"PoseKit", corvanta::kHelperSuper, {0x45596D56, 0x1E847000}, L"", true, nullptr},
  {L"Pose Kit Holder", L"PoseKitHolder", corvanta::kFloatControlSuper, {0x45596D56, 0x1E847F0A}, L"Animation", false, CreatePoseKitHolder},
  {L"LimbAttrib", L"LimbAttrib", corvanta::kCustAttribSuper, {0x45596D56, 0x1E848001}, L"", true, CreateLimbAttrib},
  {L"CurveAttrib", L"CurveAttrib", corvanta::kCustAttribSuper, {0x45596D56, 0x1E848002}, L"", true, CreateCurveAttrib},
  {L"HeadAttrib", L"HeadAttrib", corvanta::kCustAttribSuper, {0x45596D56, 0x1E848003}, L"", true, CreateHeadAttrib},
  {L"FootAttrib", L"FootAttrib", corvanta::kCustAttribSuper, {0x45596D56, 0x1E848004}, L"", true, CreateFootAttrib},
  {L"LinkAttrib", L"LinkAttrib", corvanta::kCustAttribSuper, {0x45596D56, 0x1E848005}, L"", true, CreateLinkAttrib},
  {L"Float Operation", L"FloatOperation", corvanta::kFloatControlSuper, {0x45596D56, 0x1E847B56}, L"Animation", true, CreateFloatOperation},
  {L"Float Wave", L"FloatWave", corvanta::kFloatControlSuper, {0x45596D56, 0x1E847B57}, L"Animation", true, CreateFloatWave},
  {L"Rig Transform", L"RigTransform", corvanta::kMatrixControlSuper, {0x45596D56, 0x1E847B58}, L"Animation", true, CreateRigControl},
  {L"Position Connection", L"PositionConnection", corvanta::kPositionControlSuper, {0x45596D56, 0x1E847B59}, L"Animation", true, CreatePositionConnection},
  {L"Rotation Connection", L"RotationConnection", corvanta::kRotationControlSuper, {0x45596D56, 0x1E847B60}, L"Animation", true, CreateRotationConnection},
  {L"Scale Connection", L"ScaleConnection", corvanta::kScaleControlSuper, {0x45596D56, 0x1E847B61}, L"Animation", true, CreateScaleConnection},
  {L"Mirror Morph", L"MirrorMorph", corvanta::kModifierSuper, {0x45596D58, 0x1E847B01}, L"", true, nullptr},
  {L"CorrectiveMorph", L"CorrectiveMorph", corvanta::kModifierSuper, {0x45596D58, 0x1E847B02}, L"", true, nullptr},
  {L"Dynamics", L"Dynamics", corvanta::kHelperSuper, {0x45596D56, 0x1E847001}, L"", false, nullptr},
  {L"Animation Manager", L"AnimationManagerMod", corvanta::kModifierSuper, {0x45596D58, 0x1E847B03}, L"", true, CreateAnimationManagerMod},
  {L"RootAttrib", L"RootAttrib", corvanta::kCustAttribSuper, {0x45596D56, 0x1E848006}, L"", true, CreateRootAttrib},
  {L"Root Constraint", L"RootConstraint", corvanta::kMatrixControlSuper, {0x45596D56, 0x1E847B64}, L"Animation", true, CreateRootConstraint},
  {L"Twist Poses Float", L"TwistPosesFloat", corvanta::kFloatControlSuper, {0x45596D56, 0x1E847B65}, L"Animation", true, CreateTwistPosesFloat},
  {L"Twist Poses Rotation", L"TwistPosesRotation", corvanta::kRotationControlSuper, {0x45596D56, 0x1E847B66}, L"Animation", true, CreateTwistPosesRotation},
  {L"UI Label", L"UILabel", corvanta::kReferenceTargetSuper, {0x45596D56, 0x1E847F0C}, L"Animation", true, nullptr},
  {L"Dummy Float", L"DummyFloat", corvanta::kFloatControlSuper, {0x45596D56, 0x1E847B67}, L"Animation", false, CreateDummyFloat},
  {L"Dummy Rotation", L"DummyRotation", corvanta::kRotationControlSuper, {0x45596D56, 0x1E847B68}, L"Animation", false, CreateDummyRotation},
  {L"Animation Layers", L"AnimationLayers", corvanta::kReferenceTargetSuper, {0x45596D56, 0x1E847B69}, L"Animation", false, nullptr},
  {L"Float Layers", L"FloatLayers", corvanta::kFloatControlSuper, {0x45596D56, 0x1E847B70}, L"Animation", false, nullptr},
  {L"Position Layers", L"PositionLayers", corvanta::kPositionControlSuper, {0x45596D56, 0x1E847B71}, L"Animation", false, nullptr},
  {L"Rotation Layers", L"RotationLayers", corvanta::kRotationControlSuper, {0x45596D56, 0x1E847B72}, L"Animation", false, nullptr},
  {L"Scale Layers", L"ScaleLayers", corvanta::kScaleControlSuper, {0x45596D56, 0x1E847B73}, L"Animation", false, nullptr},
  {L"Control Shape", L"ControlShape", corvanta::kShapeSuper, {0x45596D57, 0xED40C435}, L"Splines", true, CreateControlShape},
  {L"IKFK Display", L"IKFKDisplayMod", corvanta::kModifierSuper, {0x45596D58, 0x03397FDC}, L"", true, CreateIKFKDisplayMod},
  {L"Animation Layers Local Weights", L"AnimLayersLocalWeights", corvanta::kReferenceTargetSuper, {0x45596D56, 0x1E847B68}, L"Animation", false, nullptr},
  {L"Rotation XYZ", L"Rotation XYZ", corvanta::kRotationControlSuper, {0x45596D56, 0x1E847B74}, L"Animation", true, CreateRotationXYZ},
  {L"Tavrilon FBX Exporter", L"TavrilonFBXExporter", corvanta::kSceneExportSuper, {0x61A849D3, 0x2E7B530C}, L"", true, CreateTavrilonFBXExporter},
  {L"Tavrilon FBX Importer", L"TavrilonFBXImporter", corvanta::kSceneImportSuper, {0x5D9B730A, 0x37C248F1}, L"", true, nullptr},
};
// clang-format on

constexpr const corvanta::ClassDesc& DescOf(TavrilonClass row) { return kClassTable[static_cast<int>(row)]; }
constexpr corvanta::Class_ID ClassIdOf(TavrilonClass row) { return DescOf(row).classId; }

/// True when `object` is of the class of `row`: super class and Class_ID together. False for null.
bool IsOfClass(const corvanta::ReferenceTarget* object, TavrilonClass row);

/// Row `index`, null beyond the table.
const corvanta::ClassDesc* LibraryClassDesc(int index);

/// Registers all rows with the host's class directory; safe to repeat. A program that loads the library by its exports
/// registers what those give instead.
void RegisterTavrilonClasses();

}  // namespace tavrilon
