#include "resources/program_data.h"
#include "resources/resource_files.h"
#include "tests/temporary_folder.h"

#include <fstream>
#include <gtest/gtest.h>

namespace quarvel {
namespace {

namespace fs = std::filesystem;

void MakeModel(const fs::path& folder) {
  fs::create_directories(folder);
  std::ofstream(folder / "TheVisTeleporter.wrl") << "#VRML V2.0 utf8\n";
}

TEST(ProgramData, IsFoundBesideTheProgramInstalledOrInTheSourceTree) {
  const TemporaryFolder folder;
  const fs::path root = folder.Path();
  const fs::path program = root / "build" / "dev" / "bin" / "quarvel";
  EXPECT_TRUE(FindProgramData(program).empty());
  EXPECT_TRUE(FindProgramData({}).empty());
  for (const fs::path& place : {root / "resources" / "data", root / "build" / "dev" / "share" / "quarvel",
                                root / "build" / "dev" / "bin" / "data"}) {
    MakeModel(place);
    EXPECT_EQ(FindProgramData(program), place);
  }
}

TEST(ProgramData, StandsBehindTheLibraries) {
  const TemporaryFolder folder;
  MakeModel(folder.Path() / "own");
  fs::create_directories(folder.Path() / "level");
  ConversionSettings settings;
  settings.MeshDest.DestDoCopy = false;
  Report report;
  ResourceFiles files(settings, folder.Path() / "level" / "a.t3d", folder.Path() / "out" / "a.wrl", report,
                      folder.Path() / "own");
  EXPECT_TRUE(files.FindAndCopyFile("TheVisTeleporter.wrl", ResourceKind::Mesh).Found);
  EXPECT_TRUE(fs::exists(folder.Path() / "out" / "TheVisTeleporter.wrl")) << "nobody else has it";
  EXPECT_FALSE(files.FindAndCopyFile("TheVisTeleporter.x3d", ResourceKind::Mesh).Found);
  EXPECT_EQ(files.Missing()[ResourceKind::Mesh], std::vector<std::string>{"TheVisTeleporter.x3d"});
}

} // namespace
} // namespace quarvel
