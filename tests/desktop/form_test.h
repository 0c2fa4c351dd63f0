#pragma once

#include "app/desktop/form_main.h"
#include "app/desktop/qt_text.h"
#include "tests/temporary_folder.h"

#include <QApplication>
#include <QDialog>
#include <QDropEvent>
#include <QMimeData>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <QUrl>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace quarvel {

/// Answers as the user would have, and notes what was opened.
class MadeUpDesktop : public DesktopServices {
 public:
  QStringList ChooseLevels(QWidget*, const QString&) override { return Levels; }
  QString ChooseFileToSave(QWidget*, const QString&, const QString&, const QString&) override { return FileToSave; }
  QString ChooseFolder(QWidget*, const QString&, const QString& start) override {
    FolderStart = start;
    return Folder;
  }
  bool Open(const QString& path) override {
    Opened.append(path);
    return CanOpen;
  }

  QStringList Levels;
  QString FileToSave, Folder, FolderStart;
  QStringList Opened;
  bool CanOpen = true;
};

/// The real window on the offscreen platform, with a settings file and levels of its own.
class FormTest : public testing::Test {
 protected:
  void SetUp() override { OpenForm(); }

  /// Closes the window and opens a new one on the same settings.
  void OpenForm() {
    if (form_) form_->close();
    form_ = std::make_unique<FormMain>(Name("Quarvel.ini"), desktop_);
    form_->show();
  }

  QString Name(const std::string& file) const { return ToQString(folder_.Path() / file); }

  template <typename Widget = QWidget>
  Widget* Find(const std::string& name, QObject* below = nullptr) const {
    auto* widget = (below ? below : form_.get())->findChild<Widget*>(ToQString(name));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
  }

  void Click(const std::string& name, QObject* below = nullptr) const {
    Find<QAbstractButton>(name, below)->click();
    QApplication::processEvents();
  }

  void SetLine(const std::string& name, const QString& text) const { Find<QLineEdit>(name)->setText(text); }
  void SetInput(const QString& text) const { Find<QComboBox>("ComboInFileName")->setEditText(text); }
  QString TextOf(const std::string& label) const { return Find<QLabel>(label)->text(); }

  /// The dialog on top, if it has this name; null otherwise.
  static QDialog* Dialog(const char* name) {
    QApplication::processEvents();
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    return dialog && dialog->objectName() == QLatin1String(name) ? dialog : nullptr;
  }

  static void CloseDialogs() {
    while (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
      dialog->reject();
      QApplication::processEvents();
    }
  }

  /// Converts by a press of the button and, when the run asks for events, does this, once.
  void ConvertAnd(const std::function<void()>& act) {
    QTimer timer;
    timer.setSingleShot(true);
    bool acted = false;
    QObject::connect(&timer, &QTimer::timeout, [&] {
      acted = true;
      EXPECT_TRUE(form_->IsRunning());
      act();
    });
    timer.start(0);
    Find<QPushButton>("CommandGo")->click();
    EXPECT_TRUE(acted) << "the run let no event happen";
  }

  void Convert() {
    Click("CommandGo");
    EXPECT_FALSE(form_->IsRunning());
  }

  bool Drop(QWidget* on, const QStringList& paths) const {
    QMimeData data;
    QList<QUrl> urls;
    for (const QString& path : paths)
      urls.append(QUrl::fromLocalFile(path));
    data.setUrls(urls);
    // As the platform does it: the drop goes to the innermost widget that accepts drops.
    while (on && !on->acceptDrops())
      on = on->parentWidget();
    QDragEnterEvent enter({}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QApplication::sendEvent(on, &enter);
    if (!enter.isAccepted()) return false;
    QDropEvent drop({}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(on, &drop);
    return true;
  }

  TemporaryFolder folder_;
  MadeUpDesktop desktop_;
  std::unique_ptr<FormMain> form_;
};

} // namespace quarvel
