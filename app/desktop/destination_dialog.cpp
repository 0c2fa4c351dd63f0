#include "app/desktop/destination_dialog.h"

#include "app/desktop/mnemonics.h"
#include "app/desktop/qt_text.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>

namespace quarvel {

namespace {

const OptionInfo& OptionOf(ResourceKind kind, const char* name) {
  return *FindOption(std::string(InfoOf(kind).Word) + name);
}

} // namespace

DestinationDialog::DestinationDialog(ResourceKind kind, const ConversionSettings& settings, QWidget* parent)
    : QDialog(parent), controls_(this) {
  setObjectName(QStringLiteral("FormDestination") + QLatin1String(InfoOf(kind).Word));
  setWindowTitle(QStringLiteral("Copies of %1").arg(QLatin1String(InfoOf(kind).Many)));
  auto* grid = new QGridLayout;
  grid->setColumnStretch(1, 1);
  for (const char* name : {"DestDoCopy", "DestOverwrite", "UEd3Behavior"})
    grid->addWidget(controls_.Make(OptionOf(kind, name), this), grid->rowCount(), 0, 1, 2);
  const OptionInfo& place = OptionOf(kind, "DestPathBehavior");
  QWidget* list = MakePlaceList(kind);
  const OptionInfo& prepend = OptionOf(kind, "DestPrependPath");
  QWidget* line = controls_.Make(prepend, this);
  line->setMinimumWidth(260);
  for (const auto& [option, widget] : {std::pair{&place, list}, std::pair{&prepend, line}}) {
    const int row = grid->rowCount();
    grid->addWidget(controls_.MakeLabel(*option, this), row, 0);
    grid->addWidget(widget, row, 1);
  }
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* column = new QVBoxLayout(this);
  column->addLayout(grid);
  column->addSpacing(8);
  column->addWidget(buttons);
  column->setSizeConstraint(QLayout::SetFixedSize);
  AssignMnemonics(this);
  controls_.Show(settings);
  connect(&controls_, &OptionControls::Edited, this, [this](const OptionInfo& option) { edited_.insert(&option); });
}

QWidget* DestinationDialog::MakePlaceList(ResourceKind kind) {
  auto* list = new QComboBox(this);
  list->addItem(QStringLiteral("Beside the scene"));
  list->addItem(QStringLiteral("In a folder \"%1\" beside the scene").arg(QLatin1String(InfoOf(kind).Many)));
  list->addItem(QStringLiteral("In the folders that the library has"));
  controls_.Add(OptionOf(kind, "DestPathBehavior"), list);
  return list;
}

} // namespace quarvel
