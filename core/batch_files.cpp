#include "core/batch_files.h"

#include "base/file_identity.h"

namespace quarvel {

namespace fs = std::filesystem;

void BatchFiles::AddInput(const fs::path& file) { inputs_.insert(FileIdentity(file)); }

bool BatchFiles::IsInput(const fs::path& file) const { return inputs_.contains(FileIdentity(file)); }

fs::path BatchFiles::Claim(const fs::path& output, const fs::path& input, Kind kind) {
  const auto [at, isNew] = owners_.try_emplace(ResolvedPath(output), Owner{input, kind});
  if (isNew || at->second.Input == input) return {};
  if (kind == Kind::SkyScene || at->second.Of == Kind::SkyScene) return at->second.Input;
  at->second = {input, kind};
  return {};
}

} // namespace quarvel
