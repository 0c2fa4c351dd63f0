#include "app/desktop/level_names.h"

#include "app/desktop/qt_text.h"
#include "core/batch.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <algorithm>

namespace quarvel {

namespace {

const QString levelPattern = QStringLiteral("*.t3d");
const QString packagePattern = QStringLiteral("*.unr");

/// A level as text, or the game's own file of one.
bool IsLevelName(const QString& path) {
  return path.endsWith(QStringLiteral(".t3d"), Qt::CaseInsensitive) ||
         path.endsWith(QStringLiteral(".unr"), Qt::CaseInsensitive);
}

QStringList LevelsBelow(const QString& folder) {
  QStringList levels;
  for (QDirIterator at(folder, {levelPattern, packagePattern}, QDir::Files, QDirIterator::Subdirectories);
       at.hasNext();)
    levels.append(at.next());
  levels.sort(Qt::CaseInsensitive);
  return levels;
}

/// The levels among the paths, and in the folders among them.
QStringList AllLevels(const QStringList& paths) {
  QStringList levels;
  for (const QString& path : paths) {
    if (QFileInfo(path).isDir())
      levels.append(LevelsBelow(path));
    else if (IsLevelName(path))
      levels.append(QFileInfo(path).absoluteFilePath());
  }
  levels.removeDuplicates();
  return levels;
}

/// The folder that all files are below; empty when there is none, as on two drives.
QString CommonFolder(const QStringList& files) {
  QString folder = QFileInfo(files.front()).absolutePath();
  for (const QString& file : files)
    while (!file.startsWith(folder.endsWith(u'/') ? folder : folder + u'/')) {
      const QString above = QFileInfo(folder).absolutePath();
      if (above == folder) return {};
      folder = above;
    }
  return folder;
}

QString ListOf(const QStringList& levels, QString* problem) {
  const QString folder = CommonFolder(levels);
  QStringList items{QDir::toNativeSeparators(folder)};
  QStringList refused;
  for (const QString& level : levels) {
    const QString item = folder.isEmpty() ? QString() : QDir(folder).relativeFilePath(level);
    if (item.isEmpty() || item.contains(u',') || folder.contains(u','))
      refused.append(QFileInfo(level).fileName());
    else
      items.append(QDir::toNativeSeparators(item));
  }
  if (problem && !refused.isEmpty())
    *problem = QStringLiteral("Convert by itself, since a list cannot hold it: ") + refused.join(QStringLiteral("; "));
  return items.size() > 1 ? items.join(u',') : QString();
}

/// The pattern that all of these levels fit; empty when there are levels of both forms.
QString PatternFor(const QStringList& levels) {
  const auto isPackage = [](const QString& level) {
    return level.endsWith(QStringLiteral(".unr"), Qt::CaseInsensitive);
  };
  const auto packages = std::count_if(levels.begin(), levels.end(), isPackage);
  if (packages == 0) return levelPattern;
  return packages == levels.size() ? packagePattern : QString();
}

} // namespace

QString InputFor(const QStringList& paths, QString* problem) {
  if (paths.isEmpty()) return {};
  if (paths.size() == 1) {
    const QFileInfo only(paths.front());
    const QString path = QDir::toNativeSeparators(only.absoluteFilePath());
    if (!only.isDir()) return path;
    const QString pattern = PatternFor(LevelsBelow(only.absoluteFilePath()));
    if (!pattern.isEmpty()) return QDir::toNativeSeparators(QDir(path).filePath(pattern));
  }
  const QStringList levels = AllLevels(paths);
  if (levels.isEmpty()) {
    if (problem) *problem = QStringLiteral("None of these files is a level (*.t3d, *.unr)");
    return {};
  }
  return levels.size() == 1 ? QDir::toNativeSeparators(levels.front()) : ListOf(levels, problem);
}

QString OutputFor(const QString& input) {
  if (input.isEmpty() || NamesSeveralFiles(ToText(input))) return {};
  const qsizetype name = std::max(input.lastIndexOf(u'/'), input.lastIndexOf(QDir::separator())) + 1;
  const qsizetype dot = input.lastIndexOf(u'.');
  return input.left(dot > name ? dot : input.size()) + QStringLiteral(".wrl");
}

QString FolderOf(const QString& input) {
  if (input.isEmpty()) return QDir::homePath();
  QFileInfo at(NamesSeveralFiles(ToText(input)) ? input.section(u',', 0, 0) : input);
  while (!at.isDir() && !at.isRoot())
    at = QFileInfo(at.absolutePath());
  return at.isDir() ? at.absoluteFilePath() : QDir::homePath();
}

} // namespace quarvel
