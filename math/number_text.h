#pragma once

#include "math/vector.h"

#include <string>
#include <string_view>

namespace quarvel {

/// The number that a text begins with: blanks are skipped, then an optional sign, digits, an optional point with digits
/// and an optional exponent are taken. No number gives 0; one too large for a double gives an infinity. The decimal
/// separator is always the point.
double ParseLeadingNumber(std::string_view text);

/// `value` as a whole number, halves to even, held within [low, high]. NaN gives 0 (or the nearest bound).
long long RoundToInteger(double value, long long low, long long high);

/// Appends a scene number: whole numbers up to 15 digits without point or exponent, others in the pattern "0.0#####".
/// Negative values above -0.000001, NaN and infinities come out as "0", positive ones below 0.0000005 as "0.0".
void AppendFlt(std::string& out, double value);

/// Appends the three components, each by AppendFlt, with single blanks between them.
void AppendVec(std::string& out, const Vector3& value);

std::string FormatFlt(double value);
std::string FormatVec(const Vector3& value);

/// The plain general form: the shortest text that reads back as the same number (2, 0.25, 0.33333), but whole numbers
/// up to 15 digits in full. NaN and infinities come out as "0".
std::string FormatGeneral(double value);

} // namespace quarvel
