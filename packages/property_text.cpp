#include "packages/property_text.h"

#include "base/ascii_text.h"
#include "packages/enumerations.h"
#include "packages/level_objects.h"

#include <charconv>
#include <cmath>

namespace quarvel {
namespace {

void AppendInt(std::string& out, std::int64_t value) { out += std::to_string(value); }

/// Six decimals; what is no number becomes 0.
void AppendFloat(std::string& out, float value) {
  char text[64];
  const double number = std::isfinite(value) ? double{value} : 0.0;
  out.append(text, std::to_chars(text, text + sizeof text, number, std::chars_format::fixed, 6).ptr);
}

/// A struct in brackets; what has its default is left out by not being begun.
class StructText {
 public:
  explicit StructText(std::string& out) : out_(out) { out_ += '('; }
  std::string& Begin(std::string_view member) {
    if (!first_) out_ += ',';
    first_ = false;
    out_ += member;
    out_ += '=';
    return out_;
  }
  void Float(std::string_view member, float value, float fallback = 0) {
    if (value != fallback) AppendFloat(Begin(member), value);
  }
  void Int(std::string_view member, std::int64_t value, std::int64_t fallback = 0) {
    if (value != fallback) AppendInt(Begin(member), value);
  }
  void Close() { out_ += ')'; }

 private:
  std::string& out_;
  bool first_ = true;
};

void AppendVector(std::string& out, const FileVector& vector, float fallback) {
  StructText text(out);
  text.Float("X", vector[0], fallback);
  text.Float("Y", vector[1], fallback);
  text.Float("Z", vector[2], fallback);
  text.Close();
}

void AppendRotator(std::string& out, ObjectReader& reader) {
  StructText text(out);
  for (const std::string_view member : {"Pitch", "Yaw", "Roll"})
    text.Int(member, reader.S32());
  text.Close();
}

/// The fog's colour is grey by default, so a component that is 0 has to be told.
void AppendColor(std::string& out, ObjectReader& reader, std::string_view property) {
  const bool greyDefault = SameText(property, "DistanceFogColor");
  StructText text(out);
  for (const std::string_view member : {"R", "G", "B", "A"})
    text.Int(member, reader.U8(), greyDefault && member != "A" ? -1 : 0);
  text.Close();
}

void AppendScale(std::string& out, ObjectReader& reader) {
  const FileVector scale = ReadFileVector(reader);
  const float sheerRate = reader.F32();
  const int sheerAxis = reader.U8();
  StructText text(out);
  if (scale != FileVector{1, 1, 1}) AppendVector(text.Begin("Scale"), scale, 1);
  text.Float("SheerRate", sheerRate);
  if (sheerAxis != 0) {
    const std::string_view name = EnumeratorName("SheerAxis", sheerAxis);
    name.empty() ? AppendInt(text.Begin("SheerAxis"), sheerAxis) : void(text.Begin("SheerAxis") += name);
  }
  text.Close();
}

/// The zone that an actor is in.
void AppendRegion(std::string& out, const Package& package, ObjectReader& reader) {
  StructText text(out);
  if (const ObjectRef zone = reader.Index(); zone != 0) AppendObject(text.Begin("Zone"), package, zone);
  text.Int("iLeaf", reader.S32());
  text.Int("ZoneNumber", reader.U8());
  text.Close();
}

void AppendPlane(std::string& out, ObjectReader& reader) {
  StructText text(out);
  for (const std::string_view member : {"X", "Y", "Z", "W"})
    text.Float(member, reader.F32());
  text.Close();
}

/// A struct that holds properties of its own.
bool AppendTagged(std::string& out, const Package& package, ObjectReader& reader) {
  const auto members = ReadProperties(package, reader);
  if (!members) return false;
  StructText text(out);
  for (const Property& member : *members) {
    if (member.Type == PropertyType::Struct) return false; // these never nest in a level
    if (!AppendValue(text.Begin(member.Name), package, member)) return false;
  }
  text.Close();
  return true;
}

bool AppendStruct(std::string& out, const Package& package, const Property& property) {
  ObjectReader reader(property.Value, 0, property.Value.size());
  const auto is = [&](std::string_view name) { return SameText(property.StructName, name); };
  bool known = true;
  if (property.Type == PropertyType::Vector || is("Vector")) {
    AppendVector(out, ReadFileVector(reader), 0);
  } else if (property.Type == PropertyType::Rotator || is("Rotator")) {
    AppendRotator(out, reader);
  } else if (is("Color")) {
    AppendColor(out, reader, property.Name);
  } else if (is("Scale")) {
    AppendScale(out, reader);
  } else if (is("PointRegion")) {
    AppendRegion(out, package, reader);
  } else if (is("Plane")) {
    AppendPlane(out, reader);
  } else {
    known = AppendTagged(out, package, reader);
  }
  return known && !reader.Failed() && reader.Left() == 0;
}

void AppendQuoted(std::string& out, std::string_view text) {
  out += '"';
  AppendPlain(out, text);
  out += '"';
}

bool AppendByte(std::string& out, const Property& property) {
  if (property.Value.size() != 1) return false;
  const int number = IntValue(property);
  const std::string_view name = EnumeratorName(property.Name, number);
  name.empty() ? AppendInt(out, number) : void(out += name);
  return true;
}

} // namespace

bool AppendValue(std::string& out, const Package& package, const Property& property) {
  switch (property.Type) {
  case PropertyType::Byte:
    return AppendByte(out, property);
  case PropertyType::Int:
    AppendInt(out, IntValue(property));
    return property.Value.size() == 4;
  case PropertyType::Bool:
    out += property.Flag ? "True" : "False";
    return true;
  case PropertyType::Float:
    AppendFloat(out, FloatValue(property));
    return property.Value.size() == 4;
  case PropertyType::Object:
  case PropertyType::Class:
    AppendObject(out, package, ObjectValue(property));
    return true;
  case PropertyType::Name:
    AppendQuoted(out, NameValue(package, property));
    return true;
  case PropertyType::String:
    AppendQuoted(out, StringValue(property));
    return true;
  case PropertyType::Struct:
  case PropertyType::Vector:
  case PropertyType::Rotator:
    return AppendStruct(out, package, property);
  }
  return false;
}

void AppendPlain(std::string& out, std::string_view text) {
  for (const char c : text)
    out += static_cast<unsigned char>(c) < 0x20 || c == 0x7F ? '_' : c;
}

void AppendObject(std::string& out, const Package& package, ObjectRef object) {
  const std::string name = FullName(package, object, OwnPackageName);
  if (object == 0 || ObjectName(package, object).empty() || name.empty()) {
    out += "None";
    return;
  }
  AppendPlain(out, ClassName(package, object));
  out += '\'';
  AppendPlain(out, name);
  out += '\'';
}

} // namespace quarvel
