#include "math/number_text.h"

#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace quarvel {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(NumberText, ReadsWhatATextBeginsWith) {
  const std::pair<const char*, double> cases[] = {
      {"+00128.000000", 128},
      {"-00000.500000,+1", -0.5},
      {"  \t12", 12},
      {"1.5e3)", 1500},
      {"2e", 2},
      {".25", 0.25},
      {"-.5", -0.5},
      {"7.", 7},
      {"+000-0.000000", 0},
      {"-1.#IND00", -1},
      {"-nan(ind)", 0},
      {"inf", 0},
      {"", 0},
      {"-", 0},
      {"+-5", 0},
      {"0x10", 0},
      {"1,5", 1},
      {"1e999", infinity},
      {"-1e999", -infinity},
      {"0.5e999", infinity},
      {"1e-999", 0},
      {"+262144.000000", 262144},
      {"\r\n5", 0},
      {"12abc", 12},
  };
  for (const auto& [text, value] : cases)
    EXPECT_EQ(ParseLeadingNumber(text), value) << text;
  EXPECT_EQ(ParseLeadingNumber("0." + std::string(400, '0') + "1"), 0);
  EXPECT_EQ(ParseLeadingNumber("1" + std::string(400, '0')), infinity);
}

TEST(NumberText, FormatsSceneNumbers) {
  const std::pair<double, const char*> cases[] = {
      {0, "0"},
      {-0.0, "0"},
      {2, "2"},
      {-128, "-128"},
      {0.5, "0.5"},
      {12.0625, "12.0625"},
      {-3.1415926, "-3.141593"},
      {1.23456789, "1.234568"},
      {-0.0000004, "0"},
      {-0.00000099, "0"},
      {-0.000001, "-0.000001"},
      {0.0000004, "0.0"},
      {0.0000006, "0.000001"},
      {0.9999999, "1.0"},
      {1000000, "1000000"},
      {123456789012345, "123456789012345"},
      {1e15, "1e+15"},
      {12345678.1234565, "12345678.123457"},
      {1e9 + 0.5, "1000000000.5"},
      {infinity, "0"},
      {-infinity, "0"},
      {std::nan(""), "0"},
  };
  for (const auto& [value, text] : cases)
    EXPECT_EQ(FormatFlt(value), text) << value;
  EXPECT_EQ(FormatVec({1, 0.5, -2}), "1 0.5 -2");
}

/// The pattern by way of the C library, which rounds every double exactly.
std::string SixDecimals(double value) {
  char text[400];
  std::string result(text, static_cast<std::size_t>(std::snprintf(text, sizeof text, "%.6f", value)));
  while (result.ends_with('0') && !result.ends_with(".0"))
    result.pop_back();
  return result;
}

TEST(NumberText, RoundsEveryNumberExactly) {
  std::mt19937_64 random(1);
  const auto check = [](double value) {
    if (value != std::trunc(value) && value > -1e15) {
      ASSERT_EQ(FormatFlt(value), SixDecimals(value));
    }
  };
  for (int i = 0; i < 50000; ++i) {
    const double size = std::pow(10.0, static_cast<double>(random() % 20) - 5);
    check(static_cast<double>(random()) / 1e19 * size + 0.000001);
    // Halves of a millionth and their neighbours.
    const double half = (static_cast<double>(random() % 2000000000) + 0.5) / 1e6;
    check(half);
    check(std::nextafter(half, 0));
    check(std::nextafter(half, infinity));
    check(-std::ldexp(static_cast<double>(random() % 100000000 + 3), -7));
  }
}

TEST(NumberText, FormatsPlainNumbers) {
  EXPECT_EQ(FormatGeneral(2), "2");
  EXPECT_EQ(FormatGeneral(0.25), "0.25");
  EXPECT_EQ(FormatGeneral(100000), "100000");
  EXPECT_EQ(FormatGeneral(-0.0), "0");
  EXPECT_EQ(FormatGeneral(infinity), "0");
}

TEST(NumberText, RoundsToWholeNumbersWithinBounds) {
  EXPECT_EQ(RoundToInteger(2.5, -10, 10), 2);
  EXPECT_EQ(RoundToInteger(3.5, -10, 10), 4);
  EXPECT_EQ(RoundToInteger(-2.5, -10, 10), -2);
  EXPECT_EQ(RoundToInteger(1e300, -10, 10), 10);
  EXPECT_EQ(RoundToInteger(std::nan(""), 1, 10), 1);
}

} // namespace
} // namespace quarvel
