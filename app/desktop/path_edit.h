#pragma once

#include <QLineEdit>
#include <QStringList>

class QMimeData;

namespace quarvel {

/// The files and folders of this computer among what is dragged.
QStringList DroppedPaths(const QMimeData* data);
QStringList DroppedFolders(const QMimeData* data);

/// A line with folders joined with ";". Folders dropped on it are added.
class PathEdit : public QLineEdit {
  Q_OBJECT

 public:
  explicit PathEdit(QWidget* parent);

  QStringList Folders() const;
  void SetFolders(const QStringList& folders);

 protected:
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
};

} // namespace quarvel
