#include "base/output_file.h"
#include "tests/temporary_folder.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace quarvel {
namespace {

namespace fs = std::filesystem;

std::size_t FilesIn(const fs::path& folder) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST(OutputFile, LeavesWhatWasThereUntilItIsComplete) {
  const TemporaryFolder folder;
  const fs::path path = folder.Path() / "scene.wrl";
  folder.Write("scene.wrl", "older");
  fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read);
  {
    OutputFile file(path);
    EXPECT_TRUE(file.Append("new"));
    EXPECT_EQ(folder.Read("scene.wrl"), "older");
  }
  EXPECT_EQ(folder.Read("scene.wrl"), "older") << "given up";
  EXPECT_EQ(FilesIn(folder.Path()), 1U);
  OutputFile file(path);
  EXPECT_TRUE(file.Append("ne") && file.Append("w") && file.Complete());
  EXPECT_EQ(folder.Read("scene.wrl"), "new");
  EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read);
  EXPECT_EQ(FilesIn(folder.Path()), 1U);
}

TEST(OutputFile, FollowsOnlyTheLinksThatTheUserNamed) {
  const TemporaryFolder folder;
  folder.Write("mine", "mine");
  fs::create_symlink("mine", folder.Path() / "list.txt");
  fs::create_symlink("list.txt", folder.Path() / "typed.wrl");
  fs::create_symlink("new", folder.Path() / "dangling.wrl");
  EXPECT_EQ(WriteWholeFile(folder.Path() / "typed.wrl", "followed", AtLink::Follow), "");
  EXPECT_EQ(folder.Read("mine"), "followed");
  EXPECT_TRUE(fs::is_symlink(folder.Path() / "typed.wrl"));
  EXPECT_EQ(WriteWholeFile(folder.Path() / "dangling.wrl", "x", AtLink::Follow), "");
  EXPECT_EQ(folder.Read("new"), "x");
  EXPECT_EQ(WriteWholeFile(folder.Path() / "list.txt", "level text"), "");
  EXPECT_EQ(folder.Read("mine"), "followed");
  EXPECT_FALSE(fs::is_symlink(folder.Path() / "list.txt"));
}

TEST(OutputFile, TellsTheSystemsReasonAndLeavesNothing) {
  const TemporaryFolder folder;
  fs::create_directories(folder.Path() / "taken.x3d");
  EXPECT_EQ(WriteWholeFile(folder.Path() / "taken.x3d", "x"), "Is a directory");
  EXPECT_EQ(WhyNotWritable(folder.Path() / "none/scene.wrl"), "No such file or directory");
  EXPECT_EQ(WhyNotWritable(folder.Path() / "fine.wrl"), "");
  if (geteuid() != 0) {
    folder.Write("locked.wrl", "older");
    fs::permissions(folder.Path() / "locked.wrl", fs::perms::owner_read);
    EXPECT_EQ(WriteWholeFile(folder.Path() / "locked.wrl", "x"), "Permission denied");
    EXPECT_EQ(folder.Read("locked.wrl"), "older");
    fs::remove(folder.Path() / "locked.wrl");
  }
  EXPECT_EQ(FilesIn(folder.Path()), 1U);
  if (fs::exists("/dev/full")) {
    EXPECT_EQ(WriteWholeFile("/dev/full", "x"), "No space left on device");
  }

  folder.Write("scene.wrl", "older");
  rlimit usual{};
  getrlimit(RLIMIT_FSIZE, &usual);
  const rlimit small{4, usual.rlim_max};
  std::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &small);
  const std::string why = WriteWholeFile(folder.Path() / "scene.wrl", "newer and longer");
  setrlimit(RLIMIT_FSIZE, &usual);
  EXPECT_EQ(why, "File too large");
  EXPECT_EQ(folder.Read("scene.wrl"), "older");
}

TEST(OutputFile, WritesToAPipeAsItGoes) {
  const TemporaryFolder folder;
  const fs::path path = folder.Path() / "pipe.wrl";
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  std::string read;
  std::thread reader([&] {
    std::ifstream in(path);
    read.assign(std::istreambuf_iterator<char>(in), {});
  });
  EXPECT_EQ(WhyNotWritable(path), "");
  OutputFile file(path);
  EXPECT_TRUE(file.Append("a") && file.Append("b") && file.Complete());
  reader.join();
  EXPECT_EQ(read, "ab") << "in one stream";
  EXPECT_TRUE(fs::is_fifo(path));
}

} // namespace
} // namespace quarvel
