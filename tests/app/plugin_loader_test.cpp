// SPDX-License-Identifier: MIT
#include "app/plugin_loader.h"

#include <gtest/gtest.h>

namespace {

struct Refused {
  const char* file;
  const char* problem;
};

const Refused kRefused[] = {
    {"no_such.dlc", "there is no such plug-in library"},
    {"not_a_library.dlc", "cannot be loaded"},
    {"missing_export.dlc", "does not export LibShutdown"},
    {"wrong_version.dlc", "built for host version 0x5DC03B00, this one is 0x5DC03C00"},
    {"too_few_classes.dlc", "says it has 2 classes, but gives none at 1"},
};

TEST(PluginLoader, RefusesWithReason) {
  for (const Refused& refused : kRefused) {
    SCOPED_TRACE(refused.file);
    const app::PluginLibrary plugin = app::PluginLibrary::Load(std::string(TAVRILON_TEST_PLUGINS "/") + refused.file);
    EXPECT_FALSE(plugin.IsLoaded());
    EXPECT_NE(plugin.Problem().find(refused.problem), std::string::npos) << plugin.Problem();
    EXPECT_NE(plugin.Problem().find(refused.file), std::string::npos) << plugin.Problem();
    EXPECT_FALSE(plugin.Initialize());
  }
}

TEST(PluginLoader, LoadsAndInitializes) {
  const app::PluginLibrary plugin = app::PluginLibrary::Load(TAVRILON_TEST_PLUGINS "/complete.dlc");
  ASSERT_TRUE(plugin.IsLoaded()) << plugin.Problem();
  EXPECT_EQ(plugin.Description(), L"Test plug-in");
  EXPECT_EQ(plugin.Classes().size(), 1u);
  EXPECT_TRUE(plugin.Initialize());
  EXPECT_TRUE(plugin.Shutdown());
}

}  // namespace
