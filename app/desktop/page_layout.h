#pragma once

#include "settings/option_table.h"

#include <string_view>
#include <vector>

namespace quarvel {

/// A titled box on an option page, with its controls in the order in which they stand.
struct PageSection {
  OptionTab Tab;
  int Column; ///< 0 or 1; a page without a second column is wide
  std::string_view Title;
  std::vector<std::string_view> Controls; ///< one a row, but those that begin with "+" stand on the row before them
};

/// The control that an entry of `Controls` names.
std::string_view WithoutPlus(std::string_view name);

/// The sections of all pages. An option of the table that no section names comes into a last section of its page, so
/// that it can be reached.
std::vector<PageSection> PageSections();

/// The input and the output, which stand above the pages.
bool StandsAbovePages(const OptionInfo& option);

/// The destination options, which the folder option dialogs hold.
bool IsDestinationOption(const OptionInfo& option);

} // namespace quarvel
