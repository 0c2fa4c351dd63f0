#include "app/desktop/path_edit.h"

#include <QDir>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

namespace quarvel {

QStringList DroppedPaths(const QMimeData* data) {
  QStringList paths;
  for (const QUrl& url : data->urls())
    if (url.isLocalFile()) paths.append(url.toLocalFile());
  return paths;
}

QStringList DroppedFolders(const QMimeData* data) {
  QStringList folders;
  for (const QString& path : DroppedPaths(data))
    if (QFileInfo(path).isDir()) folders.append(QDir::toNativeSeparators(path));
  return folders;
}

PathEdit::PathEdit(QWidget* parent) : QLineEdit(parent) {}

QStringList PathEdit::Folders() const {
  QStringList folders;
  for (const QString& folder : text().split(u';', Qt::SkipEmptyParts))
    if (!folder.trimmed().isEmpty()) folders.append(folder.trimmed());
  return folders;
}

void PathEdit::SetFolders(const QStringList& folders) { setText(folders.join(u';')); }

void PathEdit::dragEnterEvent(QDragEnterEvent* event) {
  if (!DroppedFolders(event->mimeData()).isEmpty()) event->acceptProposedAction();
  // What is no folder goes on to the window.
  else
    event->ignore();
}

void PathEdit::dragMoveEvent(QDragMoveEvent* event) { event->acceptProposedAction(); }

void PathEdit::dropEvent(QDropEvent* event) {
  QStringList folders = Folders();
  folders.append(DroppedFolders(event->mimeData()));
  folders.removeDuplicates();
  SetFolders(folders);
  event->acceptProposedAction();
}

} // namespace quarvel
