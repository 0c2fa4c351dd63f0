#pragma once

#include "app/desktop/desktop_services.h"
#include "app/desktop/option_pages.h"
#include "core/conversion_run.h"

#include <QObject>
#include <QWidget>
#include <functional>
#include <queue>
#include <vector>

class QDialog;

namespace quarvel {

/// The dialogs about finished runs. They do not wait for each other in code: one opens when the one before it closes.
class AfterRun : public QObject {
  Q_OBJECT

 public:
  AfterRun(DesktopServices& services, QWidget* window);

  /// Everything that the user is to see after a press of the button: an error, other messages, what is missing, and the
  /// preload script. `more` are messages that belong to no result.
  void ShowAll(const std::vector<RunResult>& results, const std::vector<std::string>& more);
  void ShowWarning(const QString& text);

  void ShowMissing(const std::vector<RunResult>& results);
  void ShowReport(const RunResult& result);
  void ShowPreloadScript(const RunResult& result);
  void OpenFolder(const RunResult& result);
  void OpenScene(const RunResult& result);

 signals:
  void SearchWanted(ResourceKind kind);
  void GameChosen(const QString& folder);

 private:
  using MakeDialog = std::function<QDialog*()>;

  void Enqueue(MakeDialog make);
  void OpenNext();
  void ShowError(const QString& text);
  void Open(const QString& path, const QString& otherwise);
  MakeDialog MissingOf(const std::vector<RunResult>& results);
  MakeDialog PreloadOf(const RunResult& result);

  DesktopServices& services_;
  QWidget* window_;
  std::queue<MakeDialog> waiting_;
  bool isOpen_ = false;
};

} // namespace quarvel
