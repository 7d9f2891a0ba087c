// SPDX-License-Identifier: MIT
// What choosing a kind of rig does to its counts.
#pragma once

#include "plugin/rig/rig_type.h"
#include "plugin/rig/template_params.h"

namespace tavrilon {

struct TypeDefault {
  rig_param::ID id;
  int value;
};

/// The parameters that a change of type resets, with the value for `type`.
inline std::array<TypeDefault, 7> TypeDefaults(RigType type) {
  struct Exception {
    RigType type;
    rig_param::ID id;
    int value;
  };
  constexpr Exception kExceptions[] = {
      {RigType::Tail, rig_param::kTails, 1},        {RigType::Quadruped, rig_param::kTails, 1},
      {RigType::Quadruped, rig_param::kFingers, 1}, {RigType::Quadruped, rig_param::kFingerBones, 1},
      {RigType::Minotaur, rig_param::kTails, 1},    {RigType::Centaur, rig_param::kTails, 1},
      {RigType::Insect, rig_param::kArmPairs, 0},   {RigType::Insect, rig_param::kLegPairs, 3},
      {RigType::Insect, rig_param::kTails, 1},      {RigType::Insect, rig_param::kPonytails, 2},
      {RigType::Insect, rig_param::kFangs, 1},
  };
  std::array<TypeDefault, 7> values = {{{rig_param::kArmPairs, 1},
                                        {rig_param::kLegPairs, 1},
                                        {rig_param::kTails, 0},
                                        {rig_param::kPonytails, 0},
                                        {rig_param::kFangs, 0},
                                        {rig_param::kFingers, 5},
                                        {rig_param::kFingerBones, 3}}};
  for (const Exception& e : kExceptions)
    for (TypeDefault& value : values)
      if (e.type == type && e.id == value.id) value.value = e.value;
  return values;
}

/// A new rig of that type: all defaults, then the type's own.
inline TemplateParams ParamsForType(RigType type) {
  TemplateParams params;
  for (const TypeDefault& value : TypeDefaults(type)) params[value.id] = value.value;
  return params;
}

}  // namespace tavrilon
