// The menus of the window; they also hold its shortcuts.
#include "app/desktop/form_main.h"
#include "app/desktop/qt_text.h"
#include "settings/option_sets.h"

#include <QApplication>
#include <QMenuBar>
#include <QMessageBox>

namespace quarvel {

void FormMain::MakeMenus() {
  const auto add = [this](QMenu* menu, const QString& text, QKeySequence keys, auto act) {
    QAction* action = menu->addAction(text);
    action->setShortcut(keys);
    connect(action, &QAction::triggered, this, act);
    return action;
  };
  QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
  idleActions_ += add(file, QStringLiteral("&Open level..."), QKeySequence::Open, [this] { files_->BrowseInput(); });
  idleActions_ +=
      add(file, QStringLiteral("Scene to &write..."), QKeySequence::SaveAs, [this] { files_->BrowseOutput(); });
  file->addSeparator();
  add(file, QStringLiteral("&Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q), [this] { close(); });

  QMenu* convert = menuBar()->addMenu(QStringLiteral("&Convert"));
  idleActions_ += add(convert, QStringLiteral("&Convert"), QKeySequence(Qt::Key_F5), [this] { Go(); });
  runActions_ += add(convert, QStringLiteral("&Pause or continue"), QKeySequence(Qt::Key_F6),
                     [this] { panel_->CommandPause()->toggle(); });
  runActions_ += add(convert, QStringLiteral("&Stop"), QKeySequence(Qt::Key_Escape), [this] { Stop(); });
  convert->addSeparator();
  idleActions_ += add(convert, QStringLiteral("Options for the &web"), {}, [this] { SetForWeb(); });
  idleActions_ += add(convert, QStringLiteral("&Defaults for all options"), {}, [this] { ShowDefaults(); });

  QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
  add(help, QStringLiteral("&About Quarvel"), {}, [this] {
    auto* box = new QMessageBox(QMessageBox::NoIcon, QStringLiteral("About Quarvel"),
                                QStringLiteral("Quarvel " QUARVEL_VERSION
                                               "\n\nTurns levels, exported from the Unreal editor as T3D text, into 3D "
                                               "scenes for the web.\n\nUnder the MIT licence."),
                                QMessageBox::Ok, this);
    box->setIconPixmap(windowIcon().pixmap(64));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
  });
}

/// The files and the window stay as they are.
void FormMain::ShowDefaults() {
  const ConversionSettings current = FormSettings();
  ConversionSettings defaults;
  defaults.ComboInFileName = current.ComboInFileName;
  defaults.TextOutFileName = current.TextOutFileName;
  defaults.TextSearchPathTxt = current.TextSearchPathTxt;
  defaults.TextSearchPathSnd = current.TextSearchPathSnd;
  defaults.TextSearchPathMesh = current.TextSearchPathMesh;
  defaults.SSTabPrefs = current.SSTabPrefs;
  for (const OptionInfo& option : OptionTable())
    ReleaseOption(option, store_);
  ShowSettings(defaults);
}

void FormMain::SetForWeb() {
  ConversionSettings settings = FormSettings();
  ApplyOptionSet(WebOptions(), settings);
  ShowSettings(settings);
  Tell(QStringLiteral("The next run makes a page"), ToQString(OptionSetText(WebOptions())));
}

} // namespace quarvel
