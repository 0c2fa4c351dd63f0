#pragma once

#include "core/conversion_run.h"

#include <ostream>
#include <vector>

namespace quarvel {

/// Tells what a finished run wrote, what it left out and what it missed. Long lists are cut unless `inFull`.
void WriteSummary(std::ostream& out, const RunResult& result, bool inFull);

/// Tells how many of the files of a batch were converted.
void WriteBatchSummary(std::ostream& out, const std::vector<RunResult>& results, std::size_t jobs);

} // namespace quarvel
