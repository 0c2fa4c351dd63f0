#pragma once

#include "base/run_interface.h"

#include <chrono>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>

namespace quarvel {

/// Shows a run on a console.
class ConsoleInterface : public RunInterface {
 public:
  struct Detail {
    bool ProgressLine = false; ///< one line that is drawn over and over; needs a terminal
    bool Passes = false;       ///< a line for each pass
  };

  ConsoleInterface(std::ostream& out, Detail detail, std::function<bool()> stopRequested);

  /// Puts a text in front of the progress line, until the next file. `before` is the share of the work that is done,
  /// `share` the one of this file, 0 to 1.
  void BeginFile(std::string_view title, double before, double share);
  /// Takes the progress line away, so that other text may be printed.
  void ClearLine();

  void ShowPass(std::string_view text) override;
  void ShowItem(std::string_view text, long number) override;
  void ShowFraction(double done) override;
  void Beep() override;
  bool StopRequested() override { return stopRequested_ && stopRequested_(); }

 private:
  bool IsDue();
  void Draw();

  std::ostream& out_;
  Detail detail_;
  std::function<bool()> stopRequested_;
  std::string title_, pass_, item_;
  double done_ = 0, before_ = 0, share_ = 1;
  bool isDrawn_ = false;
  std::chrono::steady_clock::time_point nextDraw_{};
};

} // namespace quarvel
