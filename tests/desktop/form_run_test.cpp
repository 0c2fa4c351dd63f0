#include "app/cli/command_line.h"
#include "app/desktop/folder_chooser.h"
#include "app/desktop/message_text.h"
#include "tests/desktop/form_test.h"

#include <QClipboard>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTreeWidget>
#include <map>
#include <sstream>

namespace quarvel {
namespace {

namespace fs = std::filesystem;

class FormRun : public FormTest {
 protected:
  void SetUp() override {
    FormTest::SetUp();
    fs::copy(QUARVEL_SAMPLES_DIR, folder_.Path(), fs::copy_options::recursive);
    fs::create_directory(folder_.Path() / "out");
    UseSampleLibraries();
  }

  void UseSampleLibraries() {
    SetLine("TextSearchPathTxt", Name("textures"));
    SetLine("TextSearchPathSnd", Name("sounds"));
    SetLine("TextSearchPathMesh", Name("meshes"));
  }

  void UseHarbour() {
    SetInput(Name("harbour.t3d"));
    SetLine("TextOutFileName", Name("out/harbour.wrl"));
  }

  /// Every file below a folder, by its relative name.
  std::map<std::string, std::string> FilesBelow(const std::string& name) const {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder_.Path() / name))
      if (entry.is_regular_file())
        files[entry.path().lexically_relative(folder_.Path() / name).string()] = folder_.Read(entry.path());
    return files;
  }

  /// Converts the window's input with the command line and the settings that the window has saved, and compares the
  /// files.
  void ExpectCommandLinesBytes(const std::string& input) {
    const std::map<std::string, std::string> windows = FilesBelow("out");
    EXPECT_GE(windows.size(), 2u);
    fs::rename(folder_.Path() / "out", folder_.Path() / "window");
    fs::create_directory(folder_.Path() / "out");
    const std::string settings = Name("Quarvel.ini").toStdString(), output = Name("out/harbour.wrl").toStdString();
    const char* arguments[] = {"quarvel", "--settings", settings.c_str(), input.c_str(), output.c_str()};
    std::ostringstream said;
    EXPECT_EQ(RunCommandLine(5, arguments, {said, said, false, {}}), ExitCode::Done) << said.str();
    const std::map<std::string, std::string> commandLines = FilesBelow("out");
    EXPECT_EQ(windows.size(), commandLines.size());
    for (const auto& [name, bytes] : windows)
      EXPECT_TRUE(commandLines.contains(name) && commandLines.at(name) == bytes) << name << " differs";
  }
};

TEST_F(FormRun, ADroppedLevelIsConvertedAsTheCommandLineDoes) {
  EXPECT_TRUE(Drop(Find<QLineEdit>("TextTeleHtOff"), {Name("harbour.t3d")}));
  EXPECT_EQ(Find<QComboBox>("ComboInFileName")->currentText(), Name("harbour.t3d"));
  EXPECT_EQ(Find<QLineEdit>("TextOutFileName")->text(), Name("harbour.wrl"));
  SetLine("TextOutFileName", Name("out/harbour.wrl"));
  Convert();
  ASSERT_EQ(form_->Results().size(), 1u);
  const RunResult& result = form_->Results().front();
  EXPECT_EQ(result.Outcome, RunOutcome::Done) << result.Error;
  const int subtractive = result.Findings.Counts().at("brushes left out as subtractive").Count;
  EXPECT_TRUE(TextOf("LabelPos").startsWith(QStringLiteral("Done; %1 subtractive brush").arg(subtractive)));
  EXPECT_TRUE(TextOf("LabelProgress").startsWith(QStringLiteral("Box: "))) << TextOf("LabelProgress").toStdString();
  EXPECT_EQ(TextOf("LabelUniqueMaterials"), QStringLiteral("Unique Materials: %1").arg(result.UniqueMaterials));
  CloseDialogs();
  ExpectCommandLinesBytes(Name("harbour.t3d").toStdString());
}

