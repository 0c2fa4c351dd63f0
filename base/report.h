#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quarvel {

/// One thing that a run could not read, find or resolve.
struct Finding {
  std::string Actor;  ///< the actor's name, or the file's, or empty
  std::string Reason; ///< one clause, lower case, without a full stop
};

/// Collects what a run has to tell at its end: findings, and how often something was left out.
class Report {
 public:
  /// Notes a finding once, however often it is met.
  void Add(std::string_view actor, std::string_view reason) {
    if (seen_.emplace(actor, reason).second) findings_.push_back({std::string(actor), std::string(reason)});
  }

  /// Adds to the count of things left out for one reason ("brushes left out as subtractive").
  void Count(std::string_view what, int by = 1) { counts_[std::string(what)] += by; }

  const std::vector<Finding>& Findings() const { return findings_; }
  const std::map<std::string, int>& Counts() const { return counts_; }

 private:
  std::vector<Finding> findings_;
  std::set<std::pair<std::string, std::string>> seen_;
  std::map<std::string, int> counts_;
};

} // namespace quarvel
