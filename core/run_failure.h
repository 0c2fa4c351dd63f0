#pragma once

#include <string>

namespace quarvel {

/// Thrown with one sentence when a run cannot go on; caught by the run alone.
struct RunFailed {
  std::string Error;
  std::string Reason{}; ///< the same without folders; empty when it names none
};

} // namespace quarvel