TEST_F(FormRun, OtherOptionsGiveTheCommandLinesBytesToo) {
  UseHarbour();
  for (const char* name : {"OptionFlux", "OptionIFSs", "CheckConforming", "CheckXMLtoo", "CheckMakePreloadScript",
                           "CheckOutputFlyThru", "CheckMakeDefaultViewpoint", "CheckEnclose"})
    Click(name);
  Click("CommandDestinationTexture");
  QDialog* dialog = Dialog("FormDestinationTexture");
  ASSERT_NE(dialog, nullptr);
  Find<QComboBox>("TextureDestPathBehavior", dialog)->setCurrentIndex(1);
  dialog->accept();
  Convert();
  CloseDialogs();
  ExpectCommandLinesBytes(Name("harbour.t3d").toStdString());
}

TEST_F(FormRun, PausesAtABrushAndGoesOn) {
  UseHarbour();
  QString shown;
  bool optionsLocked = false, wentInto = false;
  ConvertAnd([&] {
    Click("CommandPause");
    QTimer::singleShot(120, [&] {
      shown = TextOf("LabelProgress");
      optionsLocked = !Find<QWidget>("CheckFog")->isEnabled() && !Find<QPushButton>("CommandGo")->isEnabled();
      EXPECT_FALSE(Drop(form_.get(), {Name("terrace.t3d")})) << "a drop changes the input of a run";
      form_->Go();
      wentInto = !form_->Results().empty();
      Click("CommandPause");
    });
  });
  EXPECT_EQ(shown, "Paused");
  EXPECT_TRUE(optionsLocked);
  EXPECT_FALSE(wentInto) << "a run began within a run";
  EXPECT_EQ(form_->Results().front().Outcome, RunOutcome::Done);
  EXPECT_TRUE(Find<QPushButton>("CommandGo")->isEnabled());
  CloseDialogs();
  ExpectCommandLinesBytes(Name("harbour.t3d").toStdString());
}

TEST_F(FormRun, StopsAndCanConvertAgainAndClosingTheWindowEndsTheRunFirst) {
  UseHarbour();
  ConvertAnd([&] {
    Click("CommandPause");
    QTimer::singleShot(20, [&] { QTest::keyClick(form_.get(), Qt::Key_Escape); });
  });
  EXPECT_EQ(form_->Results().front().Outcome, RunOutcome::Stopped);
  EXPECT_EQ(TextOf("LabelPos"), "Stopped");
  EXPECT_FALSE(fs::exists(folder_.Path() / "out" / "harbour.x3d"));
  EXPECT_TRUE(form_->isVisible());
  QTest::keyClick(form_.get(), Qt::Key_F5);
  EXPECT_EQ(form_->Results().front().Outcome, RunOutcome::Done);
  CloseDialogs();

  bool closedAtOnce = true;
  ConvertAnd([&] {
    Click("CommandPause");
    QTimer::singleShot(20, [&] { closedAtOnce = form_->close(); });
  });
  EXPECT_FALSE(closedAtOnce);
  EXPECT_EQ(form_->Results().front().Outcome, RunOutcome::Stopped);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  QApplication::processEvents();
  EXPECT_FALSE(form_->isVisible());
}

