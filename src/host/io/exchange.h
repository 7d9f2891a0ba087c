// SPDX-License-Identifier: MIT
// Import and export of other programs' files: what a plug-in class for a format offers, and the way to call one.
#pragma once

#include <functional>
#include <vector>

#include "host/core/reference.h"

namespace corvanta {

/// The error of work that the user stopped.
inline constexpr wchar_t kExchangeStopped[] = L"Stopped.";

/// What an import or export has to tell.
struct ExchangeReport {
  /// Why it failed; empty when it did not.
  WStr error;
  /// What was left out or changed on the way, one line each; also filled when all went well.
  std::vector<WStr> log;
};

/// Reads files of one format into the scene, as one step of undo; a failure leaves the scene as it was.
class SceneImport : public ReferenceTarget {
 public:
  SClass_ID SuperClassID() const override { return kSceneImportSuper; }
  /// Without the dot, in lower case.
  virtual std::vector<WStr> Extensions() const = 0;
  virtual WStr ShortDesc() const = 0;
  virtual WStr LongDesc() const = 0;
  /// False with `report.error` set.
  virtual bool DoImport(const WStr& file, bool suppressPrompts, ExchangeReport& report) = 0;
};

/// Writes the scene, or its selection, to files of one format; a failure leaves an old file as it was.
class SceneExport : public ReferenceTarget {
 public:
  SClass_ID SuperClassID() const override { return kSceneExportSuper; }
  virtual std::vector<WStr> Extensions() const = 0;
  virtual WStr ShortDesc() const = 0;
  virtual WStr LongDesc() const = 0;
  virtual bool DoExport(const WStr& file, bool suppressPrompts, bool selectedOnly, ExchangeReport& report) = 0;
};

/// By the file's extension. Without a class for it the error names the extensions that there are:
/// "No importer for this file type is installed."
bool ImportFile(const WStr& file, bool suppressPrompts, ExchangeReport& report);
bool ExportFile(const WStr& file, bool suppressPrompts, bool selectedOnly, ExchangeReport& report);

/// Shows how far long work is, 0 to 1; false stops it. None by default.
using ProgressHook = std::function<bool(const WStr& title, double share)>;
void SetProgressHook(ProgressHook hook);
/// For the work to call; true when there is no hook.
bool ShowProgress(const WStr& title, double share);

}  // namespace corvanta
