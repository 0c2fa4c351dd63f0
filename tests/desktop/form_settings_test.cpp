#include "app/desktop/page_layout.h"
#include "app/desktop/settings_location.h"
#include "settings/settings_file.h"
#include "tests/desktop/form_test.h"
#include "tests/settings/other_text.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QMessageBox>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabWidget>
#include <algorithm>

namespace quarvel {
namespace {

using test::OtherText;

bool HasControl(const OptionInfo& option) { return option.Tab != OptionTab::None; }

class FormSettings : public FormTest {
 protected:
  /// Does with the mouse and keyboard's means what sets the option, and what has to be on for it first.
  void Operate(const OptionInfo& option, const std::string& value, QWidget* window) {
    if (const OptionInfo* master = FindOption(option.DependsOn)) {
      if (auto* button = window->findChild<QAbstractButton*>(ToQString(master->Control));
          button && !button->isChecked())
        Operate(*master, master->Kind == OptionKind::CheckBox ? "1" : "-1", window);
    }
    auto* widget = Find<QWidget>(option.Control, window);
    ASSERT_TRUE(widget->isEnabled());
    if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
      if (button->isChecked() != (value != "0")) button->click();
    } else if (auto* list = qobject_cast<QComboBox*>(widget); list && !list->isEditable()) {
      list->setCurrentIndex(option.Kind == OptionKind::Integer ? std::stoi(value) : list->findText(ToQString(value)));
    } else {
      auto* line = list ? list->lineEdit() : qobject_cast<QLineEdit*>(widget);
      line->selectAll();
      QTest::keyClicks(line, ToQString(value));
    }
  }

