#pragma once

#include "packages/package.h"
#include "tests/images/made_images.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel::test {

/// A number as a compact index.
inline Blob CompactIndex(int value) {
  const auto magnitude = static_cast<unsigned>(value < 0 ? -value : value);
  FileBytes bytes;
  unsigned rest = magnitude >> 6U;
  bytes.U8((value < 0 ? 0x80U : 0U) | (rest > 0 ? 0x40U : 0U) | (magnitude & 0x3FU));
  for (; rest > 0; rest >>= 7U)
    bytes.U8((rest > 0x7FU ? 0x80U : 0U) | (rest & 0x7FU));
  return bytes;
}

/// Makes package files of any version.
class MadePackage {
 public:
  explicit MadePackage(int version = LastPackageVersion) : version_(version) { Name("None"); }

  int Version() const { return version_; }

  int Name(std::string_view text) {
    const auto [at, isNew] = indices_.try_emplace(std::string(text), static_cast<int>(names_.size()));
    if (isNew) names_.emplace_back(text);
    return at->second;
  }

  ObjectRef Import(std::string_view className, ObjectRef outer, std::string_view name) {
    FileBytes bytes;
    bytes.Add(CompactIndex(Name("Core"))).Add(CompactIndex(Name(className)));
    bytes.U32(static_cast<unsigned>(outer)).Add(CompactIndex(Name(name)));
    imports_.push_back(bytes);
    return -static_cast<ObjectRef>(imports_.size());
  }

  /// An object whose bytes may be given later.
  ObjectRef Export(std::string_view className, std::string_view name, Blob data = {}, ObjectRef outer = 0,
                   unsigned flags = 0) {
    exports_.push_back({ClassRef(className), outer, Name(name), flags, std::move(data)});
    return static_cast<ObjectRef>(exports_.size());
  }
  void SetData(ObjectRef object, Blob data) { exports_[static_cast<std::size_t>(object) - 1].Data = std::move(data); }
  void SetOuter(ObjectRef object, ObjectRef outer) { exports_[static_cast<std::size_t>(object) - 1].Outer = outer; }

  Blob Build() const {
    FileBytes objects, names, imports, exports;
    for (const std::string& name : names_) {
      if (version_ >= 64) names.Add(CompactIndex(static_cast<int>(name.size()) + 1));
      names.Text(name).U8(0).U32(0);
    }
    for (const Blob& import : imports_)
      imports.Add(import);
    for (const Entry& entry : exports_) {
      exports.Add(CompactIndex(entry.Class)).Add(CompactIndex(0)).U32(static_cast<unsigned>(entry.Outer));
      exports.Add(CompactIndex(entry.Name)).U32(entry.Flags).Add(CompactIndex(static_cast<int>(entry.Data.size())));
      if (!entry.Data.empty()) exports.Add(CompactIndex(static_cast<int>(36 + objects.Get().size())));
      objects.Add(entry.Data);
    }
    const auto size = [](const auto& list) { return static_cast<unsigned>(list.size()); };
    const unsigned namesAt = 36 + size(objects.Get());
    const unsigned importsAt = namesAt + size(names.Get());
    FileBytes file;
    file.U32(0x9E2A83C1).U16(static_cast<unsigned>(version_)).U16(0).U32(1).U32(size(names_)).U32(namesAt);
    file.U32(size(exports_)).U32(importsAt + size(imports.Get())).U32(size(imports_)).U32(importsAt);
    return file.Add(objects).Add(names).Add(imports).Add(exports);
  }

 private:
  struct Entry {
    ObjectRef Class;
    ObjectRef Outer;
    int Name;
    unsigned Flags;
    Blob Data;
  };

  ObjectRef ClassRef(std::string_view className) {
    const auto [at, isNew] = classes_.try_emplace(std::string(className), 0);
    if (isNew) at->second = Import("Class", 0, className);
    return at->second;
  }

  int version_;
  std::vector<std::string> names_;
  std::map<std::string, int> indices_;
  std::map<std::string, ObjectRef> classes_;
  std::vector<Blob> imports_;
  std::vector<Entry> exports_;
};

/// The bytes of an object: properties, then what its class adds.
class ObjectBytes : public ByteBuilder<ObjectBytes> {
 public:
  explicit ObjectBytes(MadePackage& package) : package_(package) {}

