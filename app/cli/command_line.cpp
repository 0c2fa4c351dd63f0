#include "app/cli/command_line.h"

#include "app/cli/console_interface.h"
#include "app/cli/option_list.h"
#include "app/cli/package_commands.h"
#include "base/ascii_text.h"
#include "base/file_name.h"
#include "base/level_text.h"
#include "base/output_file.h"
#include "core/run_report.h"
#include "core/run_summary.h"
#include "settings/ini_store.h"
#include "settings/option_sets.h"
#include "settings/option_values.h"
#include "settings/settings_file.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <filesystem>
#include <memory>
#include <new>

namespace quarvel {

namespace {

constexpr const char* description =
    "Converts levels, exported from the Unreal editor as T3D text or as the game has them, to 3D scenes for the "
    "web.\n\n"
    "Every run writes a VRML97 scene (.wrl) or an X3D scene in the classic encoding (.x3dv), and an X3D scene (.x3d).";

constexpr const char* footer =
    "INPUT is a file, a pattern in quotes (\"maps/*.t3d\", with all folders below) or a list (maps,a.t3d,b.t3d).\n"
    "The last argument is the OUTPUT when it ends in .wrl, .x3dv, .x3d, .xml or .html, or is a folder that ends in "
    "\"/\"; "
    "without\n"
    "it, scenes are written beside their inputs. With several inputs only its folder counts. Folders are made.\n\n"
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
  return EndsLike(name, ".wrl") || EndsLike(name, ".x3dv") || EndsLike(name, ".x3d") || EndsLike(name, ".xml") ||
         EndsLike(name, ".html");
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
  app.add_flag("--web", line.Web, "Make a page to walk in: one HTML file for a browser, and no scenes");
  app.add_option("--viewer", line.Viewer, "The x_ite.min.js of the viewer that a page holds")->type_name("FILE");
  app.add_flag("--open", line.Open, "Open the page in the browser when it is written");
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

/// Moves the last argument to its place when it names a scene or, behind an input, a folder.
void SeparateOutput(CommandLine& line) {
  if (line.Inputs.empty() || !line.ExtractTo.empty()) return;
  const bool isFolder = line.Inputs.size() > 1 && line.Inputs.back().ends_with('/');
  if (!isFolder && !IsOutputName(line.Inputs.back())) return;
  line.Output = line.Inputs.back();
  line.Inputs.pop_back();
}

/// The options that name files mean the same as the arguments do.
struct FileOption {
  const char* Control;
  const char* Argument;
};

std::string GivenTwice(const FileOption& option, const std::string& set, const std::string& given) {
  return std::string(option.Control) + " is set to " + set + ", but the " + option.Argument + " is " + given +
         "; give one of them";
}

/// Moves "--set ComboInFileName=..." and "--set TextOutFileName=..." to the arguments. Returns what is wrong.
std::string TakeFilesFromSets(CommandLine& line) {
  constexpr FileOption input{"ComboInFileName", "INPUT"}, output{"TextOutFileName", "OUTPUT"};
  std::vector<std::string> others;
  for (const std::string& assignment : line.Sets) {
    const std::size_t equals = assignment.find('=');
    const std::string control = assignment.substr(0, equals);
    const std::string value = equals == assignment.npos ? "" : assignment.substr(equals + 1);
    if (equals != assignment.npos && SameText(control, input.Control)) {
      if (!line.Inputs.empty()) return GivenTwice(input, value, line.Inputs.front());
      line.Inputs.push_back(value);
    } else if (equals != assignment.npos && SameText(control, output.Control)) {
      if (!line.Output.empty()) return GivenTwice(output, value, line.Output);
      line.Output = value;
    } else {
      others.push_back(assignment);
    }
  }
  line.Sets = std::move(others);
  return {};
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

/// The output's extension chooses the encoding unless an option does.
bool ChoosesEncoding(const CommandLine& line) { return EndsLike(line.Output, ".x3dv") && !SetsEncoding(line); }

/// Prints what happened to each file of a batch.
class Reporter {
 public:
  Reporter(const CommandLine& line, const Console& console, ConsoleInterface& user, std::size_t jobs)
      : line_(line), console_(console), user_(user), jobs_(jobs) {}

  void Started(const ConversionJob& job) {
    ++at_;
    if (jobs_ == 1) return;
    const double share = 1.0 / static_cast<double>(jobs_);
    user_.BeginFile(std::to_string(at_) + "/" + std::to_string(jobs_) + " " + job.InFile.filename().string() + ": ",
                    static_cast<double>(at_ - 1) * share, share);
  }

  void Finished(const ConversionJob& job, const RunResult& result) {
    user_.ClearLine();
    if (result.Outcome == RunOutcome::Stopped) return Complain("stopped; " + StateOf(job, result));
    for (const std::string& failed : result.FailedFiles)
      Complain(failed);
    if (result.Outcome == RunOutcome::Failed && result.FailedFiles.empty()) return Complain(result.Error);
    if (!line_.Quiet) WriteSummary(console_.Out, result, line_.Verbose ? SummaryLength::Full : SummaryLength::Short);
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

/// The command line is wrong; `hint` says where to read what is right.
ExitCode ComplainOfUsage(const Console& console, const std::string& error, const char* hint) {
  Complain(console, error, ExitCode::Usage);
  console.Err << hint << std::endl;
  return ExitCode::Usage;
}

/// Returns why it could not be written.
std::string WriteReport(const std::filesystem::path& path, const std::vector<RunResult>& results) {
  const std::string reason = WriteWholeFile(path, ReportAsJson(results), AtLink::Follow);
  return reason.empty() ? reason : path.string() + " cannot be written: " + reason;
}

void OpenPages(const std::vector<RunResult>& results, const Console& console) {
  for (const RunResult& result : results)
    if (!result.Page.empty() && (!console.OpenInBrowser || !console.OpenInBrowser(result.Page)))
      console.Err << "quarvel: no browser could be started for " << PrintableText(Utf8Path(result.Page)) << std::endl;
}

ExitCode ConvertAll(const CommandLine& line, const std::vector<ConversionJob>& jobs, const ConversionSettings& settings,
                    SettingsStore& store, const Console& console, const Conversion& convert) {
  ConsoleInterface user(console.Err, DetailOf(line, console), console.StopRequested);
  Reporter reporter(line, console, user, jobs.size());
  const BatchEvents events{[&](const ConversionJob& job) { reporter.Started(job); },
                           [&](const ConversionJob& job, const RunResult& result) { reporter.Finished(job, result); }};
  RunMemory memory;
  const std::vector<RunResult> results = RunBatch(jobs, settings, store, memory, user, events, convert);
  if (jobs.size() > 1 && !line.Quiet) console.Out << BatchSummary(results, jobs.size()) << std::endl;
  if (!line.WriteT3D.empty())
    if (const std::string error = KeepText(line.WriteT3D, memory); !error.empty())
      return Complain(console, error, ExitCode::Failed);
  if (line.Open) OpenPages(results, console);
  const ExitCode code = ExitCodeOf(WorstOutcome(results));
  const std::string error = line.ReportFile.empty() ? "" : WriteReport(line.ReportFile, results);
  return error.empty() ? code : Complain(console, error, std::max(code, ExitCode::Failed));
}

/// Every option that the command line sets.
std::vector<const OptionInfo*> OptionsSet(const CommandLine& line) {
  std::vector<const OptionInfo*> options;
  for (const std::string& assignment : line.Sets)
    if (const OptionInfo* option = FindOption(assignment.substr(0, assignment.find('=')))) options.push_back(option);
  if (line.Textures) options.push_back(FindOption("TextSearchPathTxt"));
  if (line.Sounds) options.push_back(FindOption("TextSearchPathSnd"));
  if (line.Meshes) options.push_back(FindOption("TextSearchPathMesh"));
  if (ChoosesEncoding(line)) options.push_back(FindOption("OptionFlux"));
  return options;
}

/// Tells of the lines in the settings file that are not used. Those that the command line replaces need no words.
void TellRefused(const std::vector<RefusedSetting>& refused, const CommandLine& line, SettingsStore& store,
                 const Console& console) {
  for (const OptionInfo* option : OptionsSet(line))
    ReleaseOption(*option, store);
  for (const RefusedSetting& setting : refused)
    if (KeepsOption(*setting.Option, store))
      console.Err << "quarvel: " << PrintableText(SentenceOf(setting)) << std::endl;
}

/// A file that is something else must not be rewritten as settings.
std::string WhyNoSettings(const IniStore& store, const std::string& file) {
  if (store.IsBlank() || store.HasSection(MainSectionName) || store.HasSection(ExtraSectionName)) return {};
  return file + " is not a settings file: it has neither the section [" + std::string(MainSectionName) + "] nor [" +
         std::string(ExtraSectionName) + "]";
}

/// What is wrong with the files that the command line names beside inputs and output.
std::string WrongSideFile(const CommandLine& line, const std::vector<ConversionJob>& jobs,
                          const ConversionSettings& settings) {
  const auto isTaken = [&](const std::string& file) { return !file.empty() && IsFileOfJobs(file, jobs, settings); };
  if (isTaken(line.SettingsFile))
    return "the settings file " + line.SettingsFile + " is an input or an output of this run";
  if (isTaken(line.ReportFile)) return "the report " + line.ReportFile + " would overwrite an input or a scene";
  if (isTaken(line.WriteT3D))
    return "--write-t3d would overwrite " + line.WriteT3D + ", an input or an output of this run";
  if (!line.WriteT3D.empty() && jobs.size() != 1)
    return "--write-t3d keeps the text of one level, here are " + std::to_string(jobs.size());
  return {};
}

ExitCode RunWith(const CommandLine& line, SettingsStore& store, const Console& console, const Conversion& convert) {
  ConversionSettings settings;
  const std::vector<RefusedSetting> refused = LoadSettings(settings, store);
  if (std::string error = ApplyCommandLine(line, settings); !error.empty())
    return ComplainOfUsage(console, error, "Try --list-options.");
  if (line.Open && !settings.CheckMakePage) return Complain(console, "--open opens a page: add --web", ExitCode::Usage);
  if (line.Web && line.Verbose) console.Err << "--web sets " << OptionSetText(WebOptions()) << std::endl;
  TellRefused(refused, line, store, console);
  const std::vector<ConversionJob> jobs = ListJobs(line.Inputs, line.Output, settings, console.StopRequested);
  if (const std::string error = WrongSideFile(line, jobs, settings); !error.empty())
    return Complain(console, error, ExitCode::Usage);
  return ConvertAll(line, jobs, settings, store, console, convert);
}

ExitCode Run(const CommandLine& line, const Console& console, const Conversion& convert) {
  if (line.ListOptions) {
    console.Out << (line.Markdown ? OptionListAsMarkdown() : OptionList());
    return ExitCode::Done;
  }
  if (!line.ListPackage.empty()) return RunListPackage(line.ListPackage, console);
  if (!line.ExtractTo.empty()) return RunExtraction(line, console);
  if (line.SettingsFile.empty()) {
    MemoryStore store;
    return RunWith(line, store, console, convert);
  }
  IniStore store(line.SettingsFile);
  if (const std::string error = store.Load(); !error.empty()) return Complain(console, error, ExitCode::Failed);
  if (const std::string why = WhyNoSettings(store, line.SettingsFile); !why.empty())
    return Complain(console, why, ExitCode::Usage);
  return RunWith(line, store, console, convert);
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
  parsed.Error = TakeFilesFromSets(parsed.Line);
  if (parsed.Error.empty()) parsed.Error = MissingArgument(parsed.Line);
  return parsed;
}

std::string ApplyCommandLine(const CommandLine& line, ConversionSettings& settings) {
  if (line.Textures) settings.TextSearchPathTxt = *line.Textures;
  if (line.Sounds) settings.TextSearchPathSnd = *line.Sounds;
  if (line.Meshes) settings.TextSearchPathMesh = *line.Meshes;
  if (ChoosesEncoding(line)) SetOption(*FindOption("OptionFlux"), "-1", settings);
  if (line.Web) ApplyOptionSet(WebOptions(), settings);
  if (!line.Viewer.empty()) settings.TextViewer = line.Viewer;
  for (const std::string& assignment : line.Sets)
    if (std::string problem = SetByText(assignment, settings); !problem.empty()) return problem;
  return {};
}

ExitCode RunCommandLine(int argc, const char* const* argv, const Console& console, const Conversion& convert) try {
  const ParsedCommandLine parsed = ParseCommandLine(argc, argv);
  if (!parsed.Error.empty()) return ComplainOfUsage(console, parsed.Error, "Try --help.");
  if (parsed.Answer.empty()) return Run(parsed.Line, console, convert);
  console.Out << parsed.Answer;
  return ExitCode::Done;
} catch (const std::bad_alloc&) {
  return Complain(console, "there is not enough memory", ExitCode::Failed);
} catch (const std::exception& problem) {
  return Complain(console, problem.what(), ExitCode::Failed);
}

} // namespace quarvel
