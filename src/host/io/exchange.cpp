// SPDX-License-Identifier: MIT
#include "host/io/exchange.h"

#include <algorithm>

#include "host/core/class_desc.h"

namespace corvanta {

namespace {

ProgressHook& Hook() {
  static ProgressHook hook;
  return hook;
}

/// What is after the last dot of the file's own name, in lower case.
WStr ExtensionOf(const WStr& file) {
  const size_t dot = file.find_last_of(L"./\\");
  return dot == WStr::npos || file[dot] != L'.' ? WStr() : ToLower(file.substr(dot + 1));
}

/// The first class of `Exchange` that knows the extension; else null, with the extensions that there are in `known`.
template <class Exchange>
Ref<Exchange> FindFor(SClass_ID superClass, const WStr& extension, std::vector<WStr>& known) {
  for (const ClassDesc* desc : ClassDirectory::Get().All()) {
    if (desc->superClass != superClass) continue;
    const Ref<ReferenceTarget> made(desc->Create());
    auto* exchange = dynamic_cast<Exchange*>(made.Get());
    if (!exchange) continue;
    const std::vector<WStr> extensions = exchange->Extensions();
    if (std::find(extensions.begin(), extensions.end(), extension) != extensions.end()) return exchange;
    known.insert(known.end(), extensions.begin(), extensions.end());
  }
  return nullptr;
}

/// "No importer for this file type is installed. There is one for: .fbx"
bool NoneInstalled(const wchar_t* kind, const std::vector<WStr>& known, ExchangeReport& report) {
  report.error = WStr(L"No ") + kind + L" for this file type is installed.";
  for (size_t i = 0; i < known.size(); ++i) report.error += (i == 0 ? L" There is one for: ." : L", .") + known[i];
  return false;
}

}  // namespace

bool ImportFile(const WStr& file, bool suppressPrompts, ExchangeReport& report) {
  report = {};
  std::vector<WStr> known;
  const auto importer = FindFor<SceneImport>(kSceneImportSuper, ExtensionOf(file), known);
  return importer ? importer->DoImport(file, suppressPrompts, report) : NoneInstalled(L"importer", known, report);
}

bool ExportFile(const WStr& file, bool suppressPrompts, bool selectedOnly, ExchangeReport& report) {
  report = {};
  std::vector<WStr> known;
  const auto exporter = FindFor<SceneExport>(kSceneExportSuper, ExtensionOf(file), known);
  return exporter ? exporter->DoExport(file, suppressPrompts, selectedOnly, report)
                  : NoneInstalled(L"exporter", known, report);
}

void SetProgressHook(ProgressHook hook) { Hook() = std::move(hook); }

bool ShowProgress(const WStr& title, double share) { return !Hook() || Hook()(title, share); }

}  // namespace corvanta
