#include "app/desktop/form_main.h"

#include "app/desktop/destination_dialog.h"
#include "app/desktop/folder_chooser.h"
#include "app/desktop/level_names.h"
#include "app/desktop/path_edit.h"
#include "app/desktop/qt_text.h"
#include "core/run_summary.h"

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDir>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QScreen>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

namespace quarvel {

namespace {

constexpr QSize usualSize(860, 690);

QWidget* MakeRule(QWidget* parent) {
  auto* rule = new QFrame(parent);
  rule->setFrameStyle(QFrame::HLine | QFrame::Sunken);
  return rule;
}

} // namespace

FormMain::FormMain(const QString& settingsFile, DesktopServices& services)
    : services_(services), store_(std::filesystem::path(ToText(settingsFile))), controls_(this) {
  setObjectName(QStringLiteral("FormMain"));
  setWindowTitle(QStringLiteral("Quarvel"));
  setAcceptDrops(true);
  MakeWidgets();
  interface_ = std::make_unique<WindowInterface>(*panel_);
  afterRun_ = std::make_unique<AfterRun>(services, this);
  MakeMenus();
  Connect();
  LoadSettings();
  ShowRunning(false);
}

FormMain::~FormMain() {
  // What widgets tell while they go must not reach a window that is half gone.
  disconnect(qApp, nullptr, this, nullptr);
  delete takeCentralWidget();
}

void FormMain::MakeWidgets() {
  auto* center = new QWidget(this);
  files_ = new FileFields(controls_, services_, center);
  pages_ = new OptionPages(controls_, center);
  batch_ = new BatchTable(center);
  panel_ = new RunPanel(center);
  resultBar_ = new ResultBar(center);
  auto* parts = new QSplitter(Qt::Vertical, center);
  parts->addWidget(pages_);
  parts->addWidget(batch_);
  parts->setChildrenCollapsible(false);
  parts->setStretchFactor(0, 1);
  parts->setSizes({300, 120});
  batch_->hide();
  auto* column = new QVBoxLayout(center);
  column->addWidget(files_);
  column->addWidget(parts, 1);
  column->addWidget(panel_);
  column->addWidget(MakeRule(center));
  column->addWidget(resultBar_);
  setCentralWidget(center);
  statusBar()->setSizeGripEnabled(true);
  // Files may be dropped on fields, too; only those for folders know what to do with them.
  for (QLineEdit* line : center->findChildren<QLineEdit*>())
    if (!qobject_cast<PathEdit*>(line)) line->setAcceptDrops(false);
}

void FormMain::Connect() {
  connect(files_, &FileFields::InputChanged, this, &FormMain::OnInputChanged);
  connect(&controls_, &OptionControls::Edited, this,
          [this](const OptionInfo& option) { ReleaseOption(option, store_); });
  connect(files_, &FileFields::Refused, this, [this](const QString& why) { Tell(QStringLiteral("Left out"), why); });
  connect(pages_, &OptionPages::FoldersWanted, this, [this](ResourceKind kind) { ChooseFolders(kind, false); });
  connect(pages_, &OptionPages::DestinationWanted, this, &FormMain::ChooseDestination);
  connect(batch_, &BatchTable::RowChosen, this, &FormMain::ShowResult);
  connect(panel_->CommandGo(), &QPushButton::clicked, this, &FormMain::Go);
  connect(panel_->CommandForWeb(), &QPushButton::clicked, this, &FormMain::SetForWeb);
  connect(panel_->CommandPause(), &QPushButton::toggled, this, &FormMain::SetPaused);
  connect(panel_->CommandStop(), &QPushButton::clicked, this, &FormMain::Stop);
  connect(afterRun_.get(), &AfterRun::SearchWanted, this, [this](ResourceKind kind) { ChooseFolders(kind, true); });
  connect(afterRun_.get(), &AfterRun::GameChosen, this, &FormMain::SearchGame);
  const auto onResult = [this](QPushButton* button, auto present) {
    connect(button, &QPushButton::clicked, this, [this, present] {
      if (const RunResult* result = CurrentResult()) (afterRun_.get()->*present)(*result);
    });
  };
  onResult(resultBar_->CommandReport(), &AfterRun::ShowReport);
  onResult(resultBar_->CommandPreload(), &AfterRun::ShowPreloadScript);
  onResult(resultBar_->CommandOpenFolder(), &AfterRun::OpenFolder);
  onResult(resultBar_->CommandOpenScene(), &AfterRun::OpenScene);
  connect(resultBar_->CommandMissing(), &QPushButton::clicked, this, [this] {
    if (const RunResult* result = CurrentResult()) afterRun_->ShowMissing({*result});
  });
  // Who uses the keyboard sees the help, too.
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
    if (now && isAncestorOf(now)) statusBar()->showMessage(now->statusTip());
  });
}

