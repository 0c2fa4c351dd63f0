#pragma once

#include "packages/properties.h"

#include <string>
#include <string_view>

namespace quarvel {

/// The package name by which a level's text refers to the objects of its own file.
inline constexpr std::string_view OwnPackageName = "MyLevel";

/// Appends text of a package as a level's text may hold it: control characters would break its lines and become "_".
void AppendPlain(std::string& out, std::string_view text);

/// Appends what an object reference is in a level's text: Class'Package.Group.Name', or None.
void AppendObject(std::string& out, const Package& package, ObjectRef object);

/// Appends a property's value as the editor exports it. False, with a part of it appended, when its type or struct is
/// not known, or its bytes are damaged.
bool AppendValue(std::string& out, const Package& package, const Property& property);

} // namespace quarvel
