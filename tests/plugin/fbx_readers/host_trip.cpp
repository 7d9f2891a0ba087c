// SPDX-License-Identifier: MIT
#include "plugin/fbx_readers/host_trip.h"

#include <gtest/gtest.h>

#include "host/core/class_desc.h"
#include "host/io/atomic_file.h"
#include "host/io/scene_file.h"
#include "host/io/temp_folder_test.h"
#include "host/scene/core_interface.h"
#include "plugin/fbx/format/sdk.h"
#include "plugin/frame/class_table.h"

namespace tavrilon::fbx {

using corvanta::FromUtf8;
using corvanta::GetScene;
using corvanta::ToUtf8;

std::vector<uint8_t> FileBytes(const std::string& path) {
  corvanta::FileContents contents = corvanta::ReadWholeFile(FromUtf8(path), size_t{1} << 28);
  EXPECT_TRUE(contents.error.empty()) << ToUtf8(contents.error);
  return contents.bytes;
}

std::vector<uint8_t> WrittenBytes(const FbxScene& scene, int format) {
  const std::unique_ptr<FbxManager> manager = FbxManager::Create();
  const std::unique_ptr<FbxExporter> exporter = FbxExporter::Create(*manager, "made");
  exporter->Initialize("made.fbx", format);
  std::vector<uint8_t> bytes = exporter->Write(scene);
  EXPECT_FALSE(bytes.empty()) << exporter->GetStatus().GetErrorString();
  return bytes;
}

HostTrip::HostTrip(const HostStage& stage) {
  corvanta::RegisterHostClasses();
  RegisterTavrilonClasses();
  EXPECT_TRUE(corvanta::ResetScene());
  GetScene().units.centimetres = stage.centimetres;
  GetScene().units.upAxis = stage.upAxis;
}

bool HostTrip::Import(std::vector<uint8_t> file, const FbxImportOptions& options) {
  return ImportFbx(std::move(file), L"made.fbx", options, imported);
}

bool HostTrip::Export(const std::function<bool(corvanta::INode&)>& isWanted, const FbxExportOptions& options) {
  std::vector<corvanta::INode*> nodes;
  for (const auto& node : GetScene().Nodes())
    if (!isWanted || isWanted(*node)) nodes.push_back(node.Get());
  const corvanta::TempFolder folder;
  const bool done = ExportFbx(nodes, folder.File(L"out.fbx"), options, exported);
  if (done) bytes = FileBytes(ToUtf8(folder.File(L"out.fbx")));
  return done;
}

bool HostTrip::Run(std::vector<uint8_t> file, const FbxImportOptions& options) {
  const bool done = Import(std::move(file), options) && Export();
  EXPECT_TRUE(done) << Log();
  return done;
}

std::string HostTrip::Log() const {
  std::string text;
  for (const corvanta::ExchangeReport* report : {&imported, &exported}) {
    text += ToUtf8(report->error) + "\n";
    for (const corvanta::WStr& line : report->log) text += ToUtf8(line) + "\n";
  }
  return text;
}

}  // namespace tavrilon::fbx
