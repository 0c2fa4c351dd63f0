#pragma once

#include <QDialog>
#include <QListWidget>
#include <QTreeView>

class QFileSystemModel;

namespace quarvel {

/// Chooses folders to look in: those of the computer on one side, the chosen ones in their order on the other.
class FolderChooser : public QDialog {
  Q_OBJECT

 public:
  /// `start` is the folder that is shown first where none is chosen yet.
  FolderChooser(const QString& title, const QStringList& folders, const QString& start, QWidget* parent);

  QStringList Folders() const;
  void AddFolders(const QStringList& folders);

 protected:
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  QWidget* MakeComputerSide(const QString& start);
  QWidget* MakeChosenSide();
  void AddSelected();
  void RemoveSelected();
  void MoveSelected(int by);

  QFileSystemModel* model_ = nullptr;
  QTreeView* tree_ = nullptr;
  QListWidget* chosen_ = nullptr;
};

} // namespace quarvel
