#include "app/desktop/folder_chooser.h"

#include "app/desktop/path_edit.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QDragEnterEvent>
#include <QFileSystemModel>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

namespace quarvel {

namespace {

/// A default folder of another computer is no place to begin at.
QString FirstExisting(const QStringList& folders, const QString& otherwise) {
  for (const QString& folder : folders)
    if (QDir(folder).exists()) return folder;
  return otherwise;
}

QPushButton* MakeButton(const QString& name, const QString& text, QWidget* parent) {
  auto* button = new QPushButton(text, parent);
  button->setObjectName(name);
  button->setAutoDefault(false);
  return button;
}

} // namespace

FolderChooser::FolderChooser(const QString& title, const QStringList& folders, const QString& start, QWidget* parent)
    : QDialog(parent) {
  setObjectName(QStringLiteral("FormFolders"));
  setWindowTitle(title);
  setAcceptDrops(true);
  auto* sides = new QHBoxLayout;
  sides->addWidget(MakeComputerSide(FirstExisting(folders, start)), 1);
  sides->addWidget(MakeChosenSide(), 1);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* column = new QVBoxLayout(this);
  column->addLayout(sides, 1);
  column->addWidget(new QLabel(QStringLiteral("The folders below these are searched too. Without any, the folder of "
                                              "the level is searched."),
                               this));
  column->addWidget(buttons);
  AddFolders(folders);
  resize(760, 460);
}

QWidget* FolderChooser::MakeComputerSide(const QString& start) {
  auto* side = new QWidget(this);
  model_ = new QFileSystemModel(this);
  model_->setFilter(QDir::AllDirs | QDir::NoDotAndDotDot | QDir::Drives);
  model_->setRootPath(QString());
  tree_ = new QTreeView(side);
  tree_->setObjectName(QStringLiteral("TreeFolders"));
  tree_->setModel(model_);
  tree_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  tree_->setHeaderHidden(true);
  for (int column = 1; column < model_->columnCount(); ++column)
    tree_->hideColumn(column);
  const QModelIndex at = model_->index(QDir(start).exists() ? start : QDir::homePath());
  tree_->setCurrentIndex(at);
  tree_->expand(at);
  // Folders are read in the background; those above move the current one until it is read itself.
  connect(model_, &QFileSystemModel::directoryLoaded, tree_,
          [this, at = QPersistentModelIndex(at)](const QString& path) {
            const bool isLast = model_->filePath(at) == path;
            if (!isLast || !at.isValid() || tree_->currentIndex() != at) return;
            constexpr int untilSorted = 100; // ms; the model sorts what it has read a little later
            QTimer::singleShot(untilSorted, tree_,
                               [this, at] { tree_->scrollTo(at, QAbstractItemView::PositionAtCenter); });
          });
  QPushButton* add = MakeButton(QStringLiteral("CommandAddFolders"), QStringLiteral("&Add >"), side);
  connect(add, &QPushButton::clicked, this, &FolderChooser::AddSelected);
  connect(tree_, &QTreeView::doubleClicked, this, &FolderChooser::AddSelected);
  tree_->setExpandsOnDoubleClick(false);
  auto* label = new QLabel(QStringLiteral("&Folders (several with Ctrl or Shift):"), side);
  label->setBuddy(tree_);
  auto* grid = new QGridLayout(side);
  grid->setContentsMargins({});
  grid->addWidget(label, 0, 0, 1, 2);
  grid->addWidget(tree_, 1, 0, 1, 2);
  grid->addWidget(add, 2, 1);
  grid->setColumnStretch(0, 1);
  return side;
}

QWidget* FolderChooser::MakeChosenSide() {
  auto* side = new QWidget(this);
  chosen_ = new QListWidget(side);
  chosen_->setObjectName(QStringLiteral("ListFolders"));
  chosen_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  chosen_->setTextElideMode(Qt::ElideLeft);
  QPushButton* remove = MakeButton(QStringLiteral("CommandRemoveFolders"), QStringLiteral("&Remove"), side);
  QPushButton* up = MakeButton(QStringLiteral("CommandFolderUp"), QStringLiteral("&Up"), side);
  QPushButton* down = MakeButton(QStringLiteral("CommandFolderDown"), QStringLiteral("&Down"), side);
  connect(remove, &QPushButton::clicked, this, &FolderChooser::RemoveSelected);
  connect(up, &QPushButton::clicked, this, [this] { MoveSelected(-1); });
  connect(down, &QPushButton::clicked, this, [this] { MoveSelected(1); });
  auto* label = new QLabel(QStringLiteral("&Searched, in this order:"), side);
  label->setBuddy(chosen_);
  auto* grid = new QGridLayout(side);
  grid->setContentsMargins({});
  grid->addWidget(label, 0, 0, 1, 3);
  grid->addWidget(chosen_, 1, 0, 1, 3);
  grid->addWidget(remove, 2, 0);
  grid->addWidget(up, 2, 1);
  grid->addWidget(down, 2, 2);
  return side;
}

QStringList FolderChooser::Folders() const {
  QStringList folders;
  for (int i = 0; i < chosen_->count(); ++i)
    folders.append(chosen_->item(i)->text());
  return folders;
}

void FolderChooser::AddFolders(const QStringList& folders) {
  for (const QString& folder : folders)
    // A path of several folders is joined with ";".
    if (!folder.contains(u';') && chosen_->findItems(folder, Qt::MatchExactly).isEmpty()) chosen_->addItem(folder);
}

void FolderChooser::AddSelected() {
  QStringList folders;
  for (const QModelIndex& index : tree_->selectionModel()->selectedRows())
    folders.append(QDir::toNativeSeparators(model_->filePath(index)));
  AddFolders(folders);
}

void FolderChooser::RemoveSelected() { qDeleteAll(chosen_->selectedItems()); }

void FolderChooser::MoveSelected(int by) {
  const int row = chosen_->currentRow();
  if (row < 0 || row + by < 0 || row + by >= chosen_->count()) return;
  chosen_->insertItem(row + by, chosen_->takeItem(row));
  chosen_->setCurrentRow(row + by);
}

void FolderChooser::dragEnterEvent(QDragEnterEvent* event) {
  if (!DroppedFolders(event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void FolderChooser::dropEvent(QDropEvent* event) {
  AddFolders(DroppedFolders(event->mimeData()));
  event->acceptProposedAction();
}

} // namespace quarvel
