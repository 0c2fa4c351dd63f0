#include "app/desktop/window_interface.h"

#include "app/desktop/qt_text.h"

#include <QApplication>

namespace quarvel {

namespace {

using namespace std::chrono_literals;

constexpr auto eventsEvery = 20ms;
constexpr auto mappingEvery = 60ms;
constexpr double shareForMappings = 0.03;  // of a run's time
constexpr unsigned facesBetweenLooks = 16; // at the clock

double Seconds(std::chrono::steady_clock::duration duration) { return std::chrono::duration<double>(duration).count(); }

} // namespace

void WindowInterface::Begin() {
  isActive_ = true;
  stopRequested_ = false;
  begin_ = Clock::now();
  nextEvents_ = nextMapping_ = {};
  faces_ = 0;
  secondsOnMappings_ = 0;
  Clear();
}

void WindowInterface::Clear() {
  pass_.clear();
  item_.clear();
  itemNumber_ = -1;
  BeginFile(0, 1);
  uniqueMaterials_ = 0;
  mapping_.reset();
  panel_.Picture()->Clear();
  Draw();
}

void WindowInterface::BeginFile(double before, double share) {
  before_ = fraction_ = before;
  share_ = share;
}

void WindowInterface::End() {
  Draw();
  if (mapping_) panel_.Picture()->Show(*mapping_);
  mapping_.reset();
}

void WindowInterface::ShowPass(std::string_view text) {
  pass_ = text;
  item_.clear();
  itemNumber_ = -1;
}

void WindowInterface::ShowItem(std::string_view text, long number) {
  item_ = text;
  itemNumber_ = number;
}

bool WindowInterface::WantsTextureMapping() {
  if (faces_++ % facesBetweenLooks != 0) return false;
  return Clock::now() >= nextMapping_;
}

void WindowInterface::ShowTextureMapping(const std::filesystem::path& image, const std::vector<TexturePoint>& corners) {
  mapping_ = {image, corners};
  nextMapping_ = Clock::now() + mappingEvery;
}

void WindowInterface::Beep() { QApplication::beep(); }

void WindowInterface::ProcessEvents() {
  if (Clock::now() < nextEvents_) return;
  Draw();
  DrawMapping();
  QApplication::processEvents();
  nextEvents_ = Clock::now() + eventsEvery;
}

void WindowInterface::Draw() {
  panel_.ShowPass(ToQString(pass_));
  panel_.ShowItem(ToQString(itemNumber_ < 0 ? item_ : item_ + std::to_string(itemNumber_)));
  panel_.ShowFraction(fraction_);
  panel_.ShowUniqueMaterials(uniqueMaterials_);
}

void WindowInterface::DrawMapping() {
  if (!mapping_) return;
  const Clock::time_point start = Clock::now();
  const double allowed = shareForMappings * Seconds(start - begin_) - secondsOnMappings_;
  if (panel_.Picture()->ExpectedCost(*mapping_) > allowed) return; // a later one may be cheaper
  panel_.Picture()->Show(*mapping_);
  mapping_.reset();
  secondsOnMappings_ += Seconds(Clock::now() - start);
}

} // namespace quarvel