  void OperateInDialog(const OptionInfo& option, const std::string& value) {
    const std::string kind = option.Control.substr(0, option.Control.find_first_of("DU"));
    Click("CommandDestination" + kind);
    QDialog* dialog = Dialog(("FormDestination" + kind).c_str());
    ASSERT_NE(dialog, nullptr);
    Operate(option, value, dialog);
    dialog->accept();
    QApplication::processEvents();
  }
};

TEST_F(FormSettings, EveryOptionCanBeReachedAndIsExplained) {
  for (const OptionInfo& option : OptionTable()) {
    if (!HasControl(option) || IsDestinationOption(option)) continue;
    const auto* widget = Find<QWidget>(option.Control);
    ASSERT_NE(widget, nullptr);
    EXPECT_EQ(widget->toolTip().toStdString(), option.Help);
    EXPECT_FALSE(option.Caption.empty()) << option.Control;
  }
  form_->resize(800, 700);
  auto* pages = Find<QTabWidget>("SSTabPrefs");
  for (int page = 0; page < pages->count(); ++page) {
    pages->setCurrentIndex(page);
    QApplication::processEvents();
    EXPECT_EQ(qobject_cast<QScrollArea*>(pages->widget(page))->horizontalScrollBar()->maximum(), 0)
        << "page " << page << " is wider than the window of " << form_->width();
  }
  for (const PageSection& section : PageSections())
    EXPECT_NE(section.Title, "More") << section.Controls.front() << " has no place of its own";
}

TEST_F(FormSettings, WhatIsSetInTheFormArrivesInTheRunsSettings) {
  for (const OptionInfo& option : OptionTable()) {
    if (!HasControl(option)) continue;
    SCOPED_TRACE(option.Control);
    form_->ShowSettings({});
    ConversionSettings expected = form_->FormSettings();
    ASSERT_EQ(SetOption(option, OtherText(option), expected), "");
    if (IsDestinationOption(option))
      OperateInDialog(option, OtherText(option));
    else if (option.Control == "CheckRescanFile")
      continue; // needs a level in memory
    else
      Operate(option, OtherText(option), form_.get());
    EXPECT_EQ(OptionText(option, form_->FormSettings()), OptionText(option, expected));
  }
}

TEST_F(FormSettings, EverySettingOfTheFileIsShownAndSavedByARun) {
  ConversionSettings settings;
  for (const OptionInfo& option : OptionTable())
    ASSERT_EQ(SetOption(option, OtherText(option), settings), "") << option.Control;
  settings.ComboInFileName = Name("none.t3d").toStdString();
  settings.TextOutFileName = Name("none.wrl").toStdString();
  settings.SSTabPrefs = 4;
  IniStore store(folder_.Path() / "Quarvel.ini");
  ASSERT_EQ(SaveSettings(settings, store), "");

  form_ = std::make_unique<FormMain>(Name("Quarvel.ini"), desktop_);
  const auto check = [&](const ConversionSettings& actual) {
    for (const OptionInfo& option : OptionTable()) {
      const bool isKept = option.Place != OptionPlace::Nowhere;
      if (!isKept || option.Control == "FormWidth" || option.Control == "FormHeight")
        continue; // the screen limits them
      EXPECT_EQ(OptionText(option, actual), OptionText(option, settings)) << option.Control;
    }
  };
  check(form_->FormSettings());
  Convert();
  CloseDialogs();
  IniStore saved(folder_.Path() / "Quarvel.ini");
  ASSERT_EQ(saved.Load(), "");
  ConversionSettings read;
  LoadSettings(read, saved);
  check(read);
}

TEST_F(FormSettings, ARefusedLineIsToldAndStaysUntilItsOptionIsSet) {
  folder_.Write("Quarvel.ini", "[Quarvel]\nScale=45,5\nListBMtypeOut=tiff\nCheckFog=2\nOptionTerrainEG=0\n"
                               "OptionTerrainIFS=-1\n");
  form_ = std::make_unique<FormMain>(Name("Quarvel.ini"), desktop_);
  form_->show();
  QDialog* box = Dialog("FormMessage");
  ASSERT_NE(box, nullptr);
  const QString told = qobject_cast<QMessageBox*>(box)->text().remove(QChar(0x200B));
  EXPECT_TRUE(told.contains(QStringLiteral("line 2: Scale=45,5 is not used: it must be a number above 0")))
      << told.toStdString();
  EXPECT_TRUE(told.contains(QStringLiteral("line 4: CheckFog=2")) && !told.contains(QStringLiteral("OptionTerrain")));
  CloseDialogs();
  SetInput(Name("none.t3d"));
  Click("CheckFog");
  Click("CheckFog");
  Convert();
  CloseDialogs();
  const std::string text = folder_.Read("Quarvel.ini");
  EXPECT_NE(text.find("\nScale=45,5\n"), text.npos);
  EXPECT_NE(text.find("\nCheckFog=1\n"), text.npos) << "set, even if to what it was";

  std::filesystem::permissions(folder_.Path() / "Quarvel.ini", std::filesystem::perms::owner_read);
  folder_.Write("a.t3d", "Begin Actor Class=PlayerStart Name=P\nEnd Actor\n");
  SetInput(Name("a.t3d"));
  Convert();
  EXPECT_EQ(form_->Results().front().Outcome, RunOutcome::Done) << "stopped by settings that cannot be saved";
  box = Dialog("FormMessage");
  ASSERT_NE(box, nullptr);
  EXPECT_TRUE(qobject_cast<QMessageBox*>(box)->text().contains(QStringLiteral("Permission denied")));
  CloseDialogs();
}

TEST_F(FormSettings, TheTabKeyGoesDownTheColumns) {
  auto* tabs = Find<QTabWidget>("SSTabPrefs");
  int seconds = 0;
  for (int i = 0; i < tabs->count(); ++i) {
    tabs->setCurrentIndex(i);
    QApplication::processEvents();
    QWidget* page = tabs->widget(i);
    int column = 0;
    for (QWidget* at = page->nextInFocusChain(); at != page; at = at->nextInFocusChain()) {
      const auto* box = qobject_cast<const QGroupBox*>(at->parentWidget());
      if (!box || !page->isAncestorOf(box)) continue;
      const int now = box->mapTo(page, QPoint()).x() > page->width() / 3 ? 1 : 0;
      EXPECT_GE(now, column) << at->objectName().toStdString();
      column = now;
    }
    seconds += column;
  }
  EXPECT_GT(seconds, 4) << "the pages have not been laid out";
}

TEST_F(FormSettings, WhatAnOptionDependsOnDecidesWhetherItCanBeChanged) {
  const auto enabled = [&](const char* name) { return Find<QWidget>(name)->isEnabledTo(form_.get()); };
  Find<QCheckBox>("CheckDoSounds")->setChecked(false);
  EXPECT_FALSE(enabled("TextSoundRadiusScale"));
  EXPECT_FALSE(enabled("TextSearchPathSnd"));
  EXPECT_FALSE(enabled("CommandFoldersSound"));
  Find<QCheckBox>("CheckMovers")->setChecked(false);
  Find<QCheckBox>("CheckDoTerrain")->setChecked(false);
  EXPECT_FALSE(enabled("TextMoverTriggerMargin") || enabled("ListTerrainBMtypeOut"));
  Find<QCheckBox>("CheckMakeDefaultViewpoint")->setChecked(true);
  EXPECT_FALSE(enabled("TextVProxSizeX"));
  Click("OptionDefViewAsProxSensor");
  Click("OptionDefViewPSSize");
  EXPECT_TRUE(enabled("TextVProxSizeX"));
  SetLine("TextVProxSizeX", QStringLiteral("-1"));
  Find<QCheckBox>("CheckMakeDefaultViewpoint")->setChecked(false);
  EXPECT_FALSE(enabled("TextVProxSizeX"));
  EXPECT_EQ(Find<QLineEdit>("TextVProxSizeX")->text(), "1000000") << "a wrong number cannot be put right any more";
  EXPECT_FALSE(enabled("CheckRescanFile")) << "there is no text in memory";
}

TEST_F(FormSettings, AWrongNumberKeepsTheRunFromStarting) {
  SetInput(Name("none.t3d"));
  SetLine("TextTeleHtOff", QStringLiteral("12,5"));
  Convert();
  EXPECT_TRUE(form_->Results().empty());
  EXPECT_EQ(TextOf("LabelProgress"), "Extra teleporter height must be a number");
  EXPECT_TRUE(Find<QLineEdit>("TextTeleHtOff")->isVisible()) << "its page is not shown";
  SetLine("TextTeleHtOff", QStringLiteral("12.5"));
  Convert();
  EXPECT_EQ(form_->Results().size(), 1u);
  CloseDialogs();
}

TEST_F(FormSettings, TheWindowComesBackAsItWasLeft) {
  SetInput(Name("a.t3d"));
  Convert();
  CloseDialogs();
  Find<QTabWidget>("SSTabPrefs")->setCurrentIndex(3);
  Find<QCheckBox>("CheckFog")->setChecked(false);
  form_->resize(790, 660);
  OpenForm();
  EXPECT_EQ(Find<QTabWidget>("SSTabPrefs")->currentIndex(), 3);
  EXPECT_EQ(form_->size(), QSize(790, 660));
  EXPECT_TRUE(Find<QCheckBox>("CheckFog")->isChecked()) << "the file holds the options of the last run";
  EXPECT_EQ(Find<QComboBox>("ComboInFileName")->count(), 1);
  SetInput(Name("A.T3D"));
  Convert();
  CloseDialogs();
  EXPECT_EQ(Find<QComboBox>("ComboInFileName")->count(), 1) << "the same file, but for letter case";
}

TEST(SettingsLocation, IsTheProgramsFolderWhereThatCanBeWritten) {
  const TemporaryFolder folder;
  EXPECT_EQ(SettingsLocation(ToQString(folder.Path())), ToQString(folder.Path() / "Quarvel.ini"));
  qputenv("XDG_CONFIG_HOME", folder.Path().c_str());
  EXPECT_EQ(SettingsLocation(ToQString(folder.Path() / "none")), ToQString(folder.Path() / "quarvel" / "Quarvel.ini"));
  EXPECT_TRUE(std::filesystem::is_directory(folder.Path() / "quarvel"));
  qunsetenv("XDG_CONFIG_HOME");
}

} // namespace
} // namespace quarvel
