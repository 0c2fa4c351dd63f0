#include "core/level_source.h"

#include "base/file_name.h"
#include "base/text_coding.h"
#include "packages/level_export.h"

#include <array>
#include <fstream>

namespace quarvel {

bool IsLevelPackage(const std::filesystem::path& file) {
  if (FoldName(ExtensionOf(Utf8Path(file.filename()))) == "unr") return true;
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) return false; // a pipe can be read once only
  std::array<std::uint8_t, 4> head{};
  std::ifstream stream(file, std::ios::binary);
  return stream.read(reinterpret_cast<char*>(head.data()), head.size()) && LooksLikePackage(head);
}

std::string ReadLevelPackage(const std::filesystem::path& file, LevelSource& source) {
  const PackageResult package = OpenPackage(file);
  if (!package) return package.Error;
  ExportedLevel level = ExportLevel(*package.Value);
  source = {std::move(level.Text), std::move(level.TextureNames), std::move(level.Faults)};
  return level.Error;
}

} // namespace quarvel
