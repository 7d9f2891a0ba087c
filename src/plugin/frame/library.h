// SPDX-License-Identifier: MIT
// The start and the end of the library, behind its exports; tests that link the parts call these themselves.
#pragma once

namespace tavrilon {

/// At load: keeps the module handle, under which resources are found, and shows the core interface to scripts.
/// Safe to repeat.
void AttachLibrary(void* moduleHandle);

/// Start sequence: the hooks for the host's start and end. Safe to repeat.
void InitializeLibrary();

/// End sequence: takes the hooks off and ends what the end hook has not ended. Safe to repeat.
void ShutdownLibrary();

}  // namespace tavrilon
