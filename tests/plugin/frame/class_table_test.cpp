// SPDX-License-Identifier: MIT
#include "plugin/frame/class_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "host/core/reference.h"

namespace tavrilon {
namespace {

using namespace corvanta;

TEST(ClassTable, HoldsSeventyRowsAndNullBeyond) {
  EXPECT_EQ(LibraryClassDesc(0), &DescOf(TavrilonClass::StaticFloat));
  ASSERT_NE(LibraryClassDesc(69), nullptr);
  EXPECT_STREQ(LibraryClassDesc(69)->internalName, L"TavrilonFBXImporter");
  EXPECT_EQ(LibraryClassDesc(70), nullptr);
  EXPECT_EQ(LibraryClassDesc(-1), nullptr);
}

// Numbers by which scenes and other programs know the classes.
TEST(ClassTable, KnownRows) {
  struct Row {
    TavrilonClass row;
    SClass_ID super;
    Class_ID id;
    const wchar_t* name;
  };
  const Row kRows[] = {
      {TavrilonClass::RigControl, 0x9008, {0x45596D56, 0x1E847B58}, L"RigTransform"},
      {TavrilonClass::RotationXYZ, 0x900C, {0x45596D56, 0x1E847B74}, L"Rotation XYZ"},
      {TavrilonClass::AnimationManagerMod, 0x810, {0x45596D58, 0x1E847B03}, L"AnimationManagerMod"},
      {TavrilonClass::StaticTransform, 0x9008, {0x45596D56, 0x1E847B49}, L"StaticTransform"},
      {TavrilonClass::ControlShape, 0x40, {0x45596D57, 0xED40C435}, L"ControlShape"},
      {TavrilonClass::Rig, 0x50, {0x45596D57, 0x1E847B40}, L"Rig"},
      {TavrilonClass::RigSystem, 0x60, {0x45596D57, 0x1E847B41}, L"Rig"},
      {TavrilonClass::DummyRotation, 0x900C, {0x45596D56, 0x1E847B68}, L"DummyRotation"},
      {TavrilonClass::UIAction, 0x200, {0x45596D56, 0x1E847F06}, L"UIAction"},
      {TavrilonClass::TavrilonFBXExporter, 0xA20, {0x61A849D3, 0x2E7B530C}, L"TavrilonFBXExporter"},
  };
  for (const Row& r : kRows) {
    const ClassDesc& desc = DescOf(r.row);
    EXPECT_STREQ(desc.internalName, r.name);
    EXPECT_EQ(desc.superClass, r.super);
    EXPECT_TRUE(desc.classId == r.id);
  }
}

// Class_ID pairs repeat, pairs with the super class do not.
TEST(ClassTable, KeysAreUniqueTogetherWithTheSuperClass) {
  std::set<std::pair<SClass_ID, Class_ID>> keys;
  std::multiset<Class_ID> ids;
  for (const ClassDesc& desc : kClassTable) {
    EXPECT_TRUE(keys.insert({desc.superClass, desc.classId}).second);
    ids.insert(desc.classId);
  }
  for (const uint32_t shared : {0x1E847F0Au, 0x1E847B60u, 0x1E847B68u}) EXPECT_EQ(ids.count({0x45596D56, shared}), 2u);
  EXPECT_EQ(std::set<Class_ID>(ids.begin(), ids.end()).size(), 67u);
}

TEST(ClassTable, WhatIsMadeSaysWhatItIs) {
  RegisterHostClasses();
  RegisterTavrilonClasses();
  for (const ClassDesc& desc : kClassTable) {
    if (!desc.create || desc.superClass == kSystemSuper) continue;  // the system's row makes the helper
    SCOPED_TRACE(testing::Message() << ToUtf8(desc.internalName));
    for (const bool loading : {false, true}) {
      const Ref<ReferenceTarget> made(desc.Create(loading));
      ASSERT_TRUE(made);
      EXPECT_EQ(made->SuperClassID(), desc.superClass);
      EXPECT_TRUE(made->ClassID() == desc.classId);
      EXPECT_EQ(made->GetClassName(), desc.className);
    }
    const Ref<ReferenceTarget> found(CreateInstance(desc.superClass, desc.classId));
    EXPECT_TRUE(found);
  }
}

// What is not built yet. A class that gets its factory leaves this list; none ever joins it.
TEST(ClassTable, NotBuiltYet) {
  const std::set<std::wstring> kNotBuilt = {L"MsgChecker",
                                            L"StretchConstraint",
                                            L"AimConstraint",
                                            L"UIPanel",
                                            L"UIGroup",
                                            L"UIImage",
                                            L"UIPicker",
                                            L"UIVisibility",
                                            L"UIToggle",
                                            L"UIAction",
                                            L"UISlider",
                                            L"UI2DSlider",
                                            L"UISpinner",
                                            L"UI2DSpinner",
                                            L"PoseKit",
                                            L"MirrorMorph",
                                            L"CorrectiveMorph",
                                            L"Dynamics",
                                            L"UILabel",
                                            L"AnimationLayers",
                                            L"FloatLayers",
                                            L"PositionLayers",
                                            L"RotationLayers",
                                            L"ScaleLayers",
                                            L"AnimLayersLocalWeights",
                                            L"TavrilonFBXImporter"};
  std::set<std::wstring> missing;
  for (const ClassDesc& desc : kClassTable)
    if (!desc.create) missing.insert(desc.internalName);
  for (const std::wstring& name : missing)
    EXPECT_TRUE(kNotBuilt.count(name)) << ToUtf8(name) << " has lost its factory";
  for (const std::wstring& name : kNotBuilt)
    EXPECT_TRUE(missing.count(name)) << ToUtf8(name) << " is built: take it off this list";
}

}  // namespace
}  // namespace tavrilon
