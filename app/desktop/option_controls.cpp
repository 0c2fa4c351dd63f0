#include "app/desktop/option_controls.h"

#include "app/desktop/message_text.h"
#include "app/desktop/qt_text.h"
#include "settings/option_values.h"

#include <QAction>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QStyle>
#include <algorithm>

namespace quarvel {

namespace {

constexpr int leastNumberWidth = 8; // characters

std::string TextOf(const OptionInfo& option, const QWidget* widget) {
  if (const auto* button = qobject_cast<const QAbstractButton*>(widget))
    return button->isChecked() ? (option.Kind == OptionKind::OptionButton ? "-1" : "1") : "0";
  if (const auto* line = qobject_cast<const QLineEdit*>(widget)) return ToText(line->text());
  const auto* list = qobject_cast<const QComboBox*>(widget);
  return option.Kind == OptionKind::Integer ? std::to_string(list->currentIndex()) : ToText(list->currentText());
}

void SetText(const OptionInfo& option, QWidget* widget, const std::string& text) {
  if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
    // An option button is cleared by selecting another of its group.
    if (option.Kind == OptionKind::CheckBox || text != "0") button->setChecked(text != "0");
  } else if (auto* line = qobject_cast<QLineEdit*>(widget)) {
    line->setText(ToQString(text));
  } else if (auto* list = qobject_cast<QComboBox*>(widget)) {
    if (option.Kind == OptionKind::Integer)
      list->setCurrentIndex(std::stoi(text));
    else if (list->isEditable())
      list->setEditText(ToQString(text));
    else
      list->setCurrentIndex(list->findText(ToQString(text)));
  }
}

QComboBox* MakeList(const OptionInfo& option, QWidget* parent) {
  auto* list = new QComboBox(parent);
  for (const std::string_view item : option.Items)
    list->addItem(ToQString(item));
  return list;
}

QLineEdit* MakeNumber(const OptionInfo& option, QWidget* parent) {
  auto* line = new QLineEdit(parent);
  const int characters = std::max<int>(leastNumberWidth, static_cast<int>(DefaultText(option).size()));
  constexpr int frame = 24; // and room for the mark of a problem
  line->setFixedWidth(line->fontMetrics().horizontalAdvance(QString(characters, u'0')) + frame);
  return line;
}

/// "Scale must be a number above 0"; empty when the text is a value of the option.
QString ProblemOf(const OptionInfo& option, const std::string& text) {
  ConversionSettings scratch;
  const std::string problem = SetOption(option, text, scratch);
  return problem.empty() ? QString() : ToQString(option.Caption + " " + problem);
}

void MarkProblem(QWidget* line, const QString& problem) {
  const QString name = QStringLiteral("ActionProblem");
  auto* mark = line->findChild<QAction*>(name, Qt::FindDirectChildrenOnly);
  if (!mark && !problem.isEmpty()) {
    const QIcon icon = line->style()->standardIcon(QStyle::SP_MessageBoxWarning);
    mark = static_cast<QLineEdit*>(line)->addAction(icon, QLineEdit::TrailingPosition);
    mark->setObjectName(name);
  }
  if (!mark) return;
  mark->setVisible(!problem.isEmpty());
  mark->setToolTip(problem);
}

} // namespace

OptionControls::OptionControls(QObject* parent) : QObject(parent) {}

QWidget* OptionControls::Make(const OptionInfo& option, QWidget* parent) {
  QWidget* widget = nullptr;
  switch (option.Kind) {
  case OptionKind::CheckBox:
    widget = new QCheckBox(ToQString(option.Caption), parent);
    break;
  case OptionKind::OptionButton:
    widget = new QRadioButton(ToQString(option.Caption), parent);
    break;
  case OptionKind::List:
    widget = MakeList(option, parent);
    break;
  case OptionKind::Number:
    widget = MakeNumber(option, parent);
    break;
  case OptionKind::Text:
  case OptionKind::Integer:
    widget = new QLineEdit(parent);
    break;
  }
  Add(option, widget);
  return widget;
}

