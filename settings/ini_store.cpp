#include "settings/ini_store.h"

#include "base/ascii_text.h"
#include "base/file_identity.h"
#include "base/output_file.h"

// Bytes are kept as they are; the library's default needs a conversion header that is not packaged with it.
#define SI_NO_CONVERSION
#include <SimpleIni.h>
#include <algorithm>
#include <fstream>
#include <iterator>
#include <system_error>

namespace quarvel {

namespace fs = std::filesystem;

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

bool IsQuoted(std::string_view value) { return value.size() >= 2 && value.front() == '"' && value.back() == '"'; }

/// Blanks at the ends of a line's value are lost on reading, and so is a pair of quotes: both need quotes around them.
std::string ToLineValue(std::string_view value) {
  std::string line(value);
  std::replace_if(
      line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n' || c == '\0'; }, ' ');
  const bool hasBlankEnd = !line.empty() && (IsBlank(line.front()) || IsBlank(line.back()));
  return hasBlankEnd || IsQuoted(line) ? '"' + line + '"' : line;
}

std::string_view FromLineValue(std::string_view line) {
  return IsQuoted(line) ? line.substr(1, line.size() - 2) : line;
}

} // namespace

struct IniStore::Content {
  // Told that the file is UTF-8, the library passes all bytes through as they are.
  CSimpleIniA Ini{true, false, false};
};

IniStore::IniStore(fs::path file) : file_(std::move(file)), content_(std::make_unique<Content>()) {
  content_->Ini.SetSpaces(false);
}

IniStore::~IniStore() = default;

std::string IniStore::Problem(const std::string& what, const std::string& reason) const {
  return what + " the settings file " + file_.string() + ": " + reason;
}

std::string IniStore::Load() {
  std::error_code error;
  const fs::file_status status = fs::status(file_, error);
  if (status.type() == fs::file_type::not_found) return {};
  if (status.type() == fs::file_type::directory) return "the settings file " + file_.string() + " is a folder";
  // Saving would replace a device by a file.
  if (status.type() != fs::file_type::regular) return "the settings file " + file_.string() + " is not a readable file";
  std::ifstream in(file_, std::ios::binary);
  if (!in) return Problem("cannot read", SystemReason());
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  if (!in || content_->Ini.LoadData(text) < 0) return Problem("cannot read", SystemReason());
  NoteLines(text);
  return {};
}

void IniStore::NoteLines(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  std::string section;
  int number = 0;
  for (std::size_t from = 0; from < text.size(); ++number) {
    const std::size_t end = std::min(text.find('\n', from), text.size());
    std::string_view line = text.substr(from, end - from);
    if (line.ends_with('\r')) line.remove_suffix(1);
    line = Trimmed(line);
    from = end + 1;
    isBlank_ = isBlank_ && line.empty();
    const std::size_t equals = line.find('=');
    if (line.starts_with('['))
      section = LowerCase(line.substr(1, line.find(']') - 1));
    else if (equals != line.npos)
      lines_[{section, LowerCase(Trimmed(line.substr(0, equals)))}] = number + 1;
  }
}

bool IniStore::HasSection(std::string_view section) const {
  return content_->Ini.GetSectionSize(std::string(section).c_str()) >= 0;
}

std::string IniStore::PlaceOf(std::string_view section, std::string_view key) const {
  const auto found = lines_.find({LowerCase(section), LowerCase(key)});
  return found == lines_.end() ? std::string() : file_.string() + ", line " + std::to_string(found->second);
}

std::string IniStore::ReadText(std::string_view section, std::string_view key, std::string_view fallback) const {
  const char* line = content_->Ini.GetValue(std::string(section).c_str(), std::string(key).c_str());
  return std::string(line ? FromLineValue(line) : fallback);
}

void IniStore::WriteText(std::string_view section, std::string_view key, std::string_view value) {
  content_->Ini.SetValue(std::string(section).c_str(), std::string(key).c_str(), ToLineValue(value).c_str());
}

std::string IniStore::Save() {
  std::string text;
  content_->Ini.Save(text, false);
  const std::string cannot = "cannot write the settings file " + file_.string() + ": ";
  std::error_code error;
  const fs::file_type type = fs::status(file_, error).type();
  if (type != fs::file_type::regular && type != fs::file_type::not_found) return cannot + "it is no ordinary file";
  const std::string why = WriteWholeFile(file_, text, AtLink::Follow);
  return why.empty() ? "" : cannot + why;
}

} // namespace quarvel
