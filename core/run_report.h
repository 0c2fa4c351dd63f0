#pragma once

#include "core/conversion_run.h"

#include <string>
#include <vector>

namespace quarvel {

/// What the runs of a batch did, as JSON: an array with one object a file. docs/report.md describes it.
std::string ReportAsJson(const std::vector<RunResult>& results);

} // namespace quarvel
