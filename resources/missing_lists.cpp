#include "resources/missing_lists.h"

#include "base/ascii_text.h"
#include "base/file_name.h"
#include "base/level_text.h"

#include <fstream>

namespace quarvel {

namespace fs = std::filesystem;

namespace {

bool WriteLines(const fs::path& file, const std::vector<std::string>& lines) {
  std::ofstream stream(file, std::ios::binary | std::ios::trunc);
  for (const std::string& line : lines)
    stream << PrintableText(line) << LineEnd;
  stream.close();
  return !stream.fail();
}

void WriteList(const fs::path& file, const std::vector<std::string>& entries, const std::string& message,
               MissingListsResult& result) {
  if (entries.empty()) {
    std::error_code error;
    fs::remove(file, error);
    return;
  }
  const std::string name = Utf8Path(file);
  if (!WriteLines(file, entries)) {
    result.Errors.push_back(name + " could not be written");
    return;
  }
  result.FilesWritten.push_back(file);
  result.Messages.push_back(message + name);
}

} // namespace

MissingListsResult WriteMissingLists(const fs::path& outFile, const MissingResources& missing,
                                     const ConversionSettings& settings) {
  MissingListsResult result;
  for (const ResourceKind kind : ResourceKinds) {
    const ResourceKindInfo& info = InfoOf(kind);
    fs::path file = fs::path(outFile).replace_extension();
    file += info.ListEnding;
    WriteList(file, info.IsReported(settings) ? missing[kind] : std::vector<std::string>(),
              "There were missing " + std::string(info.Many) + ". Please see ", result);
  }
  return result;
}

} // namespace quarvel
