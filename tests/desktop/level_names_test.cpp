#include "app/desktop/level_names.h"
#include "app/desktop/qt_text.h"
#include "core/batch.h"
#include "tests/temporary_folder.h"

#include <gtest/gtest.h>

namespace quarvel {
namespace {

/// The levels that an input stands for, as a run takes it.
std::vector<std::string> LevelsOf(const QString& input, const TemporaryFolder& folder) {
  std::vector<std::string> levels;
  for (const ConversionJob& job : ListJobs({ToText(input)}, "", {}))
    levels.push_back(job.Refusal.empty() ? std::filesystem::relative(job.InFile, folder.Path()).string() : job.Refusal);
  return levels;
}

TEST(LevelNames, WhatIsDroppedIsWhatIsConverted) {
  const TemporaryFolder folder;
  for (const char* name : {"a.t3d", "x/b.T3D", "x/y/c.t3d", "x/notes.txt", "p,q.t3d", "game/d.unr", "both/e.unr",
                           "both/f.t3d", "both/f.unr"})
    folder.Write(name, "");
  const auto dropped = [&](std::initializer_list<const char*> names, QString* problem = nullptr) {
    QStringList paths;
    for (const char* name : names)
      paths.append(ToQString(folder.Path() / name));
    return LevelsOf(InputFor(paths, problem), folder);
  };
  using Levels = std::vector<std::string>;
  EXPECT_EQ(dropped({"a.t3d"}), Levels{"a.t3d"});
  EXPECT_EQ(dropped({"p,q.t3d"}), Levels{"p,q.t3d"});
  EXPECT_EQ(dropped({"x"}), (Levels{"x/b.T3D", "x/y/c.t3d"}));
  EXPECT_EQ(dropped({"x/b.T3D", "x/y/c.t3d", "x/notes.txt"}), (Levels{"x/b.T3D", "x/y/c.t3d"}));
  EXPECT_EQ(dropped({"a.t3d", "x"}), (Levels{"a.t3d", "x/b.T3D", "x/y/c.t3d"}));
  EXPECT_EQ(dropped({"a.t3d", "x/notes.txt"}), Levels{"a.t3d"});
  EXPECT_EQ(dropped({"game"}), Levels{"game/d.unr"});
  EXPECT_EQ(dropped({"both"}), (Levels{"both/e.unr", "both/f.t3d"})) << "the text wins";
  QString problem;
  EXPECT_EQ(dropped({"a.t3d", "p,q.t3d", "x/b.T3D"}, &problem), (Levels{"a.t3d", "x/b.T3D"}));
  EXPECT_TRUE(problem.contains(QLatin1String("p,q.t3d")));
}

TEST(LevelNames, TheOutputGoesBesideTheInput) {
  EXPECT_EQ(OutputFor(QStringLiteral("/maps.d/a.b.t3d")), QStringLiteral("/maps.d/a.b.wrl"));
  EXPECT_EQ(OutputFor(QStringLiteral("/maps.d/a")), QStringLiteral("/maps.d/a.wrl"));
  EXPECT_EQ(OutputFor(QStringLiteral("/maps/*.t3d")), QString());
  EXPECT_EQ(OutputFor(QStringLiteral("/maps,a.t3d,b.t3d")), QString());
}

} // namespace
} // namespace quarvel
