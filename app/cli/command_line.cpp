#include "app/cli/command_line.h"

#include "app/cli/console_interface.h"
#include "app/cli/option_list.h"
#include "app/cli/package_commands.h"
#include "base/ascii_text.h"
#include "base/level_text.h"
#include "core/run_report.h"
#include "core/run_summary.h"
#include "settings/ini_store.h"
#include "settings/option_values.h"
#include "settings/settings_file.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <memory>

namespace quarvel {

namespace {

constexpr const char* description =
    "Converts levels, exported from the Unreal editor as T3D text or as the game has them, to 3D scenes for the "
    "web.\n\n"
    "Every run writes a VRML97 scene (.wrl) or an X3D scene in the classic encoding (.x3dv), and an X3D scene (.x3d).";

constexpr const char* footer =
    "INPUT is a file, a pattern in quotes (\"maps/*.t3d\", with all folders below) or a list (maps,a.t3d,b.t3d).\n"
    "The last argument is the OUTPUT when it ends in .wrl, .x3dv, .x3d or .xml; without it, scenes are written beside\n"
    "their inputs. With several inputs only its folder counts.\n\n"
    "Exit codes: 0 done (also with missing textures, sounds or meshes), 1 an input could not be read or an output not\n"
    "be written, 2 wrong usage, 3 stopped by Ctrl-C.";

class UsageFormatter : public CLI::Formatter {
 public:
  std::string make_usage(const CLI::App*, std::string name) const override {
    return "Usage: " + name + " [options] INPUT... [OUTPUT]\n";
  }
};

bool EndsLike(std::string_view name, std::string_view extension) {
  return name.size() > extension.size() && SameText(name.substr(name.size() - extension.size()), extension);
}

bool IsOutputName(std::string_view name) {
  return EndsLike(name, ".wrl") || EndsLike(name, ".x3dv") || EndsLike(name, ".x3d") || EndsLike(name, ".xml");
}

void DescribeArguments(CLI::App& app, CommandLine& line) {
  app.formatter(std::make_shared<UsageFormatter>());
  app.allow_windows_style_options(false);
  app.footer(footer);
  app.set_version_flag("--version", "quarvel " QUARVEL_VERSION);
  app.add_option("INPUT", line.Inputs, "Levels to convert, and last the scene to write");
  app.add_option("--set", line.Sets, "Set an option of the conversion, see --list-options; repeatable")
      ->type_name("Control=Value")
      ->allow_extra_args(false);
  app.add_option("--textures", line.Textures, "Folders with textures, joined with ';'")->type_name("DIR");
  app.add_option("--sounds", line.Sounds, "Folders with sounds")->type_name("DIR");
  app.add_option("--meshes", line.Meshes, "Folders with meshes")->type_name("DIR");
  app.add_option("--settings", line.SettingsFile, "Start from the options of this file, and save the run's to it")
      ->type_name("FILE");
  app.add_option("--write-t3d", line.WriteT3D, "Keep the level's text, for instance of a .unr level")
      ->type_name("FILE");
  app.add_option("--list-package", line.ListPackage, "List the objects of a game's package file")->type_name("FILE");
  app.add_option("--extract", line.ExtractTo,
                 "Write the textures and sounds of the package INPUT into a folder; further "
                 "INPUTs name some of them")
      ->type_name("DIR");
  app.add_option("--report", line.ReportFile, "Write what the run did to this file, as JSON")->type_name("FILE");
  app.add_flag("--list-options", line.ListOptions, "List all options of the conversion");
  app.add_flag("--markdown", line.Markdown)->group("");
  CLI::Option* quiet = app.add_flag("--quiet", line.Quiet, "Print errors only");
  app.add_flag("--verbose", line.Verbose, "Print every pass, and lists in full")->excludes(quiet);
}

/// Moves the last argument to its place when it names a scene.
void SeparateOutput(CommandLine& line) {
  if (line.Inputs.empty() || !line.ExtractTo.empty() || !IsOutputName(line.Inputs.back())) return;
  line.Output = line.Inputs.back();
  line.Inputs.pop_back();
}

std::string MissingArgument(const CommandLine& line) {
  if (line.ListOptions || !line.ListPackage.empty()) return {};
  if (line.Inputs.empty())
    return line.Output.empty() ? "no INPUT is given" : "no INPUT is given, only the OUTPUT " + line.Output;
  for (const std::string& input : line.Inputs)
    if (input.empty()) return "an INPUT is empty";
  return {};
}

std::string SetByText(const std::string& assignment, ConversionSettings& settings) {
  const std::size_t equals = assignment.find('=');
  const std::string control = assignment.substr(0, equals);
  const OptionInfo* option = FindOption(control);
  if (!option) return "there is no option " + control + "; did you mean " + NearestOption(control).Control + "?";
  if (equals == assignment.npos) return "--set " + option->Control + " needs a value: " + option->Control + "=Value";
  const std::string value = assignment.substr(equals + 1);
  const std::string problem = SetOption(*option, value, settings);
  return problem.empty() ? "" : option->Control + " " + problem + ", not \"" + value + "\"";
}

bool SetsEncoding(const CommandLine& line) {
  for (const std::string& assignment : line.Sets) {
    const OptionInfo* option = FindOption(assignment.substr(0, assignment.find('=')));
    if (option && option->Group == FindOption("OptionFlux")->Group) return true;
  }
  return false;
}

/// Prints what happened to each file of a batch.
class Reporter {
 public:
  Reporter(const CommandLine& line, const Console& console, ConsoleInterface& user, std::size_t jobs)
      : line_(line), console_(console), user_(user), jobs_(jobs) {}

