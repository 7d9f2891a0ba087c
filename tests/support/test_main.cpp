// SPDX-License-Identifier: MIT
// The tests' own main: a QGuiApplication lives for the whole run, since text drawing needs one.
#include <gtest/gtest.h>

#include <QGuiApplication>

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  QGuiApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
