#pragma once

#include <string_view>

namespace quarvel {

/// The member that a number means in the enumeration of an actor's property ("CsgOper", 2: CSG_Subtract). Empty when
/// the property is no enumeration that is known, or has no such member: the text then gives the number.
std::string_view EnumeratorName(std::string_view property, int number);

} // namespace quarvel
