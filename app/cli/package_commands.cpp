#include "app/cli/package_commands.h"

#include "base/file_name.h"
#include "base/level_text.h"
#include "base/output_file.h"
#include "core/package_extraction.h"
#include "core/run_summary.h"
#include "packages/package_listing.h"

namespace quarvel {

namespace fs = std::filesystem;

ExitCode RunListPackage(const std::string& file, const Console& console) {
  const PackageResult package = OpenPackage(PathOfUserText(file));
  if (!package) {
    console.Err << "quarvel: " << PrintableText(file + " " + package.Error) << std::endl;
    return ExitCode::Failed;
  }
  ListPackage(*package.Value, console.Out);
  console.Out << std::flush;
  return ExitCode::Done;
}

ExitCode RunExtraction(const CommandLine& line, const Console& console) {
  const std::vector<std::string> names(line.Inputs.begin() + 1, line.Inputs.end());
  const ExtractionResult result =
      ExtractPackage(PathOfUserText(line.Inputs.front()), PathOfUserText(line.ExtractTo), names);
  for (const std::string& error : result.Errors)
    console.Err << "quarvel: " << PrintableText(error) << "\n";
  if (!line.Quiet) {
    for (const std::string& note : result.Notes)
      console.Out << PrintableText(note) << "\n";
    if (line.Verbose)
      for (const fs::path& file : result.FilesWritten)
        console.Out << "wrote " << PrintableText(Utf8Path(file)) << "\n";
    console.Out << CountText(result.FilesWritten.size(), "file", "files") << " written to "
                << PrintableText(line.ExtractTo) << "\n";
  }
  console.Out << std::flush;
  console.Err << std::flush;
  return result.Errors.empty() ? ExitCode::Done : ExitCode::Failed;
}

std::string KeepText(const std::string& file, const RunMemory& memory) {
  if (memory.T3DText.empty()) return {}; // why, the run has told
  const std::string why = WriteWholeFile(PathOfUserText(file), memory.T3DText, AtLink::Follow);
  return why.empty() ? why : file + " cannot be written: " + why;
}

} // namespace quarvel
