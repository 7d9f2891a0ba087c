// SPDX-License-Identifier: MIT
// Files go to the class that knows their extension.
#include "host/io/exchange.h"

#include <gtest/gtest.h>

#include "host/core/class_desc.h"

namespace corvanta {
namespace {

struct Call {
  WStr file;
  bool suppressPrompts = false, selectedOnly = false;
};
Call lastCall;

class TestImport final : public SceneImport {
 public:
  Class_ID ClassID() const override { return {0x7E57, 0x10}; }
  WStr GetClassName() const override { return L"Test Import"; }
  std::vector<WStr> Extensions() const override { return {L"abc", L"xyz"}; }
  WStr ShortDesc() const override { return L"Test"; }
  WStr LongDesc() const override { return L"Test files"; }
  bool DoImport(const WStr& file, bool suppressPrompts, ExchangeReport& report) override {
    lastCall = {file, suppressPrompts, false};
    report.log = {L"told"};
    return file != L"bad.abc";
  }
};

class TestExport final : public SceneExport {
 public:
  Class_ID ClassID() const override { return {0x7E57, 0x11}; }
  WStr GetClassName() const override { return L"Test Export"; }
  std::vector<WStr> Extensions() const override { return {L"abc"}; }
  WStr ShortDesc() const override { return L"Test"; }
  WStr LongDesc() const override { return L"Test files"; }
  bool DoExport(const WStr& file, bool suppressPrompts, bool selectedOnly, ExchangeReport&) override {
    lastCall = {file, suppressPrompts, selectedOnly};
    return true;
  }
};

void RegisterTestClasses() {
  static const ClassDesc descs[] = {
      {L"NoImport", L"NoImport", kSceneImportSuper, {0x7E57, 0x12}, L"", false, nullptr},
      {L"TestImport",
       L"TestImport",
       kSceneImportSuper,
       {0x7E57, 0x10},
       L"",
       false,
       [](bool) -> ReferenceTarget* { return new TestImport; }},
      {L"TestExport",
       L"TestExport",
       kSceneExportSuper,
       {0x7E57, 0x11},
       L"",
       false,
       [](bool) -> ReferenceTarget* { return new TestExport; }},
  };
  for (const ClassDesc& desc : descs) ClassDirectory::Get().Register(&desc);
}

TEST(Exchange, FilesGoToTheClassOfTheirExtension) {
  RegisterTestClasses();
  struct Row {
    const wchar_t* file;
    const wchar_t* error;  // null when the class is asked
  };
  const wchar_t* const kNone = L"No importer for this file type is installed. There is one for: .abc, .xyz";
  const Row kRows[] = {
      {L"a.abc", nullptr}, {L"dir.b/a.XYZ", nullptr}, {L"bad.abc", nullptr}, {L"a.fbx", kNone},
      {L"abc", kNone},     {L"dir.abc/a", kNone},     {L"", kNone},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(ToUtf8(row.file));
    lastCall = {};
    ExchangeReport report;
    report.error = L"an old one";
    const bool done = ImportFile(row.file, true, report);
    EXPECT_EQ(report.error, row.error ? row.error : L"");
    EXPECT_EQ(done, !row.error && WStr(row.file) != L"bad.abc");
    EXPECT_EQ(lastCall.file, row.error ? L"" : row.file);
    EXPECT_EQ(report.log.size(), row.error ? 0u : 1u);
  }
  ExchangeReport report;
  EXPECT_TRUE(ExportFile(L"a.abc", true, true, report));
  EXPECT_TRUE(lastCall.selectedOnly && lastCall.suppressPrompts);
  EXPECT_FALSE(ExportFile(L"a.xyz", true, true, report));
  EXPECT_EQ(report.error, L"No exporter for this file type is installed. There is one for: .abc");
}

TEST(Exchange, ProgressIsShownToWhoAsked) {
  EXPECT_TRUE(ShowProgress(L"work", 0.5));
  double shown = 0;
  SetProgressHook([&](const WStr& title, double share) {
    shown = share;
    return title != L"stop";
  });
  EXPECT_TRUE(ShowProgress(L"work", 0.25));
  EXPECT_EQ(shown, 0.25);
  EXPECT_FALSE(ShowProgress(L"stop", 0.5));
  SetProgressHook({});
}

}  // namespace
}  // namespace corvanta
