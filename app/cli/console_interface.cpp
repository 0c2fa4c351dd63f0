#include "app/cli/console_interface.h"

#include "base/level_text.h"

#include <algorithm>
#include <utility>

namespace quarvel {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto drawEvery = std::chrono::milliseconds(100);
constexpr std::size_t lineWidth = 79;
constexpr std::string_view toLineStartAndErase = "\r\x1b[K";

/// A line that wraps could not be drawn over.
std::string CutToLine(std::string text) {
  if (text.size() <= lineWidth) return text;
  std::size_t end = lineWidth;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) // not within a character
    --end;
  return text.substr(0, end);
}

} // namespace

ConsoleInterface::ConsoleInterface(std::ostream& out, Detail detail, std::function<bool()> stopRequested)
    : out_(out), detail_(detail), stopRequested_(std::move(stopRequested)) {}

void ConsoleInterface::BeginFile(std::string_view title, double before, double share) {
  title_ = title;
  pass_.clear();
  item_.clear();
  done_ = 0;
  before_ = before;
  share_ = share;
}

void ConsoleInterface::ClearLine() {
  if (isDrawn_) out_ << toLineStartAndErase << std::flush;
  isDrawn_ = false;
}

void ConsoleInterface::ShowPass(std::string_view text) {
  if (pass_ == text) return;
  pass_ = text;
  item_.clear();
  if (detail_.Passes) {
    ClearLine();
    out_ << PrintableText(title_ + pass_) << std::endl;
  }
  if (IsDue()) Draw();
}

void ConsoleInterface::ShowItem(std::string_view text, long number) {
  if (!IsDue()) return;
  item_ = text;
  if (number >= 0) item_ += std::to_string(number);
  Draw();
}

void ConsoleInterface::ShowFraction(double done) {
  done_ = done;
  if (IsDue()) Draw();
}

void ConsoleInterface::Beep() {
  if (detail_.ProgressLine) out_ << '\a' << std::flush;
}

bool ConsoleInterface::IsDue() { return detail_.ProgressLine && Clock::now() >= nextDraw_; }

void ConsoleInterface::Draw() {
  const int percent = static_cast<int>((before_ + share_ * std::clamp(done_, 0.0, 1.0)) * 100);
  const std::string line = std::to_string(percent) + "% " + title_ + pass_ + (item_.empty() ? "" : ", " + item_);
  out_ << toLineStartAndErase << CutToLine(PrintableText(line)) << std::flush;
  isDrawn_ = true;
  nextDraw_ = Clock::now() + drawEvery;
}

} // namespace quarvel
