// SPDX-License-Identifier: MIT
// Template files of a rig.
#include <algorithm>
#include <unordered_map>

#include "host/io/atomic_file.h"
#include "host/io/file_dialog.h"
#include "plugin/rig/detail/rig_edit.h"
#include "plugin/rig/rig_file.h"

namespace tavrilon {

using namespace corvanta;

namespace {

const FileDialogRequest kLoadRequest = {false, L"Load Rig Template File", L"Rig Template Files (*.rig)", L"*.rig",
                                        L"RigSystemHistory"};
const FileDialogRequest kSaveRequest = {true, L"Save Rig Template File", L"Rig Template Files (*.rig)", L"*.rig",
                                        L"RigSystemHistory"};

/// False for types that template files do not keep.
bool ReadParam(const ParamBlock2& block, const ParamRow& row, RigFileParam& param) {
  param.id = static_cast<uint16_t>(row.id);
  param.type = static_cast<int>(row.type);
  if (row.Is(kTab)) return false;
  if (IsTextType(row.type))
    param.text = block.GetStr(row.id);
  else if (row.type == ParamType::Colour || row.type == ParamType::Point3)
    param.pointValue = block.GetPoint3(row.id);
  else if (IsIntType(row.type))
    param.intValue = block.GetInt(row.id);
  else if (IsFloatType(row.type))
    param.floatValue = block.GetFloat(row.id);
  else
    return false;
  return true;
}

/// Writes what the stored type tells; false when this rig has no such parameter, or it holds another kind of value.
bool WriteParam(ParamBlock2& block, const RigFileParam& param) {
  const ParamID id = static_cast<ParamID>(param.id);
  const ParamType type = static_cast<ParamType>(param.type);
  const ParamRow* row = param.id > rig_param::kActive && param.id < rig_param::kCount ? block.GetParamDef(id) : nullptr;
  if (!row || row->type != type) return false;
  int number = param.intValue;
  if (IsTextType(type)) return block.SetValue(id, 0, param.text);
  if (type == ParamType::Colour)
    return block.SetValue(id, 0, Colour{param.pointValue.x, param.pointValue.y, param.pointValue.z});
  if (IsFloatType(type)) return block.SetValue(id, 0, std::clamp(param.floatValue, row->range.min, row->range.max));
  return ClampRigParam(static_cast<rig_param::ID>(param.id), number) && block.SetValue(id, 0, number);
}

}  // namespace

WStr RigSystem::SaveTemplate(const WStr& fileName) const {
  if (!block_) return L"The rig has no parameters.";
  RigFile file;
  for (const RigPoint& point : Points()) file.points.push_back({point.name, point.position});
  for (const ParamRow& row : block_->GetDesc().rows) {
    RigFileParam param;
    if (row.id > rig_param::kActive && ReadParam(*block_, row, param)) file.params.push_back(std::move(param));
  }
  file.extras = Extras();
  return WriteFileAtomically(fileName, WriteRigFile(file));
}

RigLoadReport RigSystem::LoadTemplate(const WStr& fileName) {
  lastLoad_ = {};
  const FileContents contents = ReadWholeFile(fileName, kMaxRigFileBytes);
  if (!contents.error.empty() || !block_) {
    lastLoad_.error = contents.error;
    return lastLoad_;
  }
  const RigFileResult read = ReadRigFile(contents.bytes);
  if (!read.ok()) {
    lastLoad_.error = fileName + L": " + FromUtf8(read.error);
    return lastLoad_;
  }
  lastLoad_.skipped = read.skipped;
  HoldScope hold(L"Load Rig Template");
  RecordPoints();
  ApplyParams(read.file, lastLoad_);
  ApplyPoints(read.file, lastLoad_);
  PointsChanged();
  return lastLoad_;
}

// In the file's order: the type comes before the counts that it resets. The template is built once, at the end.
void RigSystem::ApplyParams(const RigFile& file, RigLoadReport& report) {
  bool discard = false;
  {
    QuietParameters quiet(*this);
    for (const RigFileParam& param : file.params) {
      if (!WriteParam(*block_, param)) {
        ++report.skipped;
        continue;
      }
      if (param.id == rig_param::kHelperType) ApplyType();
      discard |= param.id == rig_param::kHelperType || param.id == rig_param::kSide;
    }
    state_.extras.clear();
  }
  Rebuild(discard);
  for (const RigExtra& extra : file.extras)
    if (!AddExtra(extra.name, extra.parent, extra.side, extra.num_controls, 2, false)) ++report.skipped;
}

void RigSystem::ApplyPoints(const RigFile& file, RigLoadReport& report) {
  std::unordered_map<WStr, size_t> index;
  for (size_t i = 0; i < state_.points.size(); ++i) index.try_emplace(state_.points[i].name, i);
  for (const RigFilePoint& point : file.points) {
    const auto found = index.find(point.name);
    if (found == index.end())
      report.unknownPoints.push_back(point.name);
    else if (!state_.points[found->second].IsInBetween())
      state_.points[found->second].position = point.position;
  }
}

bool RigSystem::Load(const WStr& fileName) {
  fileError_ = LoadTemplate(fileName).error;
  return fileError_.empty() && block_;
}

bool RigSystem::Save(const WStr& fileName) {
  fileError_ = SaveTemplate(fileName);
  return fileError_.empty();
}

bool RigSystem::LoadDlg() {
  const WStr path = AskForFile(kLoadRequest);
  return !path.empty() && Load(path);
}

bool RigSystem::SaveDlg() {
  const WStr path = AskForFile(kSaveRequest);
  return !path.empty() && Save(path);
}

}  // namespace tavrilon
