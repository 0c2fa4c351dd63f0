#include "app/desktop/missing_dialog.h"

#include "app/desktop/qt_text.h"
#include "app/desktop/result_bar.h"
#include "core/run_summary.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <map>

namespace quarvel {

namespace {

constexpr int kindRole = Qt::UserRole;

bool EndsWith(const std::string& text, std::string_view ending) {
  return text.size() >= ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

/// Each missing name with the levels that miss it.
std::map<std::string, QStringList> LevelsByName(ResourceKind kind, const std::vector<RunResult>& results) {
  std::map<std::string, QStringList> levels;
  for (const RunResult& result : results)
    for (const std::string& name : result.Missing[kind])
      levels[name].append(ToQString(result.InputFile.filename()));
  return levels;
}

} // namespace

MissingDialog::MissingDialog(const std::vector<RunResult>& results, DesktopServices& services, QWidget* parent)
    : QDialog(parent), services_(services), list_(new QTreeWidget(this)) {
  setObjectName(QStringLiteral("FormMissing"));
  setWindowTitle(QStringLiteral("Missing files"));
  list_->setObjectName(QStringLiteral("ListMissing"));
  list_->setHeaderLabels({QStringLiteral("Name"), QStringLiteral("Level")});
  list_->setColumnHidden(1, results.size() < 2);
  list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  list_->setUniformRowHeights(true);
  list_->setHeaderHidden(results.size() < 2);
  for (const ResourceKind kind : ResourceKinds)
    if (QTreeWidgetItem* top = AddKind(kind, results); top && !list_->currentItem()) list_->setCurrentItem(top);
  list_->header()->resizeSection(0, 320);
  auto* column = new QVBoxLayout(this);
  column->addWidget(MakeMessages(results));
  column->addWidget(list_, 1);
  column->addWidget(MakeButtons());
  resize(600, 440);
}

ResourceKind MissingDialog::CurrentKind() const {
  const QTreeWidgetItem* item = list_->currentItem();
  if (!item) return ResourceKind::Texture;
  return static_cast<ResourceKind>((item->parent() ? item->parent() : item)->data(0, kindRole).toInt());
}

QTreeWidgetItem* MissingDialog::AddKind(ResourceKind kind, const std::vector<RunResult>& results) {
  const ResourceKindInfo& info = InfoOf(kind);
  for (const RunResult& result : results)
    for (const std::filesystem::path& file : result.MissingLists)
      if (EndsWith(file.string(), info.ListEnding)) listFiles_[kind].push_back(file);
  const auto levels = LevelsByName(kind, results);
  if (levels.empty()) return nullptr;
  auto* top = new QTreeWidgetItem(list_, {ToQString(CountText(levels.size(), info.One, info.Many))});
  top->setData(0, kindRole, static_cast<int>(kind));
  QFont bold = list_->font();
  bold.setBold(true);
  top->setFont(0, bold);
  for (const auto& [name, where] : levels)
    new QTreeWidgetItem(top, {ToQString(name), where.join(QStringLiteral(", "))});
  top->setExpanded(true);
  return top;
}

QWidget* MissingDialog::MakeMessages(const std::vector<RunResult>& results) {
  QStringList lines;
  for (const RunResult& result : results)
    for (const std::string& message : result.Messages)
      lines.append(ToQString(message));
  constexpr int linesShown = 6;
  if (lines.size() > linesShown) lines = lines.mid(0, linesShown) + QStringList{QStringLiteral("...")};
  auto* label = new QLabel(lines.join(u'\n'), this);
  label->setObjectName(QStringLiteral("LabelMessages"));
  label->setTextFormat(Qt::PlainText);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  label->setWordWrap(true);
  return label;
}

QWidget* MissingDialog::MakeButtons() {
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  QPushButton* copy = buttons->addButton(QStringLiteral("&Copy"), QDialogButtonBox::ActionRole);
  QPushButton* open = buttons->addButton(QStringLiteral("&Open list"), QDialogButtonBox::ActionRole);
  QPushButton* search =
      buttons->addButton(QStringLiteral("Choose &folders and convert again..."), QDialogButtonBox::ActionRole);
  copy->setObjectName(QStringLiteral("CommandCopy"));
  open->setObjectName(QStringLiteral("CommandOpenList"));
  search->setObjectName(QStringLiteral("CommandSearch"));
  copy->setToolTip(QStringLiteral("Copy the selected names, or all of them, to the clipboard"));
  open->setToolTip(QStringLiteral("Open the list of the selected kind in the desktop's text editor"));
  search->setToolTip(QStringLiteral("Say where files of the selected kind are"));
  connect(copy, &QPushButton::clicked, this, &MissingDialog::Copy);
  connect(open, &QPushButton::clicked, this, &MissingDialog::OpenList);
  connect(search, &QPushButton::clicked, this, [this] { emit SearchWanted(CurrentKind()); });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  const auto follow = [this, open] { open->setEnabled(!listFiles_[CurrentKind()].empty()); };
  connect(list_, &QTreeWidget::currentItemChanged, this, follow);
  follow();
  return buttons;
}

void MissingDialog::Copy() {
  QStringList names, all;
  for (QTreeWidgetItemIterator at(list_); *at; ++at) {
    if (!(*at)->parent()) continue;
    all.append((*at)->text(0));
    if ((*at)->isSelected()) names.append((*at)->text(0));
  }
  QApplication::clipboard()->setText((names.isEmpty() ? all : names).join(u'\n'));
}

void MissingDialog::OpenList() {
  for (const std::filesystem::path& file : listFiles_[CurrentKind()])
    services_.Open(ToQString(file));
}

} // namespace quarvel
