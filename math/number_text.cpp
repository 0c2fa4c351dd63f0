#include "math/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

namespace quarvel {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

void AppendInteger(std::string& out, long long value) {
  char buffer[24];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  out.append(buffer, result.ptr);
}

/// The shortest text that reads back as the same number, but whole numbers up to 15 digits in full (not 1e+06).
void AppendGeneral(std::string& out, double value) {
  if (!std::isfinite(value)) value = 0;
  if (std::fabs(value) < 1e15 && value == std::trunc(value)) {
    AppendInteger(out, static_cast<long long>(value));
    return;
  }
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  out.append(buffer, result.ptr);
}

/// Drops the trailing zeros behind the first decimal.
void AppendTrimmed(std::string& out, const char* first, const char* last) {
  const char* point = std::find(first, last, '.');
  while (last - point > 2 && last[-1] == '0')
    --last;
  out.append(first, last);
}

/// The pattern for values so large that their millionths are no whole numbers.
void AppendLargePattern(std::string& out, double value) {
  char buffer[400];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, 6);
  AppendTrimmed(out, buffer, result.ptr);
}

/// The nearest whole number of millionths, halves to even. The product is rounded itself, which decides wrongly where
/// it looks like a half and is not quite one; its error is known exactly.
std::uint64_t Millionths(double value) {
  const double product = value * 1e6;
  const double whole = std::floor(product);
  const double half = product - whole - 0.5;
  auto millionths = static_cast<std::uint64_t>(whole);
  const double beyond = half != 0 ? half : std::fma(value, 1e6, -product);
  if (beyond > 0 || (beyond == 0 && millionths % 2 == 1)) ++millionths;
  return millionths;
}

void AppendPattern(std::string& out, double value) {
  if (std::fabs(value) >= 1e9) return AppendLargePattern(out, value);
  const std::uint64_t millionths = Millionths(std::fabs(value));
  if (value < 0) out += '-';
  AppendInteger(out, static_cast<long long>(millionths / 1000000));
  char decimals[8] = ".000000";
  std::uint64_t rest = millionths % 1000000;
  for (int i = 6; i > 0 && rest != 0; --i, rest /= 10)
    decimals[i] = static_cast<char>('0' + rest % 10);
  AppendTrimmed(out, decimals, decimals + 7);
}

/// Tells numbers too small for a double from those too large, which from_chars does not: by the sign of the exponent,
/// without one by the digits before the point.
bool IsTiny(std::string_view number) {
  const std::size_t exponent = number.find_first_of("eE");
  if (exponent != number.npos) return number.find('-', exponent) != number.npos;
  return number.find_first_not_of('0') == number.find('.');
}

} // namespace

double ParseLeadingNumber(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size() && (text[at] == ' ' || text[at] == '\t'))
    ++at;
  bool negative = false;
  if (at < text.size() && (text[at] == '+' || text[at] == '-')) negative = text[at++] == '-';
  // from_chars would read "nan" and "inf", and a second sign.
  const bool digits =
      at < text.size() && (IsDigit(text[at]) || (text[at] == '.' && at + 1 < text.size() && IsDigit(text[at + 1])));
  if (!digits) return 0;
  double value = 0;
  const auto result = std::from_chars(text.data() + at, text.data() + text.size(), value);
  if (result.ec == std::errc::result_out_of_range)
    value = IsTiny(text.substr(at, static_cast<std::size_t>(result.ptr - text.data()) - at))
                ? 0
                : std::numeric_limits<double>::infinity();
  return negative ? -value : value;
}

long long RoundToInteger(double value, long long low, long long high) {
  if (std::isnan(value)) return std::clamp(0LL, low, high);
  const double rounded = std::nearbyint(value);
  if (rounded <= static_cast<double>(low)) return low;
  if (rounded >= static_cast<double>(high)) return high;
  return static_cast<long long>(rounded);
}

void AppendFlt(std::string& out, double value) {
  if (!std::isfinite(value) || (value < 0 && value > -0.000001))
    out += '0';
  else if (value == std::trunc(value))
    AppendGeneral(out, value);
  else
    AppendPattern(out, value);
}

void AppendVec(std::string& out, const Vector3& value) {
  AppendFlt(out, value.X);
  out += ' ';
  AppendFlt(out, value.Y);
  out += ' ';
  AppendFlt(out, value.Z);
}

std::string FormatFlt(double value) {
  std::string out;
  AppendFlt(out, value);
  return out;
}

std::string FormatVec(const Vector3& value) {
  std::string out;
  AppendVec(out, value);
  return out;
}

std::string FormatGeneral(double value) {
  std::string out;
  AppendGeneral(out, value);
  return out;
}

} // namespace quarvel
