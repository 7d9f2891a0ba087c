// SPDX-License-Identifier: MIT
#include <QFileInfo>
#include <QImageWriter>
#include <QSaveFile>

#include "host/view/raster.h"

namespace corvanta {

bool SavePng(const QImage& image, const WStr& path, WStr& error) {
  const QString name = QString::fromStdWString(path);
  const auto fail = [&](const QString& why) {
    error = (QStringLiteral("cannot write the picture \"%1\": ").arg(name) + why).toStdWString();
    return false;
  };
  if (image.isNull()) return fail(QStringLiteral("it has no pixels"));
  if (name.isEmpty()) return fail(QStringLiteral("no file name is given"));
  const QFileInfo folder(QFileInfo(name).absolutePath());
  if (!folder.isDir()) return fail(QStringLiteral("the folder \"%1\" does not exist").arg(folder.filePath()));
  QSaveFile file(name);
  if (!file.open(QIODevice::WriteOnly)) return fail(file.errorString());
  QImageWriter writer(&file, "png");
  if (!writer.write(image)) return fail(writer.errorString());
  if (!file.commit()) return fail(file.errorString());
  return true;
}

}  // namespace corvanta
