#pragma once

#include "app/desktop/run_panel.h"
#include "base/run_interface.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace quarvel {

/// Shows a run in the window, on the window's own thread: events of the window happen when the run asks for them. The
/// boxes come after the run, from its result.
class WindowInterface : public RunInterface {
 public:
  explicit WindowInterface(RunPanel& panel) : panel_(panel) {}

  void Begin(); ///< before the first file of a press of the button
  void End();   ///< after the last
  /// Before each file: what the files before it, and it itself, are of the whole, 0 to 1.
  void BeginFile(double before, double share);

  void SetActive(bool active) { isActive_ = active; }
  void RequestStop() { stopRequested_ = true; }
  void Clear(); ///< shows nothing of the runs so far

  void ShowPass(std::string_view text) override;
  void ShowItem(std::string_view text, long number) override;
  void ShowFraction(double done) override { fraction_ = before_ + share_ * done; }
  void ShowUniqueMaterials(int count) override { uniqueMaterials_ = count; }
  bool WantsTextureMapping() override;
  void ShowTextureMapping(const std::filesystem::path& image, const std::vector<TexturePoint>& corners) override;
  void Beep() override;
  void ProcessEvents() override;
  bool RunActive() override { return isActive_; }
  bool StopRequested() override { return stopRequested_; }

 private:
  using Clock = std::chrono::steady_clock;

  void Draw();
  void DrawMapping();

  RunPanel& panel_;
  bool isActive_ = true;
  bool stopRequested_ = false;

  std::string pass_, item_;
  long itemNumber_ = -1;
  double fraction_ = 0, before_ = 0, share_ = 1;
  int uniqueMaterials_ = 0;

  Clock::time_point begin_{}, nextEvents_{}, nextMapping_{};
  unsigned faces_ = 0;
  std::optional<TextureMapping> mapping_;
  double secondsOnMappings_ = 0;
};

} // namespace quarvel
