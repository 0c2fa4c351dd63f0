#pragma once

#include "app/desktop/option_controls.h"
#include "settings/resource_kind.h"

#include <QTabWidget>

class QGridLayout;
class QHBoxLayout;

namespace quarvel {

/// The option pages, `SSTabPrefs`.
class OptionPages : public QTabWidget {
  Q_OBJECT

 public:
  OptionPages(OptionControls& controls, QWidget* parent);

  /// Turns to the page that holds the control, and gives it the focus.
  void Reveal(QWidget* control);

 signals:
  void FoldersWanted(ResourceKind kind);
  void DestinationWanted(ResourceKind kind);

 private:
  QWidget* MakePage(OptionTab tab);
  QWidget* MakeSection(std::string_view title, const std::vector<std::string_view>& names, QWidget* page);
  QHBoxLayout* AddRow(QGridLayout* grid, const OptionInfo& option, int depth);
  void AddToRow(QHBoxLayout* row, const OptionInfo& option, QWidget* box);
  void AddPathRow(QGridLayout* grid, const OptionInfo& option, ResourceKind kind);

  OptionControls& controls_;
};

} // namespace quarvel
