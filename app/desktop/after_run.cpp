#include "app/desktop/after_run.h"

#include "app/desktop/message_text.h"
#include "app/desktop/missing_dialog.h"
#include "app/desktop/preload_dialog.h"
#include "app/desktop/qt_text.h"
#include "app/desktop/report_dialog.h"
#include "app/desktop/result_bar.h"
#include "core/run_summary.h"

#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <algorithm>

namespace quarvel {

namespace {

/// What is to be told in boxes and is no matter of missing files, which have a dialog of their own. Of several levels
/// each message says which it is about. `more` is what no level has told.
QStringList OtherMessages(const std::vector<RunResult>& results, const std::vector<std::string>& more) {
  QStringList others;
  for (const RunResult& result : results)
    for (const std::string& message : result.Messages) {
      if (IsAboutMissingFiles(message)) continue;
      const QString level =
          results.size() > 1 ? ToQString(result.InputFile.filename()) + QStringLiteral(": ") : QString();
      others.append(level + WithCaptions(ToQString(message)));
    }
  for (const std::string& message : more)
    others.append(WithCaptions(ToQString(message)));
  return others;
}

/// Why the level was not converted, or each file that is not beside its scenes.
QString ErrorText(const RunResult& result) {
  constexpr std::size_t shown = 12;
  if (result.FailedFiles.empty()) return WithCaptions(ToQString(result.Error));
  QStringList files{QStringLiteral("The scenes are written, but not all that belongs to them:")};
  for (std::size_t i = 0; i < std::min(shown, result.FailedFiles.size()); ++i)
    files.append(ToQString(result.FailedFiles[i]));
  if (const std::size_t count = result.FailedFiles.size(); count > shown)
    files.append(QStringLiteral("and %1 more, which the report names").arg(count - shown));
  return files.join(u'\n');
}

QMessageBox* MakeBox(QMessageBox::Icon icon, const QString& text, QWidget* window) {
  auto* box = new QMessageBox(icon, QStringLiteral("Quarvel"), Wrappable(text), QMessageBox::Ok, window);
  box->setObjectName(QStringLiteral("FormMessage"));
  box->setTextFormat(Qt::PlainText);
  return box;
}

} // namespace

AfterRun::AfterRun(DesktopServices& services, QWidget* window)
    : QObject(window), services_(services), window_(window) {}

void AfterRun::ShowAll(const std::vector<RunResult>& results, const std::vector<std::string>& more) {
  const bool isSingle = results.size() == 1;
  if (isSingle && results.front().Outcome == RunOutcome::Failed) ShowError(ErrorText(results.front()));
  if (const QStringList others = OtherMessages(results, more); !others.isEmpty()) ShowWarning(others.join(u'\n'));
  const bool anyListed = std::any_of(results.begin(), results.end(), [](const RunResult& result) {
    return std::any_of(result.Messages.begin(), result.Messages.end(), IsAboutMissingFiles);
  });
  if (anyListed) Enqueue(MissingOf(results));
  if (isSingle && !results.front().PreloadScript.empty()) Enqueue(PreloadOf(results.front()));
}

void AfterRun::ShowMissing(const std::vector<RunResult>& results) { Enqueue(MissingOf(results)); }

void AfterRun::ShowReport(const RunResult& result) {
  Enqueue([this, result] { return new ReportDialog(result, window_); });
}

void AfterRun::ShowPreloadScript(const RunResult& result) { Enqueue(PreloadOf(result)); }

void AfterRun::OpenFolder(const RunResult& result) {
  const QString folder = QFileInfo(ToQString(result.Page.empty() ? result.Scene.Text : result.Page)).absolutePath();
  Open(folder, QStringLiteral("The folder %1 cannot be opened").arg(folder));
}

void AfterRun::OpenScene(const RunResult& result) {
  if (!result.Page.empty()) {
    const QString page = QFileInfo(ToQString(result.Page)).absoluteFilePath();
    return Open(page, QStringLiteral("No browser is set up to open %1").arg(page));
  }
  const QFileInfo scene(ToQString(result.Scene.Text));
  Open(scene.absoluteFilePath(),
       QStringLiteral("No program is set up to open %1. Any viewer for VRML or X3D does.").arg(scene.fileName()));
}

void AfterRun::Open(const QString& path, const QString& otherwise) {
  if (!services_.Open(path)) ShowError(otherwise);
}

void AfterRun::ShowWarning(const QString& text) {
  Enqueue([this, text] { return MakeBox(QMessageBox::Warning, text, window_); });
}

void AfterRun::ShowError(const QString& text) {
  Enqueue([this, text] { return MakeBox(QMessageBox::Critical, text, window_); });
}

AfterRun::MakeDialog AfterRun::MissingOf(const std::vector<RunResult>& results) {
  return [this, results] {
    auto* dialog = new MissingDialog(results, services_, window_);
    connect(dialog, &MissingDialog::SearchWanted, this, [this, dialog](ResourceKind kind) {
      waiting_ = {}; // what they are about is to be made anew
      dialog->accept();
      emit SearchWanted(kind);
    });
    connect(dialog, &MissingDialog::GameWanted, this, [this, dialog] {
      const QString folder =
          services_.ChooseFolder(dialog, QStringLiteral("Choose the folder of a game"), QDir::homePath());
      if (folder.isEmpty()) return;
      waiting_ = {};
      dialog->accept();
      emit GameChosen(folder);
    });
    return dialog;
  };
}

AfterRun::MakeDialog AfterRun::PreloadOf(const RunResult& result) {
  return [this, script = ToQString(result.PreloadScript), file = ToQString(result.PreloadFile)] {
    return new PreloadDialog(script, file, services_, window_);
  };
}

void AfterRun::Enqueue(MakeDialog make) {
  waiting_.push(std::move(make));
  if (!isOpen_) OpenNext();
}

void AfterRun::OpenNext() {
  isOpen_ = !waiting_.empty();
  if (!isOpen_) return;
  QDialog* dialog = waiting_.front()();
  waiting_.pop();
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  connect(dialog, &QDialog::finished, this, &AfterRun::OpenNext);
  dialog->open();
}

} // namespace quarvel
