#include "bench/made_crowd.h"

#include <array>
#include <fstream>
#include <string>
#include <string_view>

namespace quarvel::bench {

namespace {

namespace fs = std::filesystem;

/// A level of one brush and what is added to it.
class CrowdLevel {
 public:
  void Actor(const std::string& header, const std::string& keys) {
    text_ +=
        "Begin Actor Class=" + header + "\r\n    PhysicsVolume=DefaultPhysicsVolume'a.b'\r\n" + keys + "End Actor\r\n";
  }

  void Brush(const std::string& name, const std::string& texture, std::string_view flags) {
    Actor("Brush Name=" + name, "    CsgOper=CSG_Add\r\n    Begin Brush\r\n" + Face(texture, flags) +
                                    Face(texture, flags) + "    End Brush\r\n");
  }

  void WriteTo(const fs::path& folder) {
    Brush("Wall", "brick", "0");
    std::ofstream(folder / "level.t3d", std::ios::binary) << "Begin Map\r\n" << text_ << "End Map\r\n";
  }

 private:
  static std::string Face(const std::string& texture, std::string_view flags) {
    return "    Begin Polygon Texture=" + texture + " Flags=" + std::string(flags) +
           "\r\n      Vertex 0,0,0\r\n      Vertex 64,0,0\r\n      Vertex 0,64,64\r\n    End Polygon\r\n";
  }

  std::string text_;
};

/// A bitmap of 16 by 16 grey pixels, which differ by their seed (Windows bitmap, 8 bits with a palette).
std::string MakeBitmap(int seed) {
  std::string bytes("BM\0\0\0\0\0\0\0\0\x36\4\0\0\x28\0\0\0\x10\0\0\0\x10\0\0\0\1\0\x08\0", 30);
  bytes.resize(54);
  for (int i = 0; i < 256; ++i)
    bytes.append(3, static_cast<char>(i)).append(1, '\0');
  for (int i = 0; i < 256; ++i)
    bytes += static_cast<char>(i < 4 ? seed >> (8 * i) : i);
  return bytes;
}

void WriteBitmap(const fs::path& file, int seed) {
  fs::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << MakeBitmap(seed);
}

void MakeTriggers(const fs::path& folder, int count) {
  CrowdLevel level;
  for (int i = 0; i < count; ++i) {
    level.Actor("Trigger Name=Trigger" + std::to_string(i), "    Event=all\r\n");
    level.Actor("TriggerLight Name=Lamp" + std::to_string(i), "    Tag=all\r\n");
  }
  level.WriteTo(folder);
}

void MakeTeleporters(const fs::path& folder, int count) {
  CrowdLevel level;
  for (int i = 0; i < count; ++i)
    level.Actor("Teleporter Name=Tele" + std::to_string(i),
                "    Tag=t" + std::to_string(i) + "\r\n    URL=\"t" + std::to_string((i + 1) % count) + "\"\r\n");
  level.WriteTo(folder);
}

void AddPoints(CrowdLevel& level, int count) {
  for (int i = 0; i < count; ++i)
    level.Actor("InterpolationPoint Name=Point" + std::to_string(i),
                "    Tag=p" + std::to_string(i) + "\r\n    Position=1\r\n");
}

void MakePoints(const fs::path& folder, int count) {
  CrowdLevel level;
  AddPoints(level, count);
  level.WriteTo(folder);
}

void MakeActions(const fs::path& folder, int count) {
  CrowdLevel level;
  AddPoints(level, count);
  std::string actions;
  for (int i = 0; i < count; ++i) {
    const std::string number = std::to_string(i), action = "ActionMoveCamera" + number;
    actions += "    Begin Object Class=ActionMoveCamera Name=" + action +
               "\r\n        IntPoint=InterpolationPoint'myLevel.Point" + number +
               "'\r\n    End Object\r\n    Actions(" + number + ")=ActionMoveCamera'myLevel." + action + "'\r\n";
  }
  level.Actor("SceneManager Name=Scene", actions);
  level.WriteTo(folder);
}

void MakeSameNames(const fs::path& folder, int count) {
  CrowdLevel level;
  for (int i = 0; i < count; ++i) {
    const std::string group = "G" + std::to_string(i);
    WriteBitmap(folder / "lib/Pack" / group / "wall.bmp", i);
    level.Brush("Brush" + group, "Pack." + group + ".wall", "2");
  }
  level.WriteTo(folder);
}

void MakeLongNames(const fs::path& folder, int count) {
  CrowdLevel level;
  for (int i = 0; i < count; ++i) {
    const std::string name = std::string(20000, 'N') + std::to_string(i);
    level.Brush(name, name, "0");
    level.Actor("PlayerStart Name=" + name, "    Tag=" + name + "\r\n");
  }
  level.WriteTo(folder);
}

void MakeTerrains(const fs::path& folder, int count) {
  CrowdLevel level;
  WriteBitmap(folder / "lib/hills.bmp", 0);
  for (int i = 0; i < count; ++i)
    level.Actor("TerrainInfo Name=Hills" + std::to_string(i), "    TerrainMap=Texture'Pack.hills'\r\n");
  level.WriteTo(folder);
}

} // namespace

std::span<const CrowdKind> CrowdKinds() {
  static constexpr std::array<CrowdKind, 7> kinds{{{"triggers and lamps of one event", 16000, MakeTriggers},
                                                   {"teleporters", 16000, MakeTeleporters},
                                                   {"interpolation points, each with a tag", 8000, MakePoints},
                                                   {"actions of one scene manager", 8000, MakeActions},
                                                   {"textures of one name", 500, MakeSameNames},
                                                   {"names of 20,000 characters", 100, MakeLongNames},
                                                   {"terrains of one height map", 4000, MakeTerrains}}};
  return kinds;
}

} // namespace quarvel::bench