  void Started(const ConversionJob& job) {
    ++at_;
    if (jobs_ > 1)
      user_.BeginFile(std::to_string(at_) + "/" + std::to_string(jobs_) + " " + job.InFile.filename().string() + ": ");
  }

  void Finished(const ConversionJob& job, const RunResult& result) {
    user_.ClearLine();
    if (result.Outcome == RunOutcome::Stopped) return Complain("stopped; " + StateOf(job, result));
    for (const std::string& failed : result.FailedFiles)
      Complain(failed);
    if (result.Outcome == RunOutcome::Failed && result.FailedFiles.empty()) return Complain(result.Error);
    if (!line_.Quiet) WriteSummary(console_.Out, result, line_.Verbose);
  }

 private:
  static std::string StateOf(const ConversionJob& job, const RunResult& result) {
    if (result.Incomplete.empty()) return job.InFile.string() + " is not converted";
    return result.Incomplete.string() + " is incomplete";
  }
  void Complain(const std::string& text) { console_.Err << "quarvel: " << PrintableText(text) << std::endl; }

  const CommandLine& line_;
  const Console& console_;
  ConsoleInterface& user_;
  std::size_t jobs_;
  std::size_t at_ = 0;
};

ExitCode ExitCodeOf(RunOutcome outcome) {
  switch (outcome) {
  case RunOutcome::Done:
    return ExitCode::Done;
  case RunOutcome::Failed:
    return ExitCode::Failed;
  case RunOutcome::Stopped:
    break;
  }
  return ExitCode::Stopped;
}

ConsoleInterface::Detail DetailOf(const CommandLine& line, const Console& console) {
  return {.ProgressLine = console.ErrIsTerminal && !line.Quiet, .Passes = line.Verbose};
}

ExitCode Complain(const Console& console, const std::string& error, ExitCode code) {
  console.Err << "quarvel: " << PrintableText(error) << std::endl;
  return code;
}

/// Half a report is worse than none.
bool WriteReport(const std::filesystem::path& path, const std::vector<RunResult>& results) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << ReportAsJson(results);
  file.close();
  std::error_code error;
  if (!file) std::filesystem::remove(path, error);
  return !file.fail();
}

/// One name for one file, however it is written.
std::filesystem::path Identity(const std::filesystem::path& file) {
  return std::filesystem::weakly_canonical(std::filesystem::absolute(file));
}

/// A report that would take the place of what is converted, or of a scene.
bool WouldOverwrite(const std::filesystem::path& report, const std::vector<ConversionJob>& jobs) {
  const auto same = [&](const std::filesystem::path& file) { return Identity(file) == Identity(report); };
  return std::any_of(jobs.begin(), jobs.end(),
                     [&](const ConversionJob& job) { return same(job.InFile) || same(job.OutFile); });
}

ExitCode ConvertAll(const CommandLine& line, const ConversionSettings& settings, SettingsStore& store,
                    const Console& console, const Conversion& convert) {
  const std::vector<ConversionJob> jobs = ListJobs(line.Inputs, line.Output, settings);
  if (!line.ReportFile.empty() && WouldOverwrite(line.ReportFile, jobs))
    return Complain(console, "the report " + line.ReportFile + " would overwrite an input or a scene", ExitCode::Usage);
  if (!line.WriteT3D.empty() && jobs.size() != 1)
    return Complain(console, "--write-t3d keeps the text of one level, here are " + std::to_string(jobs.size()),
                    ExitCode::Usage);
  ConsoleInterface user(console.Err, DetailOf(line, console), console.StopRequested);
  Reporter reporter(line, console, user, jobs.size());
  const BatchEvents events{[&](const ConversionJob& job) { reporter.Started(job); },
                           [&](const ConversionJob& job, const RunResult& result) { reporter.Finished(job, result); }};
  RunMemory memory;
  const std::vector<RunResult> results = RunBatch(jobs, settings, store, memory, user, events, convert);
  if (jobs.size() > 1 && !line.Quiet) console.Out << BatchSummary(results, jobs.size()) << std::endl;
  if (!line.WriteT3D.empty())
    if (const std::string error = KeepText(line.WriteT3D, jobs.front(), memory); !error.empty())
      return Complain(console, error, ExitCode::Failed);
  const ExitCode code = ExitCodeOf(WorstOutcome(results));
  if (line.ReportFile.empty() || WriteReport(line.ReportFile, results)) return code;
  return Complain(console, line.ReportFile + " cannot be written", std::max(code, ExitCode::Failed));
}

ExitCode Run(const CommandLine& line, const Console& console, const Conversion& convert) {
  if (line.ListOptions) {
    console.Out << (line.Markdown ? OptionListAsMarkdown() : OptionList());
    return ExitCode::Done;
  }
  if (!line.ListPackage.empty()) return RunListPackage(line.ListPackage, console);
  if (!line.ExtractTo.empty()) return RunExtraction(line, console);
  MemoryStore memoryStore;
  IniStore fileStore(line.SettingsFile);
  const bool hasFile = !line.SettingsFile.empty();
  if (std::string error = hasFile ? fileStore.Load() : ""; !error.empty())
    return Complain(console, error, ExitCode::Failed);
  SettingsStore& store = hasFile ? static_cast<SettingsStore&>(fileStore) : memoryStore;
  ConversionSettings settings;
  LoadSettings(settings, store);
  if (std::string error = ApplyCommandLine(line, settings); !error.empty())
    return Complain(console, error + "\nTry --list-options.", ExitCode::Usage);
  return ConvertAll(line, settings, store, console, convert);
}

} // namespace

