// SPDX-License-Identifier: MIT
// A scene, and a custom attribute whose parameters are what connections follow.
#pragma once

#include <random>

#include "host/core/class_desc.h"
#include "host/core/cust_attrib.h"
#include "host/core/hold.h"
#include "plugin/frame/rig_nodes_test.h"

namespace tavrilon {

namespace source_attrib {
enum Param : corvanta::ParamID {
  kValue = 0,
  kOther = 1,
  kPlace = 2,
  kCount = 3,
  kFlag = 4,
  kList = 5,
  kText = 6,
  kFixed = 7
};
}

class SourceAttrib final : public corvanta::CustAttrib {
 public:
  static constexpr corvanta::Class_ID kId{0x7E570002, 1};
  explicit SourceAttrib(bool loading) {
    if (!loading) BindReference(0, new corvanta::ParamBlock2(BlockDesc()));
  }
  static const corvanta::ParamBlockDesc2& BlockDesc() {
    using namespace corvanta;
    using namespace source_attrib;
    static constexpr ParamRow kRows[] = {
        {kValue, L"amount", ParamType::Float, kAnimatable, 0.0f},
        {kOther, L"other", ParamType::Float, kAnimatable, 0.0f},
        {kPlace, L"place", ParamType::Point3, kAnimatable},
        {source_attrib::kCount, L"counter", ParamType::Int, kAnimatable, 0},
        {kFlag, L"flag", ParamType::Bool, kNone, false},
        {kList, L"list", ParamType::Float, kAnimatable | kTab, 0.0f},
        {kText, L"text", ParamType::String},
        {kFixed, L"fixed", ParamType::Float, kNone, 0.0f},
    };
    static const ParamBlockDesc2 desc(0, L"params", kRows);
    return desc;
  }
  corvanta::Class_ID ClassID() const override { return kId; }
  corvanta::WStr GetClassName() const override { return L"SourceAttrib"; }
  int NumRefs() const override { return 1; }
  corvanta::ReferenceTarget* GetReference(int i) const override { return i == 0 ? block : nullptr; }
  int NumSubs() const override { return 1; }
  corvanta::Animatable* SubAnim(int i) override { return GetReference(i); }
  corvanta::ParamBlock2* block = nullptr;

 protected:
  void SetReference(int i, corvanta::ReferenceTarget* target) override {
    if (i == 0) block = static_cast<corvanta::ParamBlock2*>(target);
  }
};

class WiresTest : public RigNodesTest {
 protected:
  void SetUp() override {
    static const corvanta::ClassDesc desc = {
        L"SourceAttrib",
        L"SourceAttrib",
        corvanta::kCustAttribSuper,
        SourceAttrib::kId,
        L"",
        true,
        [](bool loading) -> corvanta::ReferenceTarget* { return new SourceAttrib(loading); }};
    RigNodesTest::SetUp();
    corvanta::ClassDirectory::Get().Register(&desc);
    corvanta::theHold.Flush();
  }
  /// A node with the attribute; its block.
  static corvanta::ParamBlock2& AddSource(corvanta::INode* node) {
    auto* attrib = new SourceAttrib(false);
    node->MakeCustAttribContainer()->AppendCustAttrib(attrib);
    return *attrib->block;
  }
  static corvanta::ParamBlock2& SourceOf(corvanta::INode* node) {
    return *static_cast<SourceAttrib*>(node->GetCustAttribContainer()->GetCustAttrib(0))->block;
  }
  static float Read(corvanta::Control& control, corvanta::TimeValue t = 0) {
    corvanta::Interval valid = corvanta::FOREVER;
    return Read(control, t, valid);
  }
  static float Read(corvanta::Control& control, corvanta::TimeValue t, corvanta::Interval& valid) {
    float value = -1234;
    control.GetValue(t, value, valid, corvanta::CTRL_ABSOLUTE);
    return value;
  }
  static void Write(corvanta::Control& control, float value, corvanta::TimeValue t = 0,
                    corvanta::GetSetMethod method = corvanta::CTRL_ABSOLUTE) {
    control.SetValue(t, value, true, method);
  }
};

}  // namespace tavrilon
