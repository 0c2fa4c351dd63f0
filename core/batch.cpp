#include "core/batch.h"

#include "base/ascii_text.h"
#include "base/file_identity.h"
#include "base/file_name.h"
#include "base/text_coding.h"
#include "resources/missing_lists.h"

#include <algorithm>
#include <map>
#include <set>
#include <system_error>

namespace quarvel {

namespace fs = std::filesystem;

namespace {

fs::path WithPlatformSeparators(std::string_view typed) {
  std::string text(typed);
  std::replace(text.begin(), text.end(), '\\', '/');
  return fs::path(text).make_preferred();
}

/// Where "\" is an ordinary character, a file that has one in its name is found by that name.
fs::path InputPath(std::string_view typed) {
  std::error_code ignored;
  fs::path path(typed);
  return fs::exists(path, ignored) ? path : WithPlatformSeparators(typed);
}

/// Up to and including the last separator.
std::string_view FolderPart(std::string_view typed) {
  const std::size_t separator = typed.find_last_of(":/\\");
  return separator == typed.npos ? std::string_view{} : typed.substr(0, separator + 1);
}

bool IsPattern(std::string_view input) { return input.find_first_of("?*") != input.npos; }

bool IsList(std::string_view input) {
  std::error_code ignored;
  return input.find(',') != input.npos && !fs::is_regular_file(InputPath(input), ignored);
}

std::vector<fs::path> FilesOfPattern(std::string_view typed, const std::function<bool()>& stop) {
  const std::string_view folderPart = FolderPart(typed);
  const std::string_view pattern = typed.substr(folderPart.size());
  const fs::path folder = folderPart.empty() ? fs::path(".") : InputPath(folderPart);
  std::vector<fs::path> files;
  std::error_code error;
  const auto options = fs::directory_options::skip_permission_denied;
  for (fs::recursive_directory_iterator at(folder, options, error), end; !error && at != end; at.increment(error)) {
    if (stop && stop()) break;
    std::error_code ignored;
    if (at->is_regular_file(ignored) && MatchesPattern(at->path().filename().string(), pattern))
      files.push_back(at->path().lexically_normal());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::vector<fs::path> FilesOfList(std::string_view typed) {
  std::vector<std::string_view> items;
  for (std::size_t from = 0, comma = 0; from <= typed.size(); from = comma + 1) {
    comma = std::min(typed.find(',', from), typed.size());
    items.push_back(Trimmed(typed.substr(from, comma - from)));
  }
  const fs::path folder = InputPath(items.front());
  std::vector<fs::path> files;
  for (std::size_t i = 1; i < items.size(); ++i)
    if (!items[i].empty()) files.push_back(InputPath((folder / items[i]).string()));
  return files;
}

/// The jobs of one input, without their outputs.
std::vector<ConversionJob> JobsOfInput(const std::string& input, const std::function<bool()>& stop) {
  const bool isPattern = IsPattern(input);
  const bool isList = IsListOfFiles(input);
  if (!isPattern && !isList) return {{input, InputPath(input), {}, {}}};
  std::vector<ConversionJob> jobs;
  for (const fs::path& file : isPattern ? FilesOfPattern(input, stop) : FilesOfList(input))
    jobs.push_back({input, file, {}, {}});
  if (jobs.empty())
    jobs.push_back({input, input, {}, (isPattern ? "no file matches " : "no file is named in ") + input});
  return jobs;
}

bool HasExtension(const fs::path& file, std::string_view extension) {
  return SameText(file.extension().string(), extension);
}

/// A level that is there in both forms is converted once, from the text that its author chose to export.
void PassOverPackages(std::vector<ConversionJob>& jobs) {
  const auto level = [](const fs::path& file) { return file.parent_path() / FoldName(Utf8Path(file.stem())); };
  std::map<fs::path, std::size_t> texts;
  for (std::size_t i = 0; i < jobs.size(); ++i)
    if (HasExtension(jobs[i].InFile, ".t3d")) texts.emplace(level(jobs[i].InFile), i);
  for (const ConversionJob& job : jobs)
    if (const auto text = texts.find(level(job.InFile)); HasExtension(job.InFile, ".unr") && text != texts.end())
      jobs[text->second].PassedOver = job.InFile;
  std::erase_if(jobs, [&](const ConversionJob& job) {
    return HasExtension(job.InFile, ".unr") && texts.contains(level(job.InFile));
  });
}

fs::path OutputOf(const fs::path& inFile, const std::string& output, bool isBatch) {
  const bool namesFolder = output.ends_with('/') || output.ends_with('\\');
  if (!output.empty() && !isBatch && !namesFolder) return WithPlatformSeparators(output);
  fs::path outFile = inFile;
  outFile.replace_extension(".wrl");
  if (output.empty()) return outFile;
  std::error_code ignored;
  const bool isFolder = fs::is_directory(InputPath(output), ignored);
  return (isFolder ? InputPath(output) : WithPlatformSeparators(FolderPart(output))) / outFile.filename();
}

/// What a run may write under a name that nobody chose: lists of what is missing, the preload script.
std::vector<fs::path> ReportsOf(const ConversionJob& job, const ConversionSettings& settings) {
  std::vector<fs::path> reports = MissingListNames(job.OutFile);
  if (settings.CheckMakePreloadScript) reports.push_back(PreloadScriptName(job.OutFile));
  return reports;
}

using ScenesWritten = std::map<fs::path, fs::path>; // scene: the input it is made from

/// What is wrong with the outputs of a job, as the end of a sentence; empty when nothing is.
std::string OverwritingRefusal(const ConversionJob& job, const ConversionSettings& settings, const BatchFiles& files,
                               const ScenesWritten& written) {
  for (const fs::path& scene : ScenesOf(job.OutFile, settings)) {
    const std::string refused = "its output " + scene.string();
    if (files.IsInput(scene)) return refused + " would overwrite an input";
    const auto earlier = written.find(ResolvedPath(scene));
    if (earlier != written.end()) return refused + " is the output of " + earlier->second.string() + " already";
  }
  for (const fs::path& report : ReportsOf(job, settings))
    if (files.IsInput(report)) return "its report " + report.string() + " would overwrite an input";
  return {};
}

void RefuseOverwriting(std::vector<ConversionJob>& jobs, const ConversionSettings& settings) {
  BatchFiles files;
  for (const ConversionJob& job : jobs)
    files.AddInput(job.InFile);
  ScenesWritten written;
  for (ConversionJob& job : jobs) {
    if (!job.Refusal.empty() || job.InFile.empty()) continue;
    job.Reason = OverwritingRefusal(job, settings, files, written);
    if (!job.Reason.empty()) {
      job.Refusal = job.InFile.string() + " is not converted: " + job.Reason;
      continue;
    }
    for (const fs::path& scene : ScenesOf(job.OutFile, settings))
      written.emplace(ResolvedPath(scene), job.InFile);
  }
}

RunResult RefusedResult(const ConversionJob& job) {
  RunResult result;
  result.Outcome = RunOutcome::Failed;
  result.Error = job.Refusal;
  result.Reason = job.Reason.empty() ? job.Refusal : job.Reason;
  result.InputFile = job.InFile;
  return result;
}

RunResult StoppedResult(const ConversionJob& job) {
  RunResult result;
  result.Outcome = RunOutcome::Stopped;
  result.InputFile = job.InFile;
  return result;
}

/// The character that begins at `at` ends before the index returned.
std::size_t NextCharacter(std::string_view text, std::size_t at) {
  do
    ++at;
  while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80);
  return at;
}

} // namespace

bool MatchesPattern(std::string_view name, std::string_view pattern) {
  std::size_t at = 0, inPattern = 0;
  std::size_t star = pattern.npos, starTakesTo = 0;
  while (at < name.size()) {
    if (inPattern < pattern.size() && pattern[inPattern] == '*') {
      star = inPattern++;
      starTakesTo = at;
    } else if (inPattern < pattern.size() && pattern[inPattern] == '?') {
      at = NextCharacter(name, at);
      ++inPattern;
    } else if (inPattern < pattern.size() && LowerCase(pattern[inPattern]) == LowerCase(name[at])) {
      ++at;
      ++inPattern;
    } else if (star != pattern.npos) { // the last star takes one character more
      inPattern = star + 1;
      at = starTakesTo = NextCharacter(name, starTakesTo);
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', inPattern) == pattern.npos;
}

bool NamesSeveralFiles(std::string_view input) { return IsPattern(input) || IsList(input); }

bool IsListOfFiles(std::string_view input) { return !IsPattern(input) && IsList(input); }

std::vector<ConversionJob> ListJobs(const std::vector<std::string>& inputs, const std::string& output,
                                    const ConversionSettings& settings, const std::function<bool()>& stop) {
  std::vector<ConversionJob> jobs;
  const bool isBatch = inputs.size() > 1 || std::any_of(inputs.begin(), inputs.end(), NamesSeveralFiles);
  for (const std::string& input : inputs)
    for (ConversionJob& job : JobsOfInput(input, stop)) {
      if (job.Refusal.empty()) job.OutFile = OutputOf(job.InFile, output, isBatch);
      job.OutputTyped = !output.empty() && !isBatch;
      jobs.push_back(std::move(job));
    }
  PassOverPackages(jobs);
  RefuseOverwriting(jobs, settings);
  return jobs;
}

bool IsFileOfJobs(const fs::path& file, const std::vector<ConversionJob>& jobs, const ConversionSettings& settings) {
  const std::string identity = FileIdentity(file);
  const auto isFile = [&](const fs::path& other) { return FileIdentity(other) == identity; };
  return std::any_of(jobs.begin(), jobs.end(), [&](const ConversionJob& job) {
    if (isFile(job.InFile)) return true;
    if (!job.Refusal.empty()) return false;
    const std::vector<fs::path> scenes = ScenesOf(job.OutFile, settings), reports = ReportsOf(job, settings);
    return std::any_of(scenes.begin(), scenes.end(), isFile) || std::any_of(reports.begin(), reports.end(), isFile);
  });
}

std::vector<RunResult> RunBatch(const std::vector<ConversionJob>& jobs, const ConversionSettings& settings,
                                SettingsStore& store, RunMemory& memory, RunInterface& user, const BatchEvents& events,
                                const Conversion& convert) {
  std::vector<RunResult> results;
  memory.Files = {};
  memory.Outputs = {};
  for (const ConversionJob& job : jobs) {
    memory.Files.AddInput(job.InFile);
    memory.Outputs.Reserve(job.InFile);
    for (const fs::path& scene : ScenesOf(job.OutFile, settings))
      memory.Outputs.Reserve(scene);
  }
  for (const ConversionJob& job : jobs) {
    if (events.Started) events.Started(job);
    user.ProcessEvents();
    ConversionSettings runSettings = settings;
    runSettings.ComboInFileName = job.Input;
    runSettings.TextOutFileName = job.OutFile.string();
    memory.TypedOutput = job.OutputTyped ? job.OutFile : fs::path();
    if (jobs.size() > 1) runSettings.CheckRescanFile = true; // the text in memory is one file's, not every file's
    results.push_back(user.StopRequested()  ? StoppedResult(job)
                      : job.Refusal.empty() ? convert(job.InFile, job.OutFile, runSettings, store, memory, user)
                                            : RefusedResult(job));
    if (!job.PassedOver.empty())
      results.back().Findings.Add(FindingCode::PassedOverForT3D, job.PassedOver.filename().string());
    if (events.Finished) events.Finished(job, results.back());
    if (results.back().Outcome == RunOutcome::Stopped) return results;
  }
  if (settings.CheckBeep) user.Beep();
  return results;
}

RunOutcome WorstOutcome(const std::vector<RunResult>& results) {
  RunOutcome worst = RunOutcome::Done;
  for (const RunResult& result : results)
    if (result.Outcome == RunOutcome::Stopped || worst == RunOutcome::Done) worst = result.Outcome;
  return worst;
}

} // namespace quarvel
