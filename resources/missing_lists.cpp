#include "resources/missing_lists.h"

#include "base/ascii_text.h"
#include "base/file_name.h"
#include "base/level_text.h"
#include "base/output_file.h"

namespace quarvel {

namespace fs = std::filesystem;

namespace {

std::string LinesOf(const std::vector<std::string>& entries) {
  std::string lines;
  for (const std::string& entry : entries)
    lines.append(PrintableText(entry)).append(LineEnd);
  return lines;
}

void WriteList(const fs::path& file, const std::vector<std::string>& entries, const std::string& message,
               MissingListsResult& result) {
  if (entries.empty()) {
    std::error_code error;
    fs::remove(file, error);
    return;
  }
  const std::string name = Utf8Path(file);
  if (const std::string why = WriteWholeFile(file, LinesOf(entries)); !why.empty()) {
    result.Errors.push_back(name + " cannot be written: " + why);
    return;
  }
  result.FilesWritten.push_back(file);
  result.Messages.push_back(message + name);
}

} // namespace

std::vector<fs::path> MissingListNames(const fs::path& outFile) {
  std::vector<fs::path> files;
  for (const ResourceKind kind : ResourceKinds)
    files.push_back(fs::path(outFile).replace_extension() += InfoOf(kind).ListEnding);
  return files;
}

MissingListsResult WriteMissingLists(const fs::path& outFile, const MissingResources& missing,
                                     const ConversionSettings& settings) {
  const std::vector<fs::path> files = MissingListNames(outFile);
  MissingListsResult result;
  for (const ResourceKind kind : ResourceKinds) {
    const ResourceKindInfo& info = InfoOf(kind);
    WriteList(files[static_cast<std::size_t>(kind)],
              info.IsReported(settings) ? missing[kind] : std::vector<std::string>(),
              "There were missing " + std::string(info.Many) + ". Please see ", result);
  }
  return result;
}

} // namespace quarvel
