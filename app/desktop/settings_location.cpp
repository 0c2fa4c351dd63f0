#include "app/desktop/settings_location.h"

#include <QDir>
#include <QStandardPaths>
#include <QTemporaryFile>

namespace quarvel {

namespace {

/// Permissions do not tell the truth on every system; a file does.
bool IsWritableFolder(const QString& folder) {
  QTemporaryFile probe(QDir(folder).filePath(QStringLiteral("QuarvelXXXXXX.tmp")));
  return probe.open();
}

} // namespace

QString SettingsLocation(const QString& programFolder) {
  const QString name = QStringLiteral("Quarvel.ini");
  if (IsWritableFolder(programFolder)) return QDir(programFolder).filePath(name);
  const QDir folder(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                    QStringLiteral("/quarvel"));
  folder.mkpath(QStringLiteral("."));
  return folder.filePath(name);
}

} // namespace quarvel
