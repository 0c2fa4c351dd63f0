#pragma once

#include "settings/conversion_settings.h"

#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quarvel {

enum class OptionKind {
  CheckBox,     ///< 0 or 1
  OptionButton, ///< -1 for selected, 0 for not; exactly one of a group is selected
  Text,         ///< one line
  Number,       ///< a text box read as a number
  List,         ///< one of a few texts
  Integer,      ///< a number that no text box holds
};

enum class OptionPlace {
  Nowhere,      ///< starts at its default every time the program starts
  MainSection,  ///< section "Quarvel" of the settings file
  ExtraSection, ///< section "QuarvelExtra"
};

/// The sections of the settings file.
inline constexpr std::string_view MainSectionName = "Quarvel";
inline constexpr std::string_view ExtraSectionName = "QuarvelExtra";

/// The page of the window that shows the option.
enum class OptionTab {
  Files,
  Geometry,
  Textures,
  MoversAndTriggers,
  Lights,
  Sounds,
  Viewpoints,
  MeshesAndTerrain,
  Output,
  None, ///< the window's own state
};

/// The values a number may have; both ends belong to the range unless said otherwise.
struct NumberRange {
  double Least = -std::numeric_limits<double>::infinity();
  double Most = std::numeric_limits<double>::infinity();
  bool AboveLeast = false; ///< the least value itself is excluded
  bool Whole = false;      ///< no fractions
};

using OptionValue = std::variant<bool*, int*, std::string*, NumberText*>;
using ConstOptionValue = std::variant<const bool*, const int*, const std::string*, const NumberText*>;

/// Finds an option's field in the settings.
struct OptionField {
  OptionValue (*In)(ConversionSettings&);
  ConstOptionValue (*InConst)(const ConversionSettings&);
};

/// All there is to know about one option. Its default is the value of a fresh `ConversionSettings`.
struct OptionInfo {
  std::string Control; ///< the name of the control and of the field
  std::string Key;     ///< in the settings file
  OptionKind Kind = OptionKind::Text;
  OptionPlace Place = OptionPlace::Nowhere;
  OptionTab Tab = OptionTab::None;
  OptionField Field{};
  std::string Caption; ///< what the window writes on the control or beside it; empty without a control
  std::string Help;
  std::string DependsOn;                   ///< the control that must be on for this one to matter, or empty
  std::string Group;                       ///< of option buttons that exclude each other
  NumberRange Range;                       ///< of numbers and integers
  std::span<const std::string_view> Items; ///< of a list
};

/// Every option, those of the settings file first and in the file's order.
const std::vector<OptionInfo>& OptionTable();

/// Null when there is none. Letter case does not matter.
const OptionInfo* FindOption(std::string_view control);

/// The option whose name is most like what was typed.
const OptionInfo& NearestOption(std::string_view typed);

/// "Files", "Movers and triggers" ...; empty for `None`.
std::string_view TabCaption(OptionTab tab);

} // namespace quarvel
