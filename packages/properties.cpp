#include "packages/properties.h"

#include "base/ascii_text.h"

#include <algorithm>

namespace quarvel {
namespace {

ObjectReader ReaderOf(Bytes value) { return {value, 0, value.size()}; }

std::size_t ReadSize(ObjectReader& reader, unsigned kind) {
  constexpr std::size_t sizes[] = {1, 2, 4, 12, 16};
  switch (kind) {
  case 5:
    return reader.U8();
  case 6:
    return reader.U16();
  case 7:
    return reader.U32();
  default:
    return sizes[kind];
  }
}

/// One byte below 128, two bytes that begin with the bits 10, or four that begin with 11.
std::int32_t ReadArrayIndex(ObjectReader& reader) {
  const std::uint32_t first = reader.U8();
  if (first < 0x80) return static_cast<std::int32_t>(first);
  const std::uint32_t second = reader.U8();
  if (first < 0xC0) return static_cast<std::int32_t>((first & 0x3FU) << 8 | second);
  const std::uint32_t third = reader.U8();
  return static_cast<std::int32_t>((first & 0x3FU) << 24 | second << 16 | third << 8 | reader.U8());
}

void AppendUtf8(std::uint32_t code, std::string& out) {
  const auto add = [&](std::uint32_t byte) { out += static_cast<char>(static_cast<unsigned char>(byte)); };
  if (code < 0x80) return add(code);
  if (code < 0x800) {
    add(0xC0U | code >> 6);
  } else {
    add(0xE0U | code >> 12);
    add(0x80U | (code >> 6 & 0x3FU));
  }
  add(0x80U | (code & 0x3FU));
}

std::string WideText(Bytes bytes) {
  std::string text;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const std::uint32_t code = bytes[i] | std::uint32_t{bytes[i + 1]} << 8;
    if (code == 0) break;
    AppendUtf8(code >= 0xD800 && code < 0xE000 ? '?' : code, text); // no pairs: names outside the plane are unknown
  }
  return text;
}

} // namespace

std::optional<std::vector<Property>> ReadProperties(const Package& package, ObjectReader& reader) {
  std::vector<Property> properties;
  while (!reader.Failed()) {
    Property property;
    property.Name = NameAt(package, reader.Index());
    if (reader.Failed() || property.Name.empty()) break;
    if (SameText(property.Name, "None")) return properties;
    const unsigned info = reader.U8();
    property.Type = static_cast<PropertyType>(info & 0x0FU);
    const bool isBool = property.Type == PropertyType::Bool;
    if (property.Type == PropertyType::Struct) property.StructName = NameAt(package, reader.Index());
    const std::size_t size = ReadSize(reader, info >> 4 & 7U);
    if (isBool) property.Flag = (info & 0x80U) != 0;
    if (!isBool && (info & 0x80U) != 0) property.ArrayIndex = ReadArrayIndex(reader);
    property.Value = reader.Take(isBool ? 0 : size);
    properties.push_back(property);
  }
  return std::nullopt;
}

const Property* FindProperty(std::span<const Property> properties, std::string_view name) {
  const auto found = std::find_if(properties.begin(), properties.end(), [&](const Property& property) {
    return property.ArrayIndex == 0 && SameText(property.Name, name);
  });
  return found == properties.end() ? nullptr : &*found;
}

std::int32_t IntValue(const Property& property) {
  if (property.Type == PropertyType::Byte && property.Value.size() == 1) return property.Value[0];
  return property.Type == PropertyType::Int ? ReaderOf(property.Value).S32() : 0;
}

float FloatValue(const Property& property) {
  return property.Type == PropertyType::Float ? ReaderOf(property.Value).F32() : 0;
}

ObjectRef ObjectValue(const Property& property) {
  const bool isObject = property.Type == PropertyType::Object || property.Type == PropertyType::Class;
  return isObject ? ReaderOf(property.Value).Index() : 0;
}

std::string_view NameValue(const Package& package, const Property& property) {
  if (property.Type != PropertyType::Name) return {};
  ObjectReader reader = ReaderOf(property.Value);
  const std::int32_t index = reader.Index();
  return reader.Failed() ? std::string_view() : NameAt(package, index);
}

std::string StringValue(const Property& property) {
  if (property.Type != PropertyType::String) return {};
  ObjectReader reader = ReaderOf(property.Value);
  const std::int32_t length = reader.Index();
  if (length < 0) return WideText(reader.Take(static_cast<std::uint64_t>(-static_cast<std::int64_t>(length)) * 2));
  const std::string_view text = TextOf(reader.Take(static_cast<std::uint64_t>(length)));
  return std::string(text.substr(0, text.find('\0')));
}

std::int32_t IntOr(std::span<const Property> properties, std::string_view name, std::int32_t fallback) {
  const Property* property = FindProperty(properties, name);
  return property ? IntValue(*property) : fallback;
}

bool BoolOr(std::span<const Property> properties, std::string_view name, bool fallback) {
  const Property* property = FindProperty(properties, name);
  return property && property->Type == PropertyType::Bool ? property->Flag : fallback;
}

ObjectRef ObjectOr0(std::span<const Property> properties, std::string_view name) {
  const Property* property = FindProperty(properties, name);
  return property ? ObjectValue(*property) : 0;
}

} // namespace quarvel
