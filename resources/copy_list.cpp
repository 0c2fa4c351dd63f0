#include "resources/copy_list.h"

#include "base/file_name.h"
#include "base/output_file.h"
#include "resources/url.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <optional>
#include <xxhash.h>

namespace quarvel {

namespace fs = std::filesystem;

namespace {

constexpr const char* heading = "# Copies that Quarvel made in this folder, what of and its hash. A listed copy is "
                                "kept, also when it was changed.\r\n";
constexpr std::string_view none = "-";

int DigitOf(char c) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  const std::size_t at = digits.find(c);
  return at == digits.npos ? -1 : static_cast<int>(at);
}

/// The reverse of EncodeUrlPath.
std::string Decoded(std::string_view text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isCode = text[i] == '%' && i + 2 < text.size() && DigitOf(text[i + 1]) >= 0 && DigitOf(text[i + 2]) >= 0;
    decoded += isCode ? static_cast<char>(DigitOf(text[i + 1]) * 16 + DigitOf(text[i + 2])) : text[i];
    if (isCode) i += 2;
  }
  return decoded;
}

bool StaysBelow(const fs::path& relative) {
  return !relative.empty() && !relative.is_absolute() && !relative.has_root_name() && *relative.begin() != ".." &&
         relative == relative.lexically_normal() && relative.native().find(fs::path::value_type()) == std::string::npos;
}

/// The columns of one line: copy, variant, hash, source.
std::optional<std::array<std::string, 4>> Columns(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  if (line.starts_with('#')) return std::nullopt;
  std::array<std::string, 4> columns;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::size_t tab = line.find('\t');
    if ((tab == line.npos) != (i + 1 == columns.size())) return std::nullopt;
    columns[i] = line.substr(0, tab);
    line = tab == line.npos ? std::string_view() : line.substr(tab + 1);
  }
  return columns;
}

} // namespace

CopyList::CopyList(fs::path folder) : folder_(std::move(folder)) { Read(); }

std::string CopyList::RelativeName(const fs::path& file) const { return Utf8Path(file.lexically_relative(folder_)); }

void CopyList::Read() {
  std::error_code error;
  const fs::path file = folder_ / FileName;
  if (fs::symlink_status(file, error).type() != fs::file_type::regular) return;
  std::ifstream stream(file, std::ios::binary);
  for (std::string line; std::getline(stream, line);) {
    const auto columns = Columns(line);
    if (!columns) continue;
    const auto& [copy, variant, hash, source] = *columns;
    std::string name = Decoded(copy);
    if (!StaysBelow(PathOfUtf8(name))) continue;
    Add(std::move(name), {Decoded(source), variant == none ? std::string() : variant, hash});
  }
}

void CopyList::Add(std::string name, CopyOrigin origin) {
  const auto [at, isNew] = origins_.try_emplace(std::move(name));
  if (!isNew) {
    const auto [from, to] = byKey_.equal_range(at->second.Key());
    const auto entry = std::find_if(from, to, [&](const auto& known) { return known.second == at->first; });
    if (entry != to) byKey_.erase(entry);
  }
  byKey_.emplace(origin.Key(), at->first);
  at->second = std::move(origin);
}

const CopyOrigin* CopyList::Find(const fs::path& file) const {
  if (origins_.empty()) return nullptr;
  const auto found = origins_.find(RelativeName(file));
  return found == origins_.end() ? nullptr : &found->second;
}

std::vector<fs::path> CopyList::CopiesOf(const std::string& key) const {
  std::vector<fs::path> copies;
  const auto [from, to] = byKey_.equal_range(key);
  for (auto at = from; at != to; ++at)
    copies.push_back(folder_ / PathOfUtf8(at->second));
  std::sort(copies.begin(), copies.end());
  return copies;
}

void CopyList::Note(const fs::path& file, CopyOrigin origin) {
  const std::string name = RelativeName(file);
  if (!StaysBelow(PathOfUtf8(name))) return;
  noted_[name] = origin;
  Add(name, std::move(origin));
}

std::string CopyList::Save() {
  if (noted_.empty()) return {};
  CopyList now(folder_);
  for (const auto& [name, origin] : noted_)
    now.Add(name, origin);
  std::string text = heading;
  std::error_code error;
  for (const auto& [name, origin] : now.origins_) {
    if (!fs::exists(folder_ / PathOfUtf8(name), error)) continue;
    text += EncodeUrlPath(name) + "\t" + (origin.Variant.empty() ? std::string(none) : origin.Variant) + "\t" +
            origin.Hash + "\t" + EncodeUrlPath(origin.Source) + "\r\n";
  }
  noted_.clear();
  return WriteWholeFile(folder_ / FileName, text);
}

std::string HashOf(std::string_view bytes) {
  const XXH128_hash_t hash = XXH3_128bits(bytes.data(), bytes.size());
  std::array<char, 33> text{};
  std::snprintf(text.data(), text.size(), "%016llx%016llx", static_cast<unsigned long long>(hash.high64),
                static_cast<unsigned long long>(hash.low64));
  return text.data();
}

} // namespace quarvel
