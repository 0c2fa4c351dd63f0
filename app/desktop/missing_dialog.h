#pragma once

#include "app/desktop/desktop_services.h"
#include "app/desktop/option_pages.h"
#include "core/conversion_run.h"

#include <QDialog>
#include <QTreeWidget>
#include <vector>

class QGridLayout;

namespace quarvel {

/// Lists the textures, sounds and meshes that runs have missed, and leads to another try.
class MissingDialog : public QDialog {
  Q_OBJECT

 public:
  MissingDialog(const std::vector<RunResult>& results, DesktopServices& services, QWidget* parent);

  /// The kind that is looked at.
  ResourceKind CurrentKind() const;

 signals:
  /// The user wants to say where files of this kind are, and then to convert again.
  void SearchWanted(ResourceKind kind);
  /// The user wants to choose the folder of a game, and then to convert again.
  void GameWanted();

 private:
  QTreeWidgetItem* AddKind(ResourceKind kind, const std::vector<RunResult>& results);
  void AddMessage(QGridLayout* grid, ResourceKind kind, const std::vector<RunResult>& results);
  QWidget* MakeMessages(const std::vector<RunResult>& results);
  QWidget* MakeButtons();
  void Copy();
  void OpenList();

  DesktopServices& services_;
  QTreeWidget* list_;
  PerKind<std::vector<std::filesystem::path>> listFiles_;
};

} // namespace quarvel
