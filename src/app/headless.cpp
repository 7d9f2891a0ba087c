// SPDX-License-Identifier: MIT
#include "app/headless.h"

#include <QGuiApplication>
#include <cstdio>
#include <cstdlib>

namespace app {

namespace {

bool IsGiven(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

// The run-time folder of a session is missing in containers and batch jobs; drawing does not need it.
void PassOtherMessages(QtMsgType, const QMessageLogContext&, const QString& text) {
  if (!text.startsWith("QStandardPaths: XDG_RUNTIME_DIR")) std::fprintf(stderr, "%s\n", qPrintable(text));
}

}  // namespace

void ChooseHeadlessPlatform() {
  if (IsGiven("DISPLAY") || IsGiven("WAYLAND_DISPLAY") || IsGiven("QT_QPA_PLATFORM")) return;
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
}

void StartDrawing() {
  static QGuiApplication* application = nullptr;
  if (application) return;
  // Qt keeps references to both for the life of the application object.
  static int count = 1;
  static char name[] = "tavrilon";
  static char* arguments[] = {name, nullptr};
  const QtMessageHandler before = qInstallMessageHandler(PassOtherMessages);
  application = new QGuiApplication(count, arguments);
  qInstallMessageHandler(before);
}

}  // namespace app
