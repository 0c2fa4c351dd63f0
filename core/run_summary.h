#pragma once

#include "core/conversion_run.h"

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

/// "1 brush", "2 brushes".
std::string CountText(std::size_t count, std::string_view one, std::string_view many);

/// "0.12 s".
std::string SecondsText(double seconds);

/// "3 brushes, 18 faces, 2 materials".
std::string ContentText(const RunResult& result);

/// "light of 3 lamps baked: 5000 texels on 1 page in 0.12 s".
std::string LightText(const BakedLightSummary& light);

/// "0 0 0 to 1 2 3".
std::string BoxText(const Bounds3& bounds);

/// The actors that one thing was noted about.
struct ActorsOfReason {
  std::string Reason;
  std::vector<std::string> Actors;
};

/// In the order in which the reasons first came up.
std::vector<ActorsOfReason> GroupByReason(const std::vector<Finding>& findings);

enum class SummaryLength {
  Short, ///< long lists are cut
  Full,
};

/// Tells what a finished run wrote, what it left out and what it missed.
void WriteSummary(std::ostream& out, const RunResult& result, SummaryLength length);

/// Whether a message of a run tells of a list of missing files.
bool IsAboutMissingFiles(std::string_view message);

/// What became of a batch, in a word or two: "Done", "Stopped", "1 of 5 converted", "Not converted".
std::string BatchHeadline(const std::vector<RunResult>& results, std::size_t jobs);

/// "2 of 3 files converted".
std::string BatchSummary(const std::vector<RunResult>& results, std::size_t jobs);

} // namespace quarvel