TEST_F(FormRun, AFolderIsABatchWithARowForEachFile) {
  folder_.Write("maps/a/broken.t3d", "no level\r\n");
  fs::copy(folder_.Path() / "harbour.t3d", folder_.Path() / "maps" / "b harbour.t3d");
  fs::copy(folder_.Path() / "harbour.t3d", folder_.Path() / "maps" / "c.t3d");
  SetLine("TextOutFileName", Name("out/"));
  EXPECT_TRUE(Drop(form_.get(), {Name("maps")}));
  Convert();
  auto* rows = Find<QTreeWidget>("ListBatch");
  EXPECT_TRUE(rows->isVisible());
  ASSERT_EQ(rows->topLevelItemCount(), 3);
  EXPECT_EQ(rows->topLevelItem(0)->text(1), "holds no actor; it is not a level exported as T3D text");
  EXPECT_EQ(rows->topLevelItem(1)->text(1), "Done");
  EXPECT_EQ(rows->topLevelItem(2)->text(3), "1") << "missing files";
  EXPECT_TRUE(TextOf("LabelPos").startsWith(QStringLiteral("2 of 3 converted")));
  EXPECT_EQ(TextOf("LabelProgress"), "2 of 3 files converted");
  EXPECT_EQ(Find<QLineEdit>("TextOutFileName")->text(), Name("out/")) << "the output of the last file stays";
  EXPECT_NE(folder_.Read("Quarvel.ini").find("OutFile=" + Name("out/").toStdString() + "\n"), std::string::npos);
  EXPECT_TRUE(fs::exists(folder_.Path() / "out" / "b harbour.x3d"));
  QDialog* missing = Dialog("FormMissing");
  ASSERT_NE(missing, nullptr);
  auto* names = Find<QTreeWidget>("ListMissing", missing);
  EXPECT_EQ(names->topLevelItem(0)->child(0)->text(1), "b harbour.t3d, c.t3d");
  CloseDialogs();
  rows->setCurrentItem(rows->topLevelItem(0));
  EXPECT_FALSE(Find<QPushButton>("CommandOpenScene")->isEnabled());
  EXPECT_TRUE(Find<QPushButton>("CommandReport")->isEnabled());
}

TEST_F(FormRun, WhatIsMissingCanBeLookedForAgain) {
  UseHarbour();
  SetLine("TextSearchPathSnd", Name("textures"));
  Convert();
  QDialog* dialog = Dialog("FormMissing");
  ASSERT_NE(dialog, nullptr);
  EXPECT_TRUE(Find<QLabel>("LabelMessageSound", dialog)
                  ->text()
                  .contains(QStringLiteral("There were missing sounds. Please see ")));
  auto* list = Find<QTreeWidget>("ListMissing", dialog);
  ASSERT_EQ(list->topLevelItemCount(), 2);
  Click("CommandCopy", dialog);
  list->setCurrentItem(list->topLevelItem(1)->child(0));
  Click("CommandOpenList", dialog);
  EXPECT_EQ(desktop_.Opened, QStringList{Name("out/harbourMissingSounds.txt")});
  const std::size_t missed = form_->Results().front().Missing[ResourceKind::Sound].size();
  EXPECT_TRUE(QApplication::clipboard()->text().contains(
      ToQString(form_->Results().front().Missing[ResourceKind::Sound].back())));

  Click("CommandSearchSound", dialog);
  auto* chooser = qobject_cast<FolderChooser*>(Dialog("FormFolders"));
  ASSERT_NE(chooser, nullptr);
  EXPECT_EQ(chooser->Folders(), QStringList{Name("textures")});
  chooser->AddFolders({Name("sounds")});
  chooser->accept();
  QApplication::processEvents();
  EXPECT_EQ(Find<QLineEdit>("TextSearchPathSnd")->text(), Name("textures") + u';' + Name("sounds"));
  EXPECT_LT(form_->Results().front().Missing[ResourceKind::Sound].size(), missed) << "not converted again";

  dialog = Dialog("FormMissing");
  ASSERT_NE(dialog, nullptr);
  Click("CommandSearchGame", dialog);
  EXPECT_EQ(Dialog("FormMissing"), dialog) << "no folder was chosen";
  SetLine("TextSearchPathSnd", Name("textures"));
  desktop_.Folder = Name("sounds");
  Click("CommandSearchGame", dialog);
  QApplication::processEvents();
  EXPECT_TRUE(Find<QLineEdit>("TextSearchPathTxt")->text().endsWith(u';' + Name("sounds")));
  EXPECT_LT(form_->Results().front().Missing[ResourceKind::Sound].size(), missed) << "not converted again";
  CloseDialogs();
}

