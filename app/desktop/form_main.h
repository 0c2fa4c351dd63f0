#pragma once

#include "app/desktop/after_run.h"
#include "app/desktop/batch_table.h"
#include "app/desktop/desktop_services.h"
#include "app/desktop/file_fields.h"
#include "app/desktop/option_controls.h"
#include "app/desktop/option_pages.h"
#include "app/desktop/result_bar.h"
#include "app/desktop/run_panel.h"
#include "app/desktop/window_interface.h"
#include "app/desktop/window_store.h"
#include "core/batch.h"
#include "settings/settings_file.h"

#include <QMainWindow>
#include <QPointer>
#include <memory>
#include <vector>

namespace quarvel {

/// The main window. It holds the options of a run in its controls, and the text that the last run has read.
class FormMain : public QMainWindow {
  Q_OBJECT

 public:
  /// Reads the settings from `settingsFile`.
  FormMain(const QString& settingsFile, DesktopServices& services);
  ~FormMain() override;

  /// What the controls hold.
  ConversionSettings FormSettings() const;
  void ShowSettings(const ConversionSettings& settings);

  /// Files and folders that are to be converted next.
  void TakePaths(const QStringList& paths) { files_->TakePaths(paths); }

  bool IsRunning() const { return isRunning_; }
  const std::vector<RunResult>& Results() const { return results_; }

  /// The handler of the Go button: converts what the input names. Does nothing while a run is under way.
  void Go();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void MakeWidgets();
  void Connect();
  void MakeMenus();
  void ShowDefaults();
  void SetForWeb();
  void LoadSettings();
  void TellRefused(const std::vector<RefusedSetting>& refused);
  void KeepWindowState();
  void OnInputChanged();
  void ChooseFolders(ResourceKind kind, bool convertAgain);
  void SearchGame(const QString& folder);
  void ChooseDestination(ResourceKind kind);
  void SetPaused(bool paused);
  void Stop();

  bool IsReady();
  void Run(const std::vector<ConversionJob>& jobs);
  void ShowRunning(bool running);
  void TakeFocus();
  void GiveFocusBack();
  void ShowOutcome(std::size_t jobs);
  QString SubtractiveText() const;
  void KeepOutput();
  void FinishRun(std::size_t jobs);
  void Tell(const QString& pass, const QString& item);
  void ShowResult(int row);
  const RunResult* CurrentResult() const;

  DesktopServices& services_;
  WindowStore store_;
  ConversionSettings settings_; ///< of options that have no control in the window itself
  RunMemory memory_;
  bool isRunning_ = false;
  bool closeAfterRun_ = false;
  std::vector<RunResult> results_;
  int currentResult_ = -1;
  QPointer<QWidget> focusBeforeRun_;

  OptionControls controls_;
  FileFields* files_ = nullptr;
  OptionPages* pages_ = nullptr;
  BatchTable* batch_ = nullptr;
  RunPanel* panel_ = nullptr;
  ResultBar* resultBar_ = nullptr;
  std::unique_ptr<WindowInterface> interface_;
  std::unique_ptr<AfterRun> afterRun_;
  QList<QAction*> idleActions_; ///< of no use during a run
  QList<QAction*> runActions_;  ///< of use during a run only
};

} // namespace quarvel
