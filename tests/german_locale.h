#pragma once

#include "tests/temporary_folder.h"

#include <clocale>
#include <cstdlib>
#include <locale>
#include <string>

namespace quarvel {

/// Everything is German as long as this lives, where numbers have a comma. A system without that locale gets it made
/// for the test, if it has what that takes.
class GermanLocale {
 public:
  GermanLocale() {
    if (!Set() && Make()) Set();
  }
  ~GermanLocale() {
    std::locale::global(std::locale::classic());
    unsetenv("LOCPATH");
  }
  GermanLocale(const GermanLocale&) = delete;
  GermanLocale& operator=(const GermanLocale&) = delete;

  bool IsSet() const { return *std::localeconv()->decimal_point == ','; }

 private:
  static bool Set() {
    try {
      std::locale::global(std::locale("de_DE.UTF-8"));
      return true;
    } catch (const std::runtime_error&) {
      return false;
    }
  }

  bool Make() {
    const std::string folder = folder_.Path().string();
    setenv("LOCPATH", folder.c_str(), 1);
    return std::system(("localedef -i de_DE -f UTF-8 '" + folder + "/de_DE.UTF-8' >/dev/null 2>&1").c_str()) == 0;
  }

  TemporaryFolder folder_;
};

} // namespace quarvel
