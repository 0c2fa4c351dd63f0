#include "app/cli/option_list.h"

#include "settings/option_sets.h"
#include "settings/option_values.h"

#include <string_view>

namespace quarvel {

namespace {

constexpr int tabs = static_cast<int>(OptionTab::None) + 1;

std::string_view KindText(OptionKind kind) {
  switch (kind) {
  case OptionKind::CheckBox:
    return "check box";
  case OptionKind::OptionButton:
    return "option button";
  case OptionKind::Number:
    return "number";
  case OptionKind::List:
    return "list";
  case OptionKind::Integer:
    return "integer";
  case OptionKind::Text:
    break;
  }
  return "text";
}

std::string Heading(OptionTab tab) { return tab == OptionTab::None ? "The window" : std::string(TabCaption(tab)); }

std::string PlaceText(const OptionInfo& option) {
  switch (option.Place) {
  case OptionPlace::MainSection:
    return option.Key;
  case OptionPlace::ExtraSection:
    return option.Key + " in QuarvelExtra";
  case OptionPlace::Nowhere:
    break;
  }
  return "";
}

/// A cell ends at a bar, and "<" begins HTML.
std::string Cell(std::string_view text) {
  std::string cell;
  for (const char c : text) {
    if (c == '|' || c == '*' || c == '<') cell += '\\';
    cell += c;
  }
  return cell;
}

std::string Code(const std::string& text) { return text.empty() ? "" : "`" + text + "`"; }

std::string ListEntry(const OptionInfo& option) {
  const std::string allowed = AllowedValues(option);
  const bool saysKind = option.Kind == OptionKind::Number || option.Kind == OptionKind::Integer;
  std::string entry = "  " + option.Control + "=" + DefaultText(option) + "\n      ";
  if (!saysKind) entry += std::string(KindText(option.Kind)) + (allowed.empty() ? "" : ": ");
  entry += allowed;
  if (!option.Group.empty()) entry += "; one of the group \"" + option.Group + "\"";
  if (!option.DependsOn.empty()) entry += "; matters with " + option.DependsOn;
  return entry + "\n      " + option.Help + "\n";
}

std::string TableRow(const OptionInfo& option) {
  const std::string group = option.Group.empty() ? "" : " of \"" + option.Group + "\"";
  return "| `" + option.Control + "` | " + std::string(KindText(option.Kind)) + group + " | " +
         Cell(AllowedValues(option)) + " | " + Code(DefaultText(option)) + " | " + Code(option.DependsOn) + " | " +
         PlaceText(option) + " | " + Cell(option.Help) + " |\n";
}

template <typename Entry>
void AppendTab(std::string& text, OptionTab tab, Entry entry) {
  for (const OptionInfo& option : OptionTable())
    if (option.Tab == tab) text += entry(option);
}

} // namespace

std::string OptionList() {
  std::string text = "Options, with their defaults, for --set Control=Value\n";
  for (int tab = 0; tab < tabs; ++tab) {
    text += "\n" + Heading(OptionTab(tab)) + "\n";
    AppendTab(text, OptionTab(tab), ListEntry);
  }
  text += "\nSets of options\n  --" + WebOptions().Name + "\n      " + WebOptions().Help + ": " +
          OptionSetText(WebOptions()) + "\n      --set after it changes single ones\n";
  return text;
}

std::string OptionListAsMarkdown() {
  std::string text =
      "# Options\n\n"
      "Made with `quarvel --list-options --markdown`. On the command line an option is set with\n"
      "`--set Control=Value`. Those without a key in the settings file start at their default every time.\n";
  for (int tab = 0; tab < tabs; ++tab) {
    text += "\n## " + Heading(OptionTab(tab)) + "\n\n";
    text += "| Option | Kind | Values | Default | Matters with | Key | Meaning |\n|---|---|---|---|---|---|---|\n";
    AppendTab(text, OptionTab(tab), TableRow);
  }
  text += "\n## Sets of options\n\n| Set | Options | Meaning |\n|---|---|---|\n| `--" + WebOptions().Name + "` | " +
          Code(OptionSetText(WebOptions())) + " | " + WebOptions().Help + "; `--set` changes single ones |\n";
  return text;
}

} // namespace quarvel