  ObjectBytes& Byte(std::string_view name, int value) { return Tag(name, 1, FileBytes().U8(Bits(value))); }
  ObjectBytes& Int(std::string_view name, int value) { return Tag(name, 2, FileBytes().U32(Bits(value))); }
  ObjectBytes& Float(std::string_view name, float value) { return Tag(name, 4, FileBytes().Floats({value})); }
  ObjectBytes& Object(std::string_view name, ObjectRef value) { return Tag(name, 5, CompactIndex(value)); }
  ObjectBytes& NameOf(std::string_view name, std::string_view value, int index = 0) {
    return Tag(name, 6, CompactIndex(package_.Name(value)), index);
  }
  ObjectBytes& String(std::string_view name, std::string_view value) {
    return Tag(name, 13, FileBytes().Add(CompactIndex(static_cast<int>(value.size()) + 1)).Text(value).U8(0));
  }
  ObjectBytes& Bool(std::string_view name, bool value) {
    return Index(package_.Name(name)).U8(3U | (value ? 0x80U : 0U));
  }
  ObjectBytes& Vector(std::string_view name, float x, float y, float z, int index = 0) {
    return Struct(name, "Vector", FileBytes().Floats({x, y, z}), index);
  }
  ObjectBytes& Struct(std::string_view name, std::string_view kind, const Blob& value, int index = 0) {
    kind_ = kind;
    return Tag(name, 10, value, index);
  }
  ObjectBytes& None() { return Index(package_.Name("None")); }

  ObjectBytes& Index(int value) { return Add(CompactIndex(value)); }
  /// One picture of a texture or the data of a sound: a length and the bytes.
  ObjectBytes& Data(const Blob& data) {
    if (package_.Version() >= 63) U32(0);
    return Index(static_cast<int>(data.size())).Add(data);
  }
  ObjectBytes& Mip(const Blob& data, unsigned width, unsigned height) {
    return Data(data).U32(width).U32(height).U16(0);
  }
  /// The state that actors are in.
  ObjectBytes& StateFrame() { return Index(1).Index(1).U32(0).U32(0).U32(0).Index(-1); }

 private:
  static unsigned Bits(int value) { return static_cast<unsigned>(value); }

  ObjectBytes& Tag(std::string_view name, unsigned type, const Blob& value, int index = 0) {
    const std::size_t size = value.size();
    const unsigned kind = size == 1 ? 0 : size == 2 ? 1 : size == 4 ? 2 : size == 12 ? 3 : size == 16 ? 4 : 5;
    const unsigned wide = kind < 5 ? kind : size < 256 ? 5 : size < 65536 ? 6 : 7;
    Index(package_.Name(name)).U8(type | wide << 4U | (index > 0 ? 0x80U : 0U));
    if (type == 10) Index(package_.Name(kind_));
    if (wide == 5) U8(static_cast<unsigned>(size));
    if (wide == 6) U16(static_cast<unsigned>(size));
    if (wide == 7) U32(static_cast<unsigned>(size));
    if (index > 0x7F) U8(0x80U | static_cast<unsigned>(index) >> 8U);
    if (index > 0) U8(static_cast<unsigned>(index) & 0xFFU);
    return Add(value);
  }

  MadePackage& package_;
  std::string kind_;
};

/// A palette whose entry n is (n, 255 - n, 7).
inline Blob PaletteBytes(MadePackage& package) {
  ObjectBytes palette(package);
  palette.None().Index(256);
  for (unsigned i = 0; i < 256; ++i)
    palette.U8(i).U8(255 - i).U8(7).U8(0);
  return palette;
}

/// The shortest wave file: `samples` samples of 8 bits, 8,000 a second.
inline Blob WaveBytes(unsigned samples) {
  FileBytes wave;
  wave.Text("RIFF").U32(36 + samples).Text("WAVEfmt ").U32(16).U16(1).U16(1).U32(8000).U32(8000).U16(1).U16(8);
  return wave.Text("data").U32(samples).Fill(samples, 128);
}

/// Packages with one of everything, for tests and as seeds of the fuzzer: textures of all kinds with a palette and a
/// sound, and a level.
Blob MadeTextures(int version = LastPackageVersion);
Blob MadeLevel(int version = LastPackageVersion);

/// Reads all that a package holds, whatever becomes of it.
void ReadEverything(const Package& package);

} // namespace quarvel::test
