#include "settings/ini_store.h"
#include "settings/option_values.h"
#include "settings/settings_file.h"
#include "tests/settings/other_text.h"
#include "tests/temporary_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace quarvel {
namespace {

namespace fs = std::filesystem;

/// Settings of which every option differs from its default.
ConversionSettings ChangedSettings() {
  ConversionSettings settings;
  for (const OptionInfo& option : OptionTable())
    SetOption(option,
              option.Kind == OptionKind::Text ? " \"C:\\T\xC3\xA4st;[x]=;#\" \x80 '" + option.Control + "' "
                                              : test::OtherText(option),
              settings);
  return settings;
}

void ExpectEqual(const ConversionSettings& actual, const ConversionSettings& expected) {
  for (const OptionInfo& option : OptionTable()) {
    const bool inFile = option.Place != OptionPlace::Nowhere;
    EXPECT_EQ(OptionText(option, actual), inFile ? OptionText(option, expected) : DefaultText(option))
        << option.Control;
    if (!inFile || option.Kind != OptionKind::Number) continue;
    EXPECT_EQ(std::get<const NumberText*>(option.Field.InConst(actual))->Value,
              std::get<const NumberText*>(option.Field.InConst(expected))->Value);
  }
}

TEST(SettingsFile, SavingThenLoadingGivesEverythingBack) {
  const TemporaryFolder folder;
  const fs::path link = folder.Path() / "link.ini";
  fs::create_symlink("real.ini", link);
  const ConversionSettings saved = ChangedSettings();
  IniStore written(link);
  ASSERT_EQ(SaveSettings(saved, written), "");
  EXPECT_TRUE(fs::is_symlink(link));
  IniStore read(folder.Path() / "real.ini");
  ASSERT_EQ(read.Load(), "");
  ConversionSettings loaded;
  LoadSettings(loaded, read);
  ExpectEqual(loaded, saved);

  MemoryStore memory;
  ASSERT_EQ(SaveSettings(saved, memory), "");
  ConversionSettings remembered;
  LoadSettings(remembered, memory);
  ExpectEqual(remembered, saved);
}

TEST(SettingsFile, HasTheKeysInTheirOrder) {
  const TemporaryFolder folder;
  IniStore store(folder.Path() / "Quarvel.ini");
  ASSERT_EQ(SaveSettings({}, store), "");
  const std::string text = folder.Read("Quarvel.ini");
  EXPECT_TRUE(text.starts_with("[Quarvel]\nInFile=\nOutFile=\nScale=0.01904761905\nTextSearchPathTxt=\n")) << text;
  std::size_t at = 0;
  for (const char* line :
       {"\nTab=0\nFormWidth=0\nFormHeight=0\nTextMoverTriggerMargin=100\n",
        "\nOptionContact=0\nOptionFlux=0\nOptionVRML97=-1\n",
        "\nCheckCreaseAngle=0\nTextCreaseAngle=30\nTextureDestDoCopy=1\nTextureDestOverwrite=0\nTextureUEd3Behavior="
        "0\n",
        "\nMeshDestPathBehavior=0\nMeshDestPrependPath=\n",
        "\n[QuarvelExtra]\nCheckConforming=0\nCheckCarve=0\nCheckMergeLevel=0\n"}) {
    const std::size_t found = text.find(line, at);
    ASSERT_NE(found, text.npos) << line << text;
    at = found;
  }
  EXPECT_EQ(text.find("CheckCCW"), text.npos);
}

TEST(SettingsFile, WhatIsAbsentOrDamagedStaysAsItIs) {
  const TemporaryFolder folder;
  folder.Write("Quarvel.ini",
               "\xEF\xBB\xBF; mine\r\n[quarvel]\r\nscale = 0.5 \r\nInFile=an \"old\"\r\nCheckMovers=maybe\r\n"
               "ListMovement=*\r\nTextCreaseAngle=\r\nOptionVRML97=0\r\nOptionIFSs=-1\r\nOptionMeshes=-1\r\nno "
               "key\r\n[Other]\r\n"
               "Scale=3\r\n");
  IniStore store(folder.Path() / "Quarvel.ini");
  ASSERT_EQ(store.Load(), "");
  ConversionSettings settings;
  settings.CheckFog = false;
  settings.ListMovement = "fly";
  settings.TextCreaseAngle = {"45", 45};
  LoadSettings(settings, store);
  EXPECT_EQ(settings.TextScale.Value, 0.5);
  EXPECT_EQ(settings.ComboInFileName, "an \"old\"");
  EXPECT_FALSE(settings.CheckFog);
  EXPECT_TRUE(settings.CheckMovers);
  EXPECT_EQ(settings.ListMovement, "fly");
  EXPECT_EQ(settings.TextCreaseAngle.Value, 30) << "a blank number means its default";
  EXPECT_TRUE(settings.OptionVRML97) << "a group was left without a selected button";
  EXPECT_NE(settings.OptionIFSs, settings.OptionMeshes) << "of two selected buttons one is";

  ASSERT_EQ(SaveSettings(settings, store), "");
  const std::string text = folder.Read("Quarvel.ini");
  EXPECT_NE(text.find("; mine"), text.npos);
  EXPECT_NE(text.find("[Other]\nScale=3"), text.npos);
}

TEST(SettingsFile, ReportsWhatCannotBeReadOrWritten) {
  const TemporaryFolder folder;
  fs::create_directory(folder.Path() / "sub");
  EXPECT_NE(IniStore(folder.Path() / "sub").Load(), "");
  EXPECT_NE(IniStore(folder.Path() / "sub").Save(), "");
  const fs::path pipe = folder.Path() / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_NE(IniStore(pipe).Load(), "");
  EXPECT_NE(IniStore(pipe).Save(), "");
  EXPECT_EQ(fs::status(pipe).type(), fs::file_type::fifo) << "replaced";
  EXPECT_EQ(IniStore(folder.Path() / "none.ini").Load(), "");
  EXPECT_EQ(IniStore(folder.Path() / "none" / "Quarvel.ini").Save(),
            "cannot write the settings file " + (folder.Path() / "none" / "Quarvel.ini").string() +
                ": No such file or directory")
      << "another name than the user's";
}

} // namespace
} // namespace quarvel
