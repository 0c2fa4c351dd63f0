#include "app/desktop/option_pages.h"

#include "app/desktop/mnemonics.h"
#include "app/desktop/page_layout.h"
#include "app/desktop/path_edit.h"
#include "app/desktop/qt_text.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QStyle>
#include <algorithm>
#include <optional>

namespace quarvel {

namespace {

constexpr int pages = static_cast<int>(OptionTab::None);
constexpr int indentation = 22; // about the width of a check mark

/// How many of the options that this one depends on stand in the same section.
int DepthOf(const OptionInfo& option, const std::vector<std::string_view>& section) {
  int depth = 0;
  for (const OptionInfo* at = FindOption(option.DependsOn); at; at = FindOption(at->DependsOn))
    depth += std::any_of(section.begin(), section.end(),
                         [&](std::string_view name) { return WithoutPlus(name) == at->Control; });
  return depth;
}

std::vector<PageSection> SectionsByColumn() {
  std::vector<PageSection> sections = PageSections();
  std::stable_sort(sections.begin(), sections.end(),
                   [](const PageSection& a, const PageSection& b) { return a.Column < b.Column; });
  return sections;
}

std::optional<ResourceKind> PathKind(const OptionInfo& option) {
  for (const ResourceKind kind : ResourceKinds)
    if (option.Control == InfoOf(kind).SearchPathControl) return kind;
  return std::nullopt;
}

bool IsButton(const OptionInfo& option) {
  return option.Kind == OptionKind::CheckBox || option.Kind == OptionKind::OptionButton;
}

} // namespace

OptionPages::OptionPages(OptionControls& controls, QWidget* parent) : QTabWidget(parent), controls_(controls) {
  setObjectName(QStringLiteral("SSTabPrefs"));
  setDocumentMode(false);
  setUsesScrollButtons(true);
  for (int tab = 0; tab < pages; ++tab) {
    auto* scroll = new QScrollArea(this);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setWidget(MakePage(OptionTab(tab)));
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->viewport()->setAutoFillBackground(false);
    scroll->widget()->setAutoFillBackground(false);
    addTab(scroll, ToQString(TabCaption(OptionTab(tab))));
    auto* shortcut = new QShortcut(QKeySequence(Qt::ALT | static_cast<Qt::Key>(Qt::Key_1 + tab)), this);
    connect(shortcut, &QShortcut::activated, this, [this, tab] { setCurrentIndex(tab); });
  }
}

void OptionPages::Reveal(QWidget* control) {
  for (int i = 0; i < count(); ++i)
    if (widget(i)->isAncestorOf(control)) setCurrentIndex(i);
  control->setFocus(Qt::OtherFocusReason);
}

QWidget* OptionPages::MakePage(OptionTab tab) {
  auto* page = new QWidget;
  auto* columns = new QHBoxLayout(page);
  QVBoxLayout* sides[2] = {new QVBoxLayout, nullptr};
  columns->addLayout(sides[0], 1);
  for (const PageSection& section : SectionsByColumn()) { // the Tab key goes down one column, then the next
    if (section.Tab != tab) continue;
    QVBoxLayout*& side = sides[section.Column];
    if (!side) columns->addLayout(side = new QVBoxLayout, 1);
    side->addWidget(MakeSection(section.Title, section.Controls, page));
  }
  for (QVBoxLayout* side : sides)
    if (side) side->addStretch();
  AssignMnemonics(page);
  return page;
}

QWidget* OptionPages::MakeSection(std::string_view title, const std::vector<std::string_view>& names, QWidget* page) {
  auto* box = new QGroupBox(ToQString(title), page);
  auto* grid = new QGridLayout(box);
  grid->setColumnStretch(1, 1);
  QHBoxLayout* row = nullptr;
  for (const std::string_view name : names) {
    const OptionInfo& option = *FindOption(WithoutPlus(name));
    if (const std::optional<ResourceKind> kind = PathKind(option))
      AddPathRow(grid, option, *kind);
    else if (name.starts_with('+'))
      AddToRow(row, option, box);
    else
      row = AddRow(grid, option, DepthOf(option, names));
  }
  return box;
}

/// Returns where more may be added to the row.
QHBoxLayout* OptionPages::AddRow(QGridLayout* grid, const OptionInfo& option, int depth) {
  QWidget* widget = controls_.Make(option, grid->parentWidget());
  QWidget* label = IsButton(option) ? nullptr : controls_.MakeLabel(option, grid->parentWidget());
  const int at = grid->rowCount();
  auto* lead = new QHBoxLayout;
  lead->addSpacing(depth * indentation);
  lead->addWidget(label ? label : widget);
  QHBoxLayout* rest = lead;
  if (label) {
    rest = new QHBoxLayout;
    rest->addWidget(widget, option.Kind == OptionKind::Text ? 1 : 0);
    grid->addLayout(lead, at, 0);
    grid->addLayout(rest, at, 1);
  } else {
    grid->addLayout(lead, at, 0, 1, 2);
  }
  if (option.Kind != OptionKind::Text) rest->addStretch();
  return rest;
}

/// A number behind its check box has its unit behind it.
void OptionPages::AddToRow(QHBoxLayout* row, const OptionInfo& option, QWidget* box) {
  QWidget* widget = controls_.Make(option, box);
  QLabel* label = controls_.MakeLabel(option, box);
  const bool isUnit = !option.DependsOn.empty() && row->indexOf(controls_.Find(option.DependsOn)) >= 0;
  if (isUnit) label->setText(ToQString(option.Caption).toLower());
  const int beforeStretch = row->count() - 1;
  row->insertWidget(beforeStretch, isUnit ? widget : label);
  row->insertWidget(beforeStretch + 1, isUnit ? label : widget);
}

void OptionPages::AddPathRow(QGridLayout* grid, const OptionInfo& option, ResourceKind kind) {
  const int row = grid->rowCount();
  QWidget* box = grid->parentWidget();
  auto* edit = new PathEdit(box);
  edit->setPlaceholderText(QStringLiteral("the folder of the level"));
  controls_.Add(option, edit);
  auto* browse = new QPushButton(QStringLiteral("Folders..."), box);
  browse->setObjectName(QStringLiteral("CommandFolders") + QLatin1String(InfoOf(kind).Word));
  auto* copies = new QPushButton(QStringLiteral("Copies..."), box);
  copies->setObjectName(QStringLiteral("CommandDestination") + QLatin1String(InfoOf(kind).Word));
  browse->setStatusTip(QStringLiteral("Choose the folders"));
  copies->setStatusTip(QStringLiteral("Where the files found are copied to, and how the scene names them"));
  for (QPushButton* button : {browse, copies}) {
    button->setToolTip(button->statusTip());
    controls_.AddCompanion(option.Control, button);
  }
  connect(browse, &QPushButton::clicked, this, [this, kind] { emit FoldersWanted(kind); });
  connect(copies, &QPushButton::clicked, this, [this, kind] { emit DestinationWanted(kind); });
  grid->addWidget(controls_.MakeLabel(option, box), row, 0);
  grid->addWidget(edit, row, 1);
  grid->addWidget(browse, row, 2);
  grid->addWidget(copies, row, 3);
}

} // namespace quarvel
