#include "packages/sound_object.h"

#include "base/ascii_text.h"
#include "images/bytes.h"
#include "packages/properties.h"

namespace quarvel {

bool IsSoundClass(std::string_view className) { return SameText(className, "Sound"); }

std::optional<SoundObject> ReadSound(const Package& package, const PackageExport& object) {
  ObjectReader reader = ReadObject(package, object);
  if (!ReadProperties(package, reader)) return std::nullopt;
  SoundObject sound;
  sound.Kind = LowerCase(NameAt(package, reader.Index()));
  if (package.Version >= 63) reader.Skip(4); // the offset behind the data
  sound.File = reader.Take(reader.Count(1));
  if (reader.Failed() || sound.File.empty()) return std::nullopt;
  return sound;
}

bool IsWave(Bytes file) {
  return file.size() >= 12 && TextOf(file.first(4)) == "RIFF" && TextOf(file.subspan(8, 4)) == "WAVE";
}

double WaveSeconds(Bytes file) {
  if (!IsWave(file)) return 0;
  const ByteView bytes(file);
  double bytesPerSecond = 0;
  for (std::size_t at = 12; bytes.Has(at, 8);) {
    const std::size_t size = bytes.U32(at + 4);
    const std::string_view chunk = TextOf(file.subspan(at, 4));
    if (chunk == "fmt ") bytesPerSecond = bytes.U32(at + 16);
    if (chunk == "data") return bytesPerSecond > 0 ? static_cast<double>(size) / bytesPerSecond : 0;
    at += 8 + size + size % 2; // chunks are padded to even sizes
  }
  return 0;
}

} // namespace quarvel