TEST_F(FormRun, TheTextInMemoryIsConvertedAgainUnlessTheInputChanges) {
  auto* reload = Find<QAbstractButton>("CheckRescanFile");
  UseHarbour();
  Convert();
  CloseDialogs();
  const std::string before = folder_.Read("out/harbour.wrl");
  folder_.Write("harbour.t3d", folder_.Read("terrace.t3d"));
  ASSERT_TRUE(reload->isEnabled());
  reload->click();
  Convert();
  CloseDialogs();
  EXPECT_EQ(folder_.Read("out/harbour.wrl"), before);
  SetInput(Name("terrace.t3d"));
  EXPECT_TRUE(reload->isChecked());
  EXPECT_EQ(Find<QLineEdit>("TextOutFileName")->text(), Name("out/terrace.wrl")) << "the user's folder is lost";
  Convert();
  CloseDialogs();
  EXPECT_NE(folder_.Read("out/terrace.wrl"), before);
}

TEST_F(FormRun, ThePreloadScriptCanBeCopiedAndSaved) {
  UseHarbour();
  Click("CheckMakePreloadScript");
  Convert();
  Dialog("FormMissing")->reject();
  QDialog* dialog = Dialog("FormPreload");
  ASSERT_NE(dialog, nullptr) << "the dialogs do not follow each other";
  Click("CommandCopy", dialog);
  EXPECT_EQ(QApplication::clipboard()->text().toStdString(), form_->Results().front().PreloadScript);
  desktop_.FileToSave = Name("page.js");
  Click("CommandSave", dialog);
  EXPECT_EQ(folder_.Read("page.js"), form_->Results().front().PreloadScript);
  CloseDialogs();
}

TEST_F(FormRun, TheReportNamesActorsAndTheSceneCanBeOpened) {
  UseHarbour();
  Convert();
  CloseDialogs();
  QString actor;
  for (const Finding& finding : form_->Results().front().Findings.Findings())
    if (!finding.Actor.empty()) actor = ToQString(finding.Actor);
  ASSERT_FALSE(actor.isEmpty());
  Click("CommandReport");
  QDialog* dialog = Dialog("FormReport");
  ASSERT_NE(dialog, nullptr);
  auto* list = Find<QTreeWidget>("ListReport", dialog);
  EXPECT_FALSE(list->findItems(actor, Qt::MatchExactly | Qt::MatchRecursive).isEmpty());
  Find<QLineEdit>("TextFilter", dialog)->setText(actor.toLower());
  EXPECT_TRUE(list->topLevelItem(0)->isHidden());
  Click("CommandCopy", dialog);
  EXPECT_TRUE(QApplication::clipboard()->text().contains(QStringLiteral("box: ")));
  CloseDialogs();

  Click("CommandOpenFolder");
  Click("CommandOpenScene");
  EXPECT_EQ(desktop_.Opened, (QStringList{Name("out"), Name("out/harbour.wrl")}));
  desktop_.CanOpen = false;
  Click("CommandOpenScene");
  EXPECT_NE(Dialog("FormMessage"), nullptr) << "nothing tells that there is no viewer";
  CloseDialogs();
}

TEST_F(FormRun, EachFileThatCouldNotBeWrittenIsShown) {
  form_->close();
  folder_.Write("Quarvel.ini", "[Quarvel]\nTextureDestPathBehavior=1\n");
  OpenForm();
  UseSampleLibraries();
  UseHarbour();
  folder_.Write("out/textures", "a file where the folder should be");
  Convert();
  const std::vector<std::string>& failed = form_->Results().front().FailedFiles;
  ASSERT_GE(failed.size(), 2U);
  EXPECT_EQ(TextOf("LabelPos"), QStringLiteral("Done, but %1 files could not be written").arg(failed.size()));
  auto* box = qobject_cast<QMessageBox*>(Dialog("FormMessage"));
  ASSERT_NE(box, nullptr);
  const QString told = box->text().remove(QChar(0x200B));
  EXPECT_TRUE(told.contains(ToQString(failed[0])) && told.contains(ToQString(failed[1]))) << ToText(told);
  CloseDialogs();
  Click("CommandReport");
  auto* list = Find<QTreeWidget>("ListReport", Dialog("FormReport"));
  EXPECT_EQ(list->topLevelItem(0)->text(0), QStringLiteral("Files not written"));
  QTreeWidgetItem* files = list->topLevelItem(0);
  ASSERT_EQ(files->childCount(), static_cast<int>(failed.size()));
  Find<QLineEdit>("TextFilter", Dialog("FormReport"))->setText(files->child(0)->text(0));
  EXPECT_FALSE(files->isHidden() || files->child(0)->isHidden()) << "what the filter names";
  EXPECT_TRUE(files->child(1)->isHidden());
  CloseDialogs();
}

