// What the window does from a press of the Go button to the end of the run.
#include "app/desktop/form_main.h"
#include "app/desktop/qt_text.h"
#include "core/run_summary.h"
#include "settings/settings_file.h"

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QTimer>

namespace quarvel {

void FormMain::Go() {
  if (isRunning_ || !IsReady()) return;
  files_->Remember();
  files_->SaveRecent(store_);
  const ConversionSettings settings = FormSettings();
  std::vector<ConversionJob> jobs = ListJobs({settings.ComboInFileName}, settings.TextOutFileName, settings);
  for (ConversionJob& job : jobs) // the window proposes the name beside the level by itself
    job.OutputTyped = job.OutputTyped && job.OutFile != std::filesystem::path(job.InFile).replace_extension(".wrl");
  Run(std::move(jobs));
}

/// Leads the user to what has to be put right first.
bool FormMain::IsReady() {
  ConversionSettings scratch;
  const std::vector<OptionControls::Problem> problems = controls_.Read(scratch);
  if (!problems.empty()) {
    Tell(QStringLiteral("Please correct this first"), problems.front().Text);
    pages_->Reveal(problems.front().Widget);
    return false;
  }
  if (files_->Input().trimmed().isEmpty()) {
    Tell(QStringLiteral("No level"), QStringLiteral("Drop a level on the window, or choose one, and press Convert."));
    controls_.Find("ComboInFileName")->setFocus();
    if (scratch.CheckBeep) QApplication::beep();
    return false;
  }
  return true;
}

void FormMain::Run(const std::vector<ConversionJob>& jobs) {
  const ConversionSettings settings = FormSettings();
  auto* output = qobject_cast<QLineEdit*>(controls_.Find("TextOutFileName"));
  const QString outputTyped = output->text();
  results_.clear();
  ShowResult(-1);
  batch_->Begin(jobs);
  batch_->setVisible(jobs.size() > 1);
  interface_->Begin();
  ShowRunning(true);
  const BatchEvents events{[&](const ConversionJob& job) {
                             if (job.Refusal.empty()) output->setText(ToQString(job.OutFile));
                             batch_->ShowStarted();
                           },
                           [&](const ConversionJob&, const RunResult& result) { batch_->ShowFinished(result); }};
  results_ = RunBatch(jobs, settings, store_, memory_, *interface_, events);
  output->setText(outputTyped); // of a batch, it is the folder for all
  if (jobs.size() > 1) KeepOutput();
  FinishRun(jobs.size());
}

/// The runs of a batch have saved their own outputs. What the user typed is what the next batch is to go by.
void FormMain::KeepOutput() {
  WriteOption(*FindOption("TextOutFileName"), FormSettings(), store_);
  if (const std::string error = store_.Save(); !error.empty()) interface_->ShowMessage(error);
}

void FormMain::FinishRun(std::size_t jobs) {
  interface_->End();
  ShowRunning(false);
  ShowOutcome(jobs);
  batch_->End();
  ShowResult(static_cast<int>(results_.size()) - 1);
  if (closeAfterRun_) {
    QTimer::singleShot(0, this, &QWidget::close);
    return;
  }
  QApplication::alert(this);
  afterRun_->ShowAll(results_, interface_->Messages());
}

/// The window during a run, or without one. The options are those of the run, so they stay as they are.
void FormMain::ShowRunning(bool running) {
  isRunning_ = running;
  files_->setEnabled(!running);
  pages_->setEnabled(!running);
  panel_->ShowRunning(running);
  for (QAction* action : idleActions_)
    action->setEnabled(!running);
  for (QAction* action : runActions_)
    action->setEnabled(running);
  controls_.SetUsable("CheckRescanFile", !memory_.LoadedFileName.empty()); // else there is nothing to convert instead
  if (running)
    panel_->CommandStop()->setFocus();
  else if (!focusWidget() || focusWidget() == panel_->CommandStop())
    panel_->CommandGo()->setFocus();
}

void FormMain::ShowOutcome(std::size_t jobs) {
  if (jobs > 1) return Tell(QStringLiteral("Done"), ToQString(BatchSummary(results_, jobs)));
  const RunResult& result = results_.back();
  if (result.Outcome == RunOutcome::Failed) Tell(QStringLiteral("Not converted"), ToQString(result.Error));
  if (result.Outcome == RunOutcome::Stopped)
    Tell(QStringLiteral("Stopped"), QStringLiteral("The scene is not complete."));
}

void FormMain::SetPaused(bool paused) {
  panel_->CommandPause()->setText(paused ? QStringLiteral("&Continue") : QStringLiteral("&Pause"));
  interface_->SetActive(!paused);
}

void FormMain::Stop() {
  if (!isRunning_) return;
  interface_->RequestStop();
  Tell(QStringLiteral("Stopping"), {});
}

void FormMain::ShowResult(int row) {
  currentResult_ = row;
  resultBar_->Show(CurrentResult());
}

const RunResult* FormMain::CurrentResult() const {
  return currentResult_ >= 0 && currentResult_ < static_cast<int>(results_.size())
             ? &results_[static_cast<std::size_t>(currentResult_)]
             : nullptr;
}

} // namespace quarvel
