#pragma once

#include "app/desktop/option_controls.h"

#include <QTabWidget>

class QGridLayout;
class QHBoxLayout;

namespace quarvel {

/// The kinds of files that a level refers to, each with a search path and destination options of its own.
enum class LibraryKind { Texture, Sound, Mesh };

/// "Texture", which begins the names of the destination options.
QString KindWord(LibraryKind kind);
/// The control that holds the kind's search path.
const char* SearchPathControl(LibraryKind kind);

/// The option pages, `SSTabPrefs`.
class OptionPages : public QTabWidget {
  Q_OBJECT

 public:
  OptionPages(OptionControls& controls, QWidget* parent);

  /// Turns to the page that holds the control, and gives it the focus.
  void Reveal(QWidget* control);

 signals:
  void FoldersWanted(LibraryKind kind);
  void DestinationWanted(LibraryKind kind);

 private:
  QWidget* MakePage(OptionTab tab);
  QWidget* MakeSection(std::string_view title, const std::vector<std::string_view>& names, QWidget* page);
  QHBoxLayout* AddRow(QGridLayout* grid, const OptionInfo& option, int depth);
  void AddToRow(QHBoxLayout* row, const OptionInfo& option, QWidget* box);
  void AddPathRow(QGridLayout* grid, const OptionInfo& option, LibraryKind kind);

  OptionControls& controls_;
};

} // namespace quarvel