QLabel* OptionControls::MakeLabel(const OptionInfo& option, QWidget* parent) {
  auto* label = new QLabel(ToQString(option.Caption) + u':', parent);
  label->setBuddy(Find(option.Control));
  label->setToolTip(ToQString(option.Help));
  AddCompanion(option.Control, label);
  return label;
}

void OptionControls::Add(const OptionInfo& option, QWidget* widget) {
  widget->setObjectName(ToQString(option.Control));
  widget->setToolTip(ToQString(option.Help));
  widget->setStatusTip(ToQString(option.Help));
  widget->setAccessibleDescription(ToQString(option.Help));
  Control& control = controls_[option.Control];
  control = {&option, widget, {}, true, DefaultText(option)};
  if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
    if (option.Kind == OptionKind::OptionButton) {
      QButtonGroup*& group = groups_[option.Group];
      if (!group) group = new QButtonGroup(this);
      group->addButton(button);
    }
    connect(button, &QAbstractButton::toggled, this, &OptionControls::Update);
    connect(button, &QAbstractButton::clicked, this, [this, &option] { emit Edited(option); });
  } else if (auto* line = qobject_cast<QLineEdit*>(widget)) {
    connect(line, &QLineEdit::textChanged, this, [this, &control] {
      CheckNumber(control);
      emit Changed();
    });
    connect(line, &QLineEdit::textEdited, this, [this, &option] { emit Edited(option); });
  } else if (auto* list = qobject_cast<QComboBox*>(widget)) {
    connect(list, &QComboBox::currentTextChanged, this, &OptionControls::Changed);
    connect(list, &QComboBox::activated, this, [this, &option] { emit Edited(option); });
  }
}

void OptionControls::AddCompanion(const std::string& control, QWidget* companion) {
  controls_.at(control).Companions.push_back(companion);
}

void OptionControls::SetUsable(const std::string& control, bool usable) {
  controls_.at(control).IsUsable = usable;
  Update();
}

QWidget* OptionControls::Find(const std::string& control) const {
  const auto at = controls_.find(control);
  return at == controls_.end() ? nullptr : at->second.Widget;
}

void OptionControls::Show(const ConversionSettings& settings) {
  for (auto& [name, control] : controls_)
    SetText(*control.Option, control.Widget, OptionText(*control.Option, settings));
  Update();
}

std::vector<OptionControls::Problem> OptionControls::Read(ConversionSettings& settings) const {
  std::vector<Problem> problems;
  for (const auto& [name, control] : controls_) {
    const std::string text = TextOf(*control.Option, control.Widget);
    if (control.Option->Kind == OptionKind::OptionButton && text == "0") continue;
    const std::string problem = SetOption(*control.Option, text, settings);
    if (!problem.empty())
      problems.push_back({control.Widget, WithCaptions(ToQString(control.Option->Caption + " " + problem))});
  }
  return problems;
}

bool OptionControls::IsOn(const std::string& name) const {
  const auto* button = qobject_cast<const QAbstractButton*>(Find(name));
  return !button || button->isChecked(); // what is not here cannot be switched on here
}

bool OptionControls::IsReachable(const Control& control) const {
  for (const OptionInfo* at = control.Option; at && !at->DependsOn.empty(); at = FindOption(at->DependsOn))
    if (!IsOn(at->DependsOn)) return false;
  return control.IsUsable;
}

void OptionControls::CheckNumber(Control& control) {
  if (control.Option->Kind != OptionKind::Number) return;
  const std::string text = TextOf(*control.Option, control.Widget);
  const QString problem = ProblemOf(*control.Option, text);
  MarkProblem(control.Widget, problem);
  if (problem.isEmpty()) control.LastGood = text;
}

void OptionControls::Update() {
  for (auto& [name, control] : controls_) {
    const bool reachable = IsReachable(control);
    const bool isLeft = control.Widget->isEnabledTo(control.Widget->parentWidget()) && !reachable;
    control.Widget->setEnabled(reachable);
    for (QWidget* companion : control.Companions)
      companion->setEnabled(reachable);
    // Nobody could put right a number that cannot be reached.
    if (isLeft && control.Option->Kind == OptionKind::Number)
      SetText(*control.Option, control.Widget, control.LastGood);
  }
  emit Changed();
}

} // namespace quarvel
