#pragma once

#include "core/conversion_run.h"

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

/// One file to convert.
struct ConversionJob {
  std::string Input; ///< what the user typed
  std::filesystem::path InFile;
  std::filesystem::path OutFile;
  std::string Refusal;      ///< why it cannot be converted, one sentence without a full stop; empty when it can
  std::string Reason = {};  ///< the same without the file's name
  bool OutputTyped = false; ///< the user named this very output: a link that stands there is followed
  /// The game's own file of the same level, which is not converted as there is a text of it; empty when there is none.
  std::filesystem::path PassedOver = {};
};

/// Whether an input stands for several files, as `ListJobs` takes it: a pattern or a list.
bool NamesSeveralFiles(std::string_view input);
/// Whether it is a list, whose scenes a window puts beside its files, whatever its field for the output says.
bool IsListOfFiles(std::string_view input);

/// Turns what the user typed into files, in the order in which they are converted. An input is
/// - a file name;
/// - a pattern with ? or *, which stands for all files of that name in its folder and below, in the order of their
/// paths;
/// - a list "folder,first.t3d,second.t3d", of which empty items are skipped; a file of that name is a file.
/// "/" and "\" both separate folders. An empty `output` means each input's name with ".wrl" beside it. One file name is
/// converted to `output` as it stands; in all other cases only the folder of `output` counts, or `output` itself where
/// it is a folder. Jobs that would overwrite an input or the scenes of an earlier job are refused, and so is a pattern
/// that matches nothing. Of a level that is there as text (.t3d) and as the game's own file (.unr), in one folder, the
/// text is converted. Once `stop` is true, no more files are looked for.
std::vector<ConversionJob> ListJobs(const std::vector<std::string>& inputs, const std::string& output,
                                    const ConversionSettings& settings, const std::function<bool()>& stop = {});

/// Whether the jobs read or write the file, by whatever name.
bool IsFileOfJobs(const std::filesystem::path& file, const std::vector<ConversionJob>& jobs,
                  const ConversionSettings& settings);

/// Told about each file of a batch; either may be empty.
struct BatchEvents {
  std::function<void(const ConversionJob&)> Started;
  std::function<void(const ConversionJob&, const RunResult&)> Finished; ///< also for refused jobs
};

using Conversion = std::function<RunResult(const std::filesystem::path& inFile, const std::filesystem::path& outFile,
                                           const ConversionSettings&, SettingsStore&, RunMemory&, RunInterface&)>;

/// Converts every job; one that fails does not keep the others from being converted, a request to stop does. Each run's
/// settings name its own input and output. Beeps once when all is done, if the settings say so. One result per job,
/// fewer when the work was stopped.
std::vector<RunResult> RunBatch(const std::vector<ConversionJob>& jobs, const ConversionSettings& settings,
                                SettingsStore& store, RunMemory& memory, RunInterface& user,
                                const BatchEvents& events = {}, const Conversion& convert = ConvertFile);

/// Stopped is worse than failed, failed is worse than done.
RunOutcome WorstOutcome(const std::vector<RunResult>& results);

/// Whether the name fits the pattern, in which ? stands for one character (of UTF-8) and * for any number of them.
/// Letter case does not matter.
bool MatchesPattern(std::string_view name, std::string_view pattern);

} // namespace quarvel
