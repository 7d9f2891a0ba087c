// SPDX-License-Identifier: MIT
// A rig in the making, through the operations that the host gives to scripts: the object by its class name, its
// parameters by their script names, its points and files by the published functions.
#pragma once

#include <string>
#include <vector>

#include "host/core/published.h"
#include "host/scene/scene.h"

namespace app {

/// A parameter of the rig, for lists.
struct RigParameter {
  std::string name, kind, value, range, label;
};

/// Every step gives an empty text, or one line for the user that says what is wrong and what would be right.
class RigDraft {
 public:
  /// Puts a rig template at the origin of the scene on show. `Problem` tells when this build has no rigs.
  RigDraft();

  const std::string& Problem() const { return problem_; }

  std::vector<std::string> TypeNames() const;
  std::string TypeName() const;
  std::vector<RigParameter> Parameters() const;
  std::vector<std::string> PointNames() const;

  /// By name, case ignored. Discards the points.
  std::string SetType(const std::string& name);
  /// Takes type, parameters and points of a template file.
  std::string Load(const std::string& file);
  /// `value` as text: a number, on or off, a text, or three numbers from 0 to 1 for a colour. Numbers beyond the range
  /// of the parameter are refused.
  std::string SetParameter(const std::string& name, const std::string& value);
  /// A point alone, by its whole name, in units of the figure's height.
  std::string SetPoint(const std::string& name, const corvanta::Point3& place);
  /// Builds the rig.
  std::string Create();
  std::string Save(const std::string& file);

  std::string Name() const;
  float Height() const;
  /// Remarks of the build; empty before it.
  std::vector<std::string> Notes() const;
  /// The parts of the picker panel, one line each.
  std::vector<std::string> PanelParts() const;
  /// Points of the loaded template that this rig does not have.
  std::vector<std::string> UnknownPoints() const;

 private:
  std::string FileProblem(const std::string& file, const char* otherwise) const;
  std::string SetNumber(const corvanta::ParamRow& row, const std::string& value);

  corvanta::Ref<corvanta::INode> node_;
  corvanta::ParamBlock2* block_ = nullptr;
  corvanta::FPInterface* interface_ = nullptr;
  std::string problem_;
};

}  // namespace app
