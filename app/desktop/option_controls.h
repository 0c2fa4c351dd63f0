#pragma once

#include "settings/option_table.h"

#include <QLabel>
#include <QObject>
#include <QWidget>
#include <map>
#include <string>
#include <vector>

class QButtonGroup;

namespace quarvel {

/// The widgets that hold options, each with the control's name as its object name. They follow the option table: kind,
/// items, help text, range, and what an option depends on.
class OptionControls : public QObject {
  Q_OBJECT

 public:
  explicit OptionControls(QObject* parent);

  /// Makes the widget of an option: a check box, option button, list or line. Where the caption is not on it,
  /// `MakeLabel` gives it.
  QWidget* Make(const OptionInfo& option, QWidget* parent);
  /// The caption of an option that `Make` has made, as a label that leads to it.
  QLabel* MakeLabel(const OptionInfo& option, QWidget* parent);
  /// A widget of another's making. It may be a check box, option button, list, line, or a list of numbered choices.
  void Add(const OptionInfo& option, QWidget* widget);
  /// A button or label that is of no use while the option is not.
  void AddCompanion(const std::string& control, QWidget* companion);

  /// Whether an option can be changed even when what it depends on is on.
  void SetUsable(const std::string& control, bool usable);

  QWidget* Find(const std::string& control) const; ///< null when there is none

  void Show(const ConversionSettings& settings);

  /// What is wrong with one control.
  struct Problem {
    QWidget* Widget = nullptr;
    QString Text; ///< one sentence without a full stop
  };
  /// Sets the options that have a control here. Those with a problem stay as they are.
  std::vector<Problem> Read(ConversionSettings& settings) const;

 signals:
  void Changed();
  /// The user has set this option, even if to what it was.
  void Edited(const OptionInfo& option);

 private:
  struct Control {
    const OptionInfo* Option = nullptr;
    QWidget* Widget = nullptr;
    std::vector<QWidget*> Companions;
    bool IsUsable = true;
    std::string LastGood; ///< of a number: the text to go back to
  };

  bool IsOn(const std::string& name) const;
  bool IsReachable(const Control& control) const;
  void CheckNumber(Control& control);
  void Update();

  std::map<std::string, Control> controls_;
  std::map<std::string, QButtonGroup*> groups_;
};

} // namespace quarvel
