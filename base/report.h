#pragma once

#include <initializer_list>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace quarvel {

/// What a finding means for the scene.
enum class Severity {
  Note,    ///< the scene shows all there is
  Changed, ///< the scene shows something else than the level says
  Lost,    ///< the scene lacks something
};

/// Everything that a run may have to tell. A new one is one line of the list that is included here.
enum class FindingCode {
#define FINDING(code, severity, text) code,
#include "base/finding_codes.inc"
#undef FINDING
};

/// The code's own name.
std::string_view NameOf(FindingCode code);
Severity SeverityOf(FindingCode code);
/// "note", "changed" or "lost".
std::string_view NameOf(Severity severity);
/// The code's text with the details in their places.
std::string TextOf(FindingCode code, std::initializer_list<std::string> details = {});

/// One thing that a run could not read, find or resolve.
struct Finding {
  FindingCode Code{};
  std::string Actor;  ///< the actor's name, or the file's, or empty
  std::string Reason; ///< one clause, lower case, without a full stop
};

/// How often something was left out for one reason.
struct CountedFinding {
  FindingCode Code{};
  int Count = 0;
};

/// Collects what a run has to tell at its end. Details are what stands for the {} of a code's text: texts or whole
/// numbers.
class Report {
 public:
  /// Notes a finding once, however often it is met.
  template <typename... Details>
  void Add(FindingCode code, std::string_view actor, const Details&... details) {
    Note(code, actor, TextOf(code, {DetailText(details)...}), findings_);
  }

  /// Notes once what is of interest to those alone who want to know everything.
  template <typename... Details>
  void AddDetail(FindingCode code, std::string_view actor, const Details&... details) {
    Note(code, actor, TextOf(code, {DetailText(details)...}), details_);
  }

  /// Notes what another report has noted.
  void Add(const Finding& finding) { Note(finding.Code, finding.Actor, finding.Reason, findings_); }

  /// Counts something that is left out.
  template <typename... Details>
  void Count(FindingCode code, const Details&... details) {
    CountedFinding& counted = counts_[TextOf(code, {DetailText(details)...})];
    counted.Code = code;
    ++counted.Count;
  }

  const std::vector<Finding>& Findings() const { return findings_; }
  const std::vector<Finding>& Details() const { return details_; }
  const std::map<std::string, CountedFinding>& Counts() const { return counts_; } ///< by text

 private:
  template <typename Detail>
  static std::string DetailText(const Detail& detail) {
    if constexpr (std::is_integral_v<Detail>)
      return std::to_string(detail);
    else
      return std::string(std::string_view(detail));
  }
  void Note(FindingCode code, std::string_view actor, std::string text, std::vector<Finding>& to);

  std::vector<Finding> findings_;
  std::vector<Finding> details_;
  std::set<std::pair<std::string, std::string>> seen_;
  std::map<std::string, CountedFinding> counts_;
};

} // namespace quarvel
