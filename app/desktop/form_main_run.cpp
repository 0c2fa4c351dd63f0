// What the window does from a press of the Go button to the end of the run.
#include "app/desktop/form_main.h"
#include "app/desktop/message_text.h"
#include "app/desktop/qt_text.h"
#include "core/run_summary.h"

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
  std::vector<ConversionJob> jobs = ListJobs({settings.ComboInFileName}, ToText(files_->Output()), settings);
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
  const double share = 1.0 / static_cast<double>(jobs.size());
  int started = 0;
  const BatchEvents events{[&](const ConversionJob& job) {
                             if (job.Refusal.empty()) output->setText(ToQString(job.OutFile));
                             interface_->BeginFile(static_cast<double>(started++) * share, share);
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
  static_cast<void>(store_.Save());
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
  std::vector<std::string> more;
  if (!store_.Problem().empty()) more.push_back(store_.Problem());
  afterRun_->ShowAll(results_, more);
}

/// The window during a run, or without one. The options are those of the run, so they stay as they are.
void FormMain::ShowRunning(bool running) {
  isRunning_ = running;
  if (running) TakeFocus();
  files_->setEnabled(!running);
  pages_->setEnabled(!running);
  for (QAction* action : idleActions_)
    action->setEnabled(!running);
  for (QAction* action : runActions_)
    action->setEnabled(running);
  controls_.SetUsable("CheckRescanFile", !memory_.LoadedFileName.empty()); // else there is nothing to convert instead
  if (!running) GiveFocusBack();
  panel_->ShowRunning(running);
}

/// What is disabled while it has the focus hands it on to anything: during a run the stop button has it.
void FormMain::TakeFocus() {
  focusBeforeRun_ = focusWidget();
  panel_->CommandStop()->setEnabled(true);
  panel_->CommandStop()->setFocus(Qt::OtherFocusReason);
}

/// To where it was before the run, so that the next key does what it would have done; unless the user has moved it.
void FormMain::GiveFocusBack() {
  panel_->CommandGo()->setEnabled(true);
  const QWidget* now = focusWidget();
  const bool isMoved = now && now != panel_->CommandStop() && now != panel_->CommandPause();
  if (isMoved) return;
  const bool isThere = focusBeforeRun_ && focusBeforeRun_->isEnabled() && focusBeforeRun_->isVisible();
  (isThere ? focusBeforeRun_.data() : panel_->CommandGo())->setFocus(Qt::OtherFocusReason);
}

QString FormMain::SubtractiveText() const {
  std::size_t left = 0;
  for (const RunResult& result : results_)
    for (const auto& [what, counted] : result.Findings.Counts())
      if (counted.Code == FindingCode::SubtractiveBrushes) left += static_cast<std::size_t>(counted.Count);
  if (left == 0) return {};
  return QStringLiteral("; ") + ToQString(CountText(left, "subtractive brush is", "subtractive brushes are")) +
         QStringLiteral(" left out");
}

void FormMain::ShowOutcome(std::size_t jobs) {
  if (jobs > 1)
    return Tell(ToQString(BatchHeadline(results_, jobs)) + SubtractiveText(), ToQString(BatchSummary(results_, jobs)));
  const RunResult& result = results_.back();
  if (result.Outcome == RunOutcome::Done) panel_->ShowPass(QStringLiteral("Done") + SubtractiveText());
  if (const std::size_t failed = result.FailedFiles.size(); failed > 0)
    Tell(ToQString("Done, but " + CountText(failed, "file", "files") + " could not be written"),
         ToQString(result.Error));
  else if (result.Outcome == RunOutcome::Failed)
    Tell(QStringLiteral("Not converted"), WithCaptions(ToQString(result.Error)));
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
