#include "bench/made_level.h"

#include "bench/t3d_text.h"

#include <array>
#include <cmath>
#include <numbers>
#include <random>

namespace quarvel::bench {

namespace {

constexpr std::array<const char*, 8> textures{"brick", "cobble", "crate", "Harbour.Walls.plaster",
                                              "sand",  "grass",  "metal", "Harbour.Walls.quay"};

class LevelWriter : public T3DText {
 public:
  void Brush(int number) {
    const bool moves = number % 40 == 7;
    const char* className = moves ? "Mover" : "Brush";
    Line("Begin Actor Class=%s Name=%s%d", className, className, number);
    if (moves)
      Line("     KeyPos(1)=(Z=%f)", Between(64, 512));
    else
      Line("     CsgOper=%s", number % 5 == 0 ? "CSG_Subtract" : "CSG_Add");
    if (number % 6 == 0)
      Line("     MainScale=(Scale=(X=%f,Z=%f),SheerAxis=SHEER_ZX)", Between(0.5, 3), Between(0.5, 3));
    else
      Line("     MainScale=(SheerAxis=SHEER_ZX)");
    Line("     PostScale=(SheerAxis=SHEER_ZX)");
    Common(moves ? ("Door" + std::to_string(number)).c_str() : "Brush");
    if (number % 4 == 0) Line("     Rotation=(Pitch=%d,Yaw=%d)", 512 * (number % 7), 4096 * (number % 16));
    Line("    Begin Brush Name=Model%d", number + 1);
    Line("       Begin PolyList");
    Prism(number % 8 < 2 ? 5 + number % 8 : 4, number);
    Line("       End PolyList");
    Line("    End Brush");
    Line("     Brush=Model'MyLevel.Model%d'", number + 1);
    Line("     PrePivot=(X=%f,Y=%f)", Between(-64, 64), Between(-64, 64));
    Line("     Name=\"%s%d\"", className, number);
    Line("End Actor");
  }

  void OtherActor(int number) {
    constexpr std::array<const char*, 7> classes{"Light",        "Light",    "Light",  "PlayerStart",
                                                 "AmbientSound", "PathNode", "Trigger"};
    const char* className = classes[static_cast<std::size_t>(number) % classes.size()];
    Line("Begin Actor Class=%s Name=%s%d", className, className, number);
    Line("     LightBrightness=%d", number % 256);
    Line("     LightHue=%d", number % 251);
    Line("     SoundRadius=%d", number % 128);
    Line("     Event=Door%d", 40 * (number / 20) + 7);
    Common(className);
    Line("     Name=\"%s%d\"", className, number);
    Line("End Actor");
  }

 private:
  // The standard fixes what the engine yields, but not what its distributions make of it.
  double Between(double low, double high) { return low + (high - low) * (random_() % 4096) / 4096; }

  void Common(const char* tag) {
    Line("     Level=LevelInfo'MyLevel.LevelInfo0'");
    Line("     Tag=\"%s\"", tag);
    Line("     Region=(Zone=LevelInfo'MyLevel.LevelInfo0',iLeaf=%d,ZoneNumber=1)", static_cast<int>(random_() % 999));
    Line("     Location=(X=%f,Y=%f,Z=%f)", Between(-30000, 30000), Between(-30000, 30000), Between(-4000, 4000));
  }

  void Triple(const char* key, double x, double y, double z) {
    Line("             %-8s %+013.6f,%+013.6f,%+013.6f", key, x, y, z);
  }

  /// A polygon's head; its vertices follow.
  void BeginPolygon(int number, int link, double nx, double ny, double nz) {
    const char* texture = textures[static_cast<std::size_t>(number + link) % textures.size()];
    Line("          Begin Polygon Item=OUTSIDE Texture=%s Flags=%d Link=%d", texture, number % 9 == 0 ? 256 : 0, link);
    Triple("Origin", Between(-128, 128), Between(-128, 128), Between(-128, 128));
    Triple("Normal", nx, ny, nz);
    if (link % 4 == 0) Line("             Pan      U=%d V=%d", link * 16, -number % 64);
    Triple("TextureU", -ny, nx, nz);
    Triple("TextureV", 0, nz, -std::fabs(nx) - std::fabs(ny));
  }

  /// Upright, with `sides` walls between a floor and a ceiling.
  void Prism(int sides, int number) {
    const double radius = Between(32, 512), top = Between(32, 512);
    const auto x = [&](int corner) { return radius * std::cos(2 * std::numbers::pi * corner / sides); };
    const auto y = [&](int corner) { return radius * std::sin(2 * std::numbers::pi * corner / sides); };
    for (int side = 0; side < sides; ++side) {
      const double middle = 2 * std::numbers::pi * (side + 0.5) / sides;
      BeginPolygon(number, side, std::cos(middle), std::sin(middle), 0);
      Triple("Vertex", x(side), y(side), -top);
      Triple("Vertex", x(side + 1), y(side + 1), -top);
      Triple("Vertex", x(side + 1), y(side + 1), top);
      Triple("Vertex", x(side), y(side), top);
      Line("          End Polygon");
    }
    for (const int up : {1, -1}) {
      BeginPolygon(number, sides + (up + 1) / 2, 0, 0, up);
      for (int corner = 0; corner < sides; ++corner)
        Triple("Vertex", x(up * corner), y(up * corner), up * top);
      Line("          End Polygon");
    }
  }

  std::minstd_rand random_;
};

} // namespace

std::string MakeLevel(int brushes) {
  LevelWriter level;
  for (int number = 0; number < brushes; ++number) {
    level.Brush(number);
    if (number % 2 == 1) level.OtherActor(number / 2);
  }
  return level.Text + "End Map\r\n";
}

} // namespace quarvel::bench
