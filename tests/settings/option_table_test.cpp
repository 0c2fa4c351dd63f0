#include "settings/option_table.h"
#include "settings/option_values.h"

#include <gtest/gtest.h>
#include <map>
#include <set>

namespace quarvel {
namespace {

std::string TextOf(const char* control, const ConversionSettings& settings) {
  return OptionText(*FindOption(control), settings);
}

std::string Set(const char* control, const char* text, ConversionSettings& settings) {
  return SetOption(*FindOption(control), text, settings);
}

TEST(OptionTable, RowsAreConsistent) {
  const ConversionSettings any;
  std::set<std::string> controls;
  std::set<const void*> fields;
  std::map<std::string, int> selected;
  for (const OptionInfo& option : OptionTable()) {
    SCOPED_TRACE(option.Control);
    EXPECT_TRUE(controls.insert(option.Control).second);
    std::visit([&](const auto* field) { EXPECT_TRUE(fields.insert(field).second); }, option.Field.InConst(any));
    if (!option.Group.empty()) selected[option.Group] += DefaultText(option) == "-1";
    EXPECT_FALSE(option.Help.empty());
    EXPECT_EQ(option.Kind == OptionKind::OptionButton, !option.Group.empty());
    EXPECT_EQ(option.Kind == OptionKind::List, !option.Items.empty());
    if (!option.DependsOn.empty()) {
      const OptionInfo* master = FindOption(option.DependsOn);
      ASSERT_NE(master, nullptr);
      EXPECT_TRUE(master->Kind == OptionKind::CheckBox || master->Kind == OptionKind::OptionButton);
    }
    ConversionSettings settings;
    const bool isClearedButton = option.Kind == OptionKind::OptionButton && DefaultText(option) == "0";
    if (!isClearedButton) {
      EXPECT_EQ(SetOption(option, DefaultText(option), settings), "") << "the default is refused";
    }
    EXPECT_EQ(OptionText(option, settings), DefaultText(option));
    if (option.Kind != OptionKind::Number) continue;
    const NumberText& number = *std::get<NumberText*>(option.Field.In(settings));
    EXPECT_DOUBLE_EQ(number.Value, std::stod(number.Text));
  }
  EXPECT_EQ(selected.size(), 6u);
  for (const auto& [group, count] : selected)
    EXPECT_EQ(count, 1) << group;
}

TEST(OptionTable, FindsAndGuessesNames) {
  ASSERT_NE(FindOption("textscale"), nullptr);
  EXPECT_EQ(FindOption("textscale")->Key, "Scale");
  EXPECT_EQ(FindOption("Scale"), nullptr);
  EXPECT_EQ(NearestOption("CheckFgo").Control, "CheckFog");
  EXPECT_EQ(NearestOption("fog").Control, "CheckFog");
  EXPECT_EQ(NearestOption("Scale").Control, "TextScale");
  EXPECT_EQ(NearestOption("OptionVrml").Control, "OptionVRML97");
}

TEST(OptionValues, ChecksTheValueAgainstItsKind) {
  ConversionSettings settings;
  EXPECT_EQ(Set("CheckFog", "2", settings), "must be 0 or 1");
  EXPECT_EQ(Set("CheckFog", "-1", settings), "must be 0 or 1");
  EXPECT_EQ(Set("CheckFog", "Off", settings), "");
  EXPECT_FALSE(settings.CheckFog);
  EXPECT_EQ(Set("ListMovement", "FLY", settings), "");
  EXPECT_EQ(settings.ListMovement, "fly");
  EXPECT_EQ(Set("ListMovement", "swim", settings), "must be walk, fly, examine or none");
  EXPECT_EQ(Set("TextOutFileName", "a\nb", settings), "must be one line");
  EXPECT_EQ(Set("MeshDestPathBehavior", "3", settings), "must be a whole number from 0 to 2");
  EXPECT_EQ(Set("MeshDestPathBehavior", "2", settings), "");
  EXPECT_EQ(settings.MeshDest.DestPathBehavior, 2);
  EXPECT_EQ(settings.TextureDest.DestPathBehavior, 0);
}

TEST(OptionValues, ReadsNumbersWhole) {
  ConversionSettings settings;
  for (const char* bad : {"0", "-1", "1,5", "1.5x", "0x10", "nan", "inf", "1e999", "+-1", "."})
    EXPECT_EQ(Set("TextScale", bad, settings), "must be a number above 0") << bad;
  EXPECT_EQ(settings.TextScale.Text, "0.01904761905");
  EXPECT_EQ(Set("TextScale", " .50 ", settings), "");
  EXPECT_EQ(settings.TextScale.Text, ".50");
  EXPECT_EQ(settings.TextScale.Value, 0.5);
  EXPECT_EQ(Set("TextScale", "  ", settings), "");
  EXPECT_EQ(settings.TextScale.Value, 0.01904761905);
  EXPECT_EQ(Set("TextBezierSubD", "0.009", settings), "must be a number from 0.01 to 0.5");
  EXPECT_EQ(Set("TextBezierSubD", ".01", settings), "");
  for (const char* bad : {"1.5", "1e999"})
    EXPECT_EQ(Set("TextStartAtPoly", bad, settings), "must be a whole number, 0 or more") << bad;
  EXPECT_EQ(Set("TextTeleHtOff", "-16", settings), "");
}

TEST(OptionValues, ButtonsOfAGroupExcludeEachOther) {
  ConversionSettings settings;
  EXPECT_EQ(Set("OptionFlux", "-1", settings), "");
  EXPECT_EQ(TextOf("OptionVRML97", settings), "0");
  EXPECT_EQ(TextOf("OptionFlux", settings), "-1");
  EXPECT_NE(Set("OptionContact", "maybe", settings), "");
  EXPECT_EQ(Set("OptionVRML97", "0", settings), "");
  EXPECT_EQ(Set("OptionFlux", "0", settings), "cannot be cleared; select OptionContact or OptionVRML97 instead");
  EXPECT_EQ(TextOf("OptionFlux", settings), "-1");
  EXPECT_EQ(TextOf("OptionMeshes", settings), "-1") << "another group's button has changed";
}

} // namespace
} // namespace quarvel
