#pragma once

#include "packages/package.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

enum class PropertyType : std::uint8_t {
  Byte = 1, ///< also a member of an enumeration, by its number
  Int = 2,
  Bool = 3,
  Float = 4,
  Object = 5,
  Name = 6,
  Class = 8,
  Struct = 10,
  Vector = 11,
  Rotator = 12,
  String = 13,
};

/// One property of an object, with its value as it stands in the file.
struct Property {
  std::string_view Name;
  PropertyType Type = PropertyType::Byte;
  std::string_view StructName; ///< of a struct
  std::int32_t ArrayIndex = 0; ///< 0 also for what is no array
  bool Flag = false;           ///< the value of a bool, which has no bytes
  Bytes Value;
};

/// Reads an object's properties up to the name None; nothing when they are damaged.
std::optional<std::vector<Property>> ReadProperties(const Package& package, ObjectReader& reader);

/// The property of this name (of the first place of an array), without regard to case; null when there is none.
const Property* FindProperty(std::span<const Property> properties, std::string_view name);

/// Values of a property; 0, false and empty where its type is another or its bytes are too few.
std::int32_t IntValue(const Property& property); ///< of a byte too
float FloatValue(const Property& property);
ObjectRef ObjectValue(const Property& property);
std::string_view NameValue(const Package& package, const Property& property);
/// The bytes of a string; of wide characters as UTF-8.
std::string StringValue(const Property& property);

/// The same for a property that may be missing.
std::int32_t IntOr(std::span<const Property> properties, std::string_view name, std::int32_t fallback);
bool BoolOr(std::span<const Property> properties, std::string_view name, bool fallback);
ObjectRef ObjectOr0(std::span<const Property> properties, std::string_view name);

} // namespace quarvel
