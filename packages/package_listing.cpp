#include "packages/package_listing.h"

#include "base/level_text.h"
#include "packages/sound_object.h"
#include "packages/texture_object.h"

#include <charconv>

namespace quarvel {
namespace {

std::string Seconds(double seconds) {
  char text[64];
  return {text, std::to_chars(text, text + sizeof text, seconds, std::chars_format::fixed, 2).ptr};
}

/// What a line tells beyond class, name and size.
std::string Details(const Package& package, std::size_t index) {
  const PackageExport& object = package.Exports[index];
  const std::string_view className = ClassName(package, RefOfExport(index));
  if (!object.Intact) return "damaged";
  if (IsTextureClass(className)) {
    const auto facts = ReadTextureFacts({&package, index});
    if (!facts) return "damaged";
    return std::to_string(facts->Width) + "x" + std::to_string(facts->Height) + (facts->Masked ? " masked" : "");
  }
  if (IsSoundClass(className)) {
    const auto sound = ReadSound(package, object);
    return sound ? Seconds(WaveSeconds(sound->File)) + " s" : "damaged";
  }
  return {};
}

} // namespace

void ListPackage(const Package& package, std::ostream& out) {
  for (std::size_t i = 0; i < package.Exports.size(); ++i) {
    std::string line = PrintableText(ClassName(package, RefOfExport(i)));
    line.resize(std::max<std::size_t>(line.size(), 16), ' ');
    line += " " + PrintableText(FullName(package, RefOfExport(i), package.Name));
    line += "  " + std::to_string(package.Exports[i].Size) + " bytes";
    if (const std::string details = Details(package, i); !details.empty()) line += "  " + details;
    out << line << "\n";
  }
}

} // namespace quarvel