ParsedCommandLine ParseCommandLine(int argc, const char* const* argv) {
  ParsedCommandLine parsed;
  CLI::App app{description, "quarvel"};
  DescribeArguments(app, parsed.Line);
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    parsed.Answer = app.help();
    return parsed;
  } catch (const CLI::CallForVersion& version) {
    parsed.Answer = std::string(version.what()) + "\n";
    return parsed;
  } catch (const CLI::ParseError& error) {
    parsed.Error = error.what();
    return parsed;
  }
  SeparateOutput(parsed.Line);
  parsed.Error = MissingArgument(parsed.Line);
  return parsed;
}

std::string ApplyCommandLine(const CommandLine& line, ConversionSettings& settings) {
  if (line.Textures) settings.TextSearchPathTxt = *line.Textures;
  if (line.Sounds) settings.TextSearchPathSnd = *line.Sounds;
  if (line.Meshes) settings.TextSearchPathMesh = *line.Meshes;
  if (EndsLike(line.Output, ".x3dv") && !SetsEncoding(line)) SetOption(*FindOption("OptionFlux"), "-1", settings);
  for (const std::string& assignment : line.Sets)
    if (std::string problem = SetByText(assignment, settings); !problem.empty()) return problem;
  return {};
}

ExitCode RunCommandLine(int argc, const char* const* argv, const Console& console, const Conversion& convert) try {
  const ParsedCommandLine parsed = ParseCommandLine(argc, argv);
  if (!parsed.Error.empty()) return Complain(console, parsed.Error + "\nTry --help.", ExitCode::Usage);
  if (parsed.Answer.empty()) return Run(parsed.Line, console, convert);
  console.Out << parsed.Answer;
  return ExitCode::Done;
} catch (const std::exception& problem) {
  return Complain(console, problem.what(), ExitCode::Failed);
}

} // namespace quarvel
