// SPDX-License-Identifier: MIT
// Published interfaces by the names of their functions and properties, as a script uses them. The program knows no
// class of the plug-in otherwise.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "host/core/published.h"

namespace app {

/// The interface of the object that has a function of that name; null when none has.
corvanta::FPInterface* FindInterface(corvanta::Animatable& object, const wchar_t* function);

/// Calls a function; arguments that are not given take their defaults. Void when there is no such function.
corvanta::FPValue Call(corvanta::FPInterface& interface, const wchar_t* function,
                       std::initializer_list<corvanta::FPValue> arguments = {});

/// Void when there is no such property.
corvanta::FPValue GetProperty(corvanta::FPInterface& interface, const wchar_t* property);
/// False when there is no such property or it is read-only.
bool SetProperty(corvanta::FPInterface& interface, const wchar_t* property, const corvanta::FPValue& value);
/// The names that an enumeration property may have, in the order of its values.
std::vector<std::string> EnumNames(const corvanta::FPInterface& interface, const wchar_t* property);

/// The texts of a tab, as UTF-8.
std::vector<std::string> Texts(const corvanta::FPValue& tab);

}  // namespace app
