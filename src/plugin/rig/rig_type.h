// SPDX-License-Identifier: MIT
// The kinds of rig, in the order that scripts and files number them.
#pragma once

#include <cstddef>

namespace tavrilon {

enum class RigType : int {
  Biped,
  Hands,
  Feet,
  Arms,
  Legs,
  Spine,
  Head,
  Tail,
  Ears,
  FrontLegs,
  BackLegs,
  Quadruped,
  Minotaur,
  Centaur,
  FrontPaws,
  BackPaws,
  InsectLeg,
  Insect,
  Face,
  Ant,
  Bird,
  Octopus,
  Snake,
  Fish,
  Claws,
  BirdLeg,
  Wing,
  Tentacle,
};

/// Names for lists and scripts; the last nine, and "Ears", are names only: their template is empty.
inline constexpr const wchar_t* kRigTypeNames[] = {
    L"Biped",     L"Hands",    L"Feet",      L"Arms",     L"Legs",      L"Spine",    L"Head",
    L"Tail",      L"Ears",     L"FrontLegs", L"BackLegs", L"Quadruped", L"Minotaur", L"Centaur",
    L"FrontPaws", L"BackPaws", L"InsectLeg", L"Insect",   L"Face",      L"Ant",      L"Bird",
    L"Octopus",   L"Snake",    L"Fish",      L"Claws",    L"BirdLeg",   L"Wing",     L"Tentacle",
};
inline constexpr int kRigTypeCount = static_cast<int>(sizeof(kRigTypeNames) / sizeof(kRigTypeNames[0]));
static_assert(kRigTypeCount == 28);

}  // namespace tavrilon
