#include "base/file_identity.h"

#include <cerrno>
#include <system_error>
#ifndef _WIN32
#include <sys/stat.h>
#endif

namespace quarvel {

namespace fs = std::filesystem;

std::string FileIdentity(const fs::path& path) {
#ifndef _WIN32
  struct stat status {};
  if (stat(path.c_str(), &status) == 0)
    return std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino); // no path has this form: it is absolute
#endif
  return ResolvedPath(path).string();
}

fs::path ResolvedPath(const fs::path& path) {
  std::error_code error;
  const fs::path absolute = fs::absolute(path, error);
  fs::path resolved = fs::weakly_canonical(absolute, error);
  return error ? absolute.lexically_normal() : resolved;
}

std::string SystemReason() { return std::generic_category().message(errno); }

} // namespace quarvel