void FormMain::LoadSettings() {
  const std::string error = store_.Load();
  ConversionSettings settings;
  const std::vector<RefusedSetting> refused = quarvel::LoadSettings(settings, store_);
  files_->LoadRecent(store_);
  ShowSettings(settings);
  QSize size =
      settings.FormWidth > 0 && settings.FormHeight > 0 ? QSize(settings.FormWidth, settings.FormHeight) : usualSize;
  if (const QScreen* at = screen()) size = size.boundedTo(at->availableSize());
  resize(size);
  if (!error.empty())
    Tell(QStringLiteral("The settings could not be read"), ToQString(error));
  else
    Tell(QStringLiteral("Ready"), QStringLiteral("Drop a level on the window, or choose one, and press Convert."));
  if (!refused.empty()) TellRefused(refused);
}

/// Told when the window is there.
void FormMain::TellRefused(const std::vector<RefusedSetting>& refused) {
  QStringList lines{QStringLiteral("Some lines of the settings are not used. They stay in the file until you set these "
                                   "options here.\n")};
  for (const RefusedSetting& setting : refused)
    lines.append(ToQString(SentenceOf(setting)));
  QTimer::singleShot(0, this, [this, text = lines.join(u'\n')] { afterRun_->ShowWarning(text); });
}

ConversionSettings FormMain::FormSettings() const {
  ConversionSettings settings = settings_;
  controls_.Read(settings);
  settings.SSTabPrefs = pages_->currentIndex();
  settings.FormWidth = width();
  settings.FormHeight = height();
  return settings;
}

void FormMain::ShowSettings(const ConversionSettings& settings) {
  settings_ = settings;
  {
    const QSignalBlocker quiet(files_); // this is no new input
    controls_.Show(settings);
  }
  files_->Adopt();
  pages_->setCurrentIndex(std::clamp(settings.SSTabPrefs, 0, pages_->count() - 1));
}

void FormMain::OnInputChanged() {
  if (!isRunning_) { // what is shown is not this level's
    results_.clear();
    batch_->hide();
    ShowResult(-1);
    interface_->Clear();
    Tell(QStringLiteral("Ready"), {});
  }
  // Nor is the text in memory.
  if (auto* reload = qobject_cast<QCheckBox*>(controls_.Find("CheckRescanFile"))) reload->setChecked(true);
}

void FormMain::KeepWindowState() {
  ConversionSettings window;
  window.SSTabPrefs = pages_->currentIndex();
  window.FormWidth = width();
  window.FormHeight = height();
  for (const char* name : {"SSTabPrefs", "FormWidth", "FormHeight"})
    WriteOption(*FindOption(name), window, store_);
  files_->SaveRecent(store_);
  // A program that is about to end has nobody to tell of a folder that became unwritable.
  static_cast<void>(store_.Save());
}

void FormMain::ChooseFolders(ResourceKind kind, bool convertAgain) {
  auto* edit = qobject_cast<PathEdit*>(controls_.Find(InfoOf(kind).SearchPathControl));
  auto* dialog = new FolderChooser(QStringLiteral("%1 folders").arg(QLatin1String(InfoOf(kind).Word)), edit->Folders(),
                                   FolderOf(files_->Input()), this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  connect(dialog, &QDialog::accepted, this, [this, dialog, edit, convertAgain] {
    edit->SetFolders(dialog->Folders());
    if (convertAgain) QTimer::singleShot(0, this, &FormMain::Go);
  });
  dialog->open();
}

/// Adds a game's folder to those that are searched: its textures and sounds lie in packages somewhere below. No folder
/// means the level's, which stays.
void FormMain::SearchGame(const QString& folder) {
  for (const ResourceKind kind : {ResourceKind::Texture, ResourceKind::Sound}) {
    auto* edit = qobject_cast<PathEdit*>(controls_.Find(InfoOf(kind).SearchPathControl));
    QStringList folders = edit->Folders();
    if (folders.isEmpty()) folders.append(FolderOf(files_->Input()));
    folders.append(QDir::toNativeSeparators(folder));
    folders.removeDuplicates();
    edit->SetFolders(folders);
  }
  QTimer::singleShot(0, this, &FormMain::Go);
}

void FormMain::ChooseDestination(ResourceKind kind) {
  auto* dialog = new DestinationDialog(kind, settings_, this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  connect(dialog, &QDialog::accepted, this, [this, dialog] {
    dialog->Read(settings_);
    for (const OptionInfo* option : dialog->EditedOptions())
      ReleaseOption(*option, store_);
  });
  dialog->open();
}

void FormMain::Tell(const QString& pass, const QString& item) {
  panel_->ShowPass(pass);
  panel_->ShowItem(item);
}

void FormMain::closeEvent(QCloseEvent* event) {
  if (isRunning_) { // it closes when the run has ended
    closeAfterRun_ = true;
    Stop();
    event->ignore();
    return;
  }
  KeepWindowState();
  event->accept();
}

void FormMain::dragEnterEvent(QDragEnterEvent* event) {
  if (!isRunning_ && !DroppedPaths(event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void FormMain::dropEvent(QDropEvent* event) {
  TakePaths(DroppedPaths(event->mimeData()));
  event->acceptProposedAction();
}

} // namespace quarvel
