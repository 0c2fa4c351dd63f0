#include "app/desktop/missing_dialog.h"

#include "app/desktop/message_text.h"
#include "app/desktop/qt_text.h"
#include "app/desktop/result_bar.h"
#include "core/run_summary.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QGridLayout>
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

struct WithoutCase {
  bool operator()(const QString& a, const QString& b) const {
    const int order = a.compare(b, Qt::CaseInsensitive);
    return order != 0 ? order < 0 : a < b;
  }
};

/// Each missing name with the levels that miss it.
std::map<QString, QStringList, WithoutCase> LevelsByName(ResourceKind kind, const std::vector<RunResult>& results) {
  std::map<QString, QStringList, WithoutCase> levels;
  for (const RunResult& result : results)
    for (const std::string& name : result.Missing[kind])
      levels[ToQString(name)].append(ToQString(result.InputFile.filename()));
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
    new QTreeWidgetItem(top, {name, where.join(QStringLiteral(", "))});
  top->setExpanded(true);
  return top;
}

/// Says what is missing of a kind, with the way to another try beside it.
void MissingDialog::AddMessage(QGridLayout* grid, ResourceKind kind, const std::vector<RunResult>& results) {
  if (LevelsByName(kind, results).empty()) return;
  const QLatin1String many(InfoOf(kind).Many);
  const QLatin1String word(InfoOf(kind).Word);
  const std::vector<std::filesystem::path>& lists = listFiles_[kind];
  QString text = QStringLiteral("There were missing %1.").arg(many);
  if (lists.size() == 1) text += QStringLiteral(" Please see ") + ToQString(lists.front());
  if (lists.size() > 1) text += QStringLiteral(" Please see the lists beside the scenes.");
  QLabel* label = MakeWrappedLabel(text, this);
  label->setObjectName(QStringLiteral("LabelMessage") + word);
  auto* search = new QPushButton(QStringLiteral("Choose folders..."), this);
  search->setObjectName(QStringLiteral("CommandSearch") + word);
  search->setToolTip(QStringLiteral("Say where the %1 are, and convert again").arg(many));
  search->setAccessibleDescription(search->toolTip());
  search->setAutoDefault(false);
  connect(search, &QPushButton::clicked, this, [this, kind] { emit SearchWanted(kind); });
  const int row = grid->rowCount();
  grid->addWidget(label, row, 0);
  grid->addWidget(search, row, 1, Qt::AlignTop);
}

QWidget* MissingDialog::MakeMessages(const std::vector<RunResult>& results) {
  auto* box = new QWidget(this);
  auto* grid = new QGridLayout(box);
  grid->setContentsMargins({});
  grid->setColumnStretch(0, 1);
  for (const ResourceKind kind : ResourceKinds)
    AddMessage(grid, kind, results);
  return box;
}

QWidget* MissingDialog::MakeButtons() {
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  QPushButton* copy = buttons->addButton(QStringLiteral("&Copy"), QDialogButtonBox::ActionRole);
  QPushButton* open = buttons->addButton(QStringLiteral("&Open list"), QDialogButtonBox::ActionRole);
  QPushButton* game = buttons->addButton(QStringLiteral("Search a &game folder..."), QDialogButtonBox::ActionRole);
  game->setObjectName(QStringLiteral("CommandSearchGame"));
  game->setToolTip(QStringLiteral("Look for textures and sounds in the packages of a game, and convert again"));
  connect(game, &QPushButton::clicked, this, &MissingDialog::GameWanted);
  copy->setObjectName(QStringLiteral("CommandCopy"));
  open->setObjectName(QStringLiteral("CommandOpenList"));
  copy->setToolTip(QStringLiteral("Copy the selected names, or all of them, to the clipboard"));
  open->setToolTip(QStringLiteral("Open the list of the selected kind in the desktop's text editor"));
  connect(copy, &QPushButton::clicked, this, &MissingDialog::Copy);
  connect(open, &QPushButton::clicked, this, &MissingDialog::OpenList);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  EnterCloses(buttons);
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
