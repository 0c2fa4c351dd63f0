#include "page/page_parts.h"

#include "base/ascii_text.h"
#include "base/file_name.h"
#include "images/image_file.h"
#include "page/packing.h"

#include <fstream>
#include <iterator>
#include <optional>

namespace quarvel {

namespace fs = std::filesystem;

namespace {

std::string DataUri(const std::string& type, std::string_view bytes) {
  return "data:" + type + ";base64," + Base64(bytes);
}

std::optional<std::string> ReadAll(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return std::nullopt;
  std::string bytes{std::istreambuf_iterator<char>(in), {}};
  if (in.bad()) return std::nullopt;
  return bytes;
}

Bytes BytesOf(const std::string& text) { return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}; }

std::string MediaType(ImageType type) {
  return type == ImageType::Jpg ? "image/jpeg" : "image/" + std::string(ExtensionOf(type));
}

/// Empty for what is no sound.
std::string SoundType(const std::string& name) {
  const std::string extension = LowerCase(ExtensionOf(name));
  if (extension == "mp3") return "audio/mpeg";
  if (extension == "ogg" || extension == "oga") return "audio/ogg";
  return extension == "wav" ? "audio/wav" : "";
}

} // namespace

bool IsSoundName(const std::string& name) { return !SoundType(name).empty(); }

std::string PageParts::NextName(std::string_view extension) {
  return "page-" + std::to_string(++count_) + "." + std::string(extension);
}

std::string PageParts::AddImage(const fs::path& file) {
  const auto [at, isNew] = known_.try_emplace(file);
  if (!isNew) return at->second;
  std::optional<std::string> bytes = ReadAll(file);
  const std::string extension = LowerCase(ExtensionOf(Utf8Path(file)));
  ImageType type = bytes ? ImageTypeOfContent(BytesOf(*bytes), extension) : ImageType::Unknown;
  if (bytes && type != ImageType::Png && type != ImageType::Jpg && type != ImageType::Gif) {
    ImageResult image = ReadImage(BytesOf(*bytes), extension);
    if (!image) {
      report_.Add(FindingCode::PageWithoutFile, Utf8Path(file.filename()), image.Error);
      return {};
    }
    type = ImageType::Png;
    const auto png = EncodeImage(ToRgba(std::move(*image.Picture), Transparency::Kept), type);
    bytes->assign(png.begin(), png.end());
  } else if (!bytes) {
    report_.Add(FindingCode::PageWithoutFile, Utf8Path(file.filename()), "it cannot be read");
    return {};
  }
  at->second = NextName(ExtensionOf(type));
  parts_.push_back({"image", at->second, DataUri(MediaType(type), *bytes)});
  return at->second;
}

std::string PageParts::AddSound(const fs::path& file) {
  const auto [at, isNew] = known_.try_emplace(file);
  if (!isNew) return at->second;
  const std::optional<std::string> bytes = ReadAll(file);
  if (!bytes) {
    report_.Add(FindingCode::PageWithoutFile, Utf8Path(file.filename()), "it cannot be read");
    return {};
  }
  at->second = NextName("sound");
  // Browsers tell sounds by their content; the type only has to be one for sounds.
  const std::string type = SoundType(Utf8Path(file));
  parts_.push_back({"sound", at->second, DataUri(type.empty() ? "audio/wav" : type, *bytes)});
  return at->second;
}

std::string PageParts::AddScene(std::string_view text, std::string_view extension) {
  std::string name = NextName(extension);
  AddText("scene", name, text);
  return name;
}

void PageParts::AddText(std::string_view kind, std::string name, std::string_view text) {
  parts_.push_back({kind, std::move(name), Base64(Gzip(text))});
}

} // namespace quarvel