TEST_F(FormRun, AStoppedBatchIsNotDoneAndANewInputClearsIt) {
  folder_.Write("maps/a.t3d", "no level\r\n");
  fs::copy(folder_.Path() / "harbour.t3d", folder_.Path() / "maps" / "b.t3d");
  SetInput(Name("maps/*.t3d"));
  desktop_.Folder = Name("out");
  SetLine("TextOutFileName", Name("none/there.wrl"));
  Click("CommandBrowseOut");
  EXPECT_EQ(desktop_.FolderStart, ToQString(folder_.Path())) << "the nearest folder that is there";
  EXPECT_EQ(Find<QLineEdit>("TextOutFileName")->text(), Name("out"));
  ConvertAnd([&] {
    Click("CommandPause");
    QTimer::singleShot(20, [&] { QTest::keyClick(form_.get(), Qt::Key_Escape); });
  });
  EXPECT_TRUE(TextOf("LabelPos").startsWith(QStringLiteral("Stopped")));
  CloseDialogs();
  SetInput(Name("harbour.t3d"));
  EXPECT_FALSE(Find<QTreeWidget>("ListBatch")->isVisible());
  EXPECT_FALSE(Find<QPushButton>("CommandReport")->isEnabled());
  EXPECT_EQ(TextOf("LabelPos"), "Ready");
  SetInput(Name("maps") + QStringLiteral(",a.t3d,b.t3d"));
  EXPECT_FALSE(Find<QLineEdit>("TextOutFileName")->isEnabled()) << "a list's scenes go to its own folder";
  fs::remove(folder_.Path() / "maps" / "b.t3d");
  Convert();
  EXPECT_EQ(TextOf("LabelPos"), "Not converted");
  CloseDialogs();
}

TEST_F(FormRun, TheFocusStaysAndEnterDoesNoMoreThanClose) {
  UseHarbour();
  auto* input = Find<QComboBox>("ComboInFileName");
  input->setFocus();
  QTest::keyClick(input, Qt::Key_End);
  form_->Go();
  QDialog* missing = Dialog("FormMissing");
  ASSERT_NE(missing, nullptr);
  QApplication::clipboard()->setText(QStringLiteral("mine"));
  QTest::keyClick(missing, Qt::Key_Return);
  EXPECT_EQ(Dialog("FormMissing"), nullptr);
  EXPECT_EQ(QApplication::clipboard()->text(), "mine");
  EXPECT_EQ(form_->focusWidget(), input);
  QTest::keyClick(input, Qt::Key_X);
  EXPECT_EQ(input->currentText(), Name("harbour.t3dx"));
}

TEST_F(FormRun, WhatCannotBeConvertedIsToldInABox) {
  Convert();
  EXPECT_EQ(TextOf("LabelPos"), "No level");
  SetInput(Name(std::string(200, 'n') + "/none.t3d"));
  Convert();
  EXPECT_TRUE(TextOf("LabelProgress").endsWith(QStringLiteral("none.t3d does not exist")));
  QDialog* box = Dialog("FormMessage");
  ASSERT_NE(box, nullptr);
  EXPECT_LT(box->width(), 900) << "widened by a long path";
  EXPECT_EQ(WithCaptions(QStringLiteral("x; the option CheckConforming avoids it, CheckCo does not")),
            "x; the option \"Conform to the standards\" avoids it, CheckCo does not");
  CloseDialogs();
}

} // namespace
} // namespace quarvel
