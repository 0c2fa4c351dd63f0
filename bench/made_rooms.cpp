#include "bench/made_rooms.h"

#include "bench/t3d_text.h"

#include <array>
#include <cmath>
#include <numbers>
#include <random>

namespace quarvel::bench {

namespace {

/// An upright prism around a middle; four sides without a turn make a box along the axes.
CsgBrush MakePrism(CsgOperation operation, const Vector3& low, const Vector3& high, int sides = 4, double turn = 0) {
  const Vector3 middle = MidPoint(low, high), half = ScaleVector(SubtractVector(high, low), 0.5);
  const double reach = 1 / std::cos(std::numbers::pi / sides);
  const auto corner = [&](int i, double z) {
    const double angle = turn + 2 * std::numbers::pi * (i - 0.5) / sides;
    return Vector3{middle.X + half.X * reach * std::cos(angle), middle.Y + half.Y * reach * std::sin(angle), z};
  };
  CsgBrush brush{operation, CsgKind::Structural, {}};
  CsgPolygon bottom, top;
  for (int i = 0; i < sides; ++i) {
    const Vector3 a = corner(i, low.Z), b = corner(i + 1, low.Z), c = corner(i + 1, high.Z), d = corner(i, high.Z);
    brush.Polygons.push_back({{a, b, c, d}, 0});
    top.Points.push_back(d);
    bottom.Points.insert(bottom.Points.begin(), a);
  }
  brush.Polygons.push_back(bottom);
  brush.Polygons.push_back(top);
  return brush;
}

class RoomBuilder {
 public:
  explicit RoomBuilder(std::size_t brushes)
      : wanted_(brushes), side_(static_cast<int>(std::ceil(std::sqrt(brushes / 11.0)))) {}

  std::vector<CsgBrush> Build() {
    for (int number = 0; brushes_.size() < wanted_; ++number)
      AddRoom(number % side_, number / side_);
    brushes_.resize(wanted_);
    return std::move(brushes_);
  }

 private:
  static constexpr double pitch = 1024, width = 704, height = 320;

  // The standard fixes what the engine yields, but not what its distributions make of it.
  double Between(double low, double high) { return low + (high - low) * (random_() % 4096) / 4096; }

  void Put(CsgOperation operation, const Vector3& low, const Vector3& size, int sides = 4, double turn = 0) {
    brushes_.push_back(MakePrism(operation, low, AddVector(low, size), sides, turn));
  }

  void AddRoom(int column, int row) {
    const auto at = [&](double x, double y, double z) { return Vector3{column * pitch + x, row * pitch + y, z}; };
    Put(CsgOperation::Subtract, at(0, 0, 0), {width, width, height});
    Put(CsgOperation::Subtract, at(width, 256, 0), {pitch - width, 128, 128});
    Put(CsgOperation::Subtract, at(256, width - 32, 32), {128, pitch - width + 64, 128}, 6);
    Put(CsgOperation::Subtract, at(Between(64, 256), Between(400, 500), -96), {128, 128, 96});
    for (const double x : {128.0, 512.0})
      for (const double y : {96.0, 544.0})
        Put(CsgOperation::Add, at(x, y, 0), {48, 48, height}, x == y + 32 ? 4 : 8, Between(0, 1));
    for (int step = 0; step < 3; ++step)
      Put(CsgOperation::Add, at(320 + 48 * step, 300, 0), {48, 160, 32.0 + 32 * step});
  }

  std::size_t wanted_;
  int side_;
  std::vector<CsgBrush> brushes_;
  std::minstd_rand random_;
};

class TextWriter : public T3DText {
 public:
  void Triple(const char* key, const Vector3& v) {
    Line("             %-8s %+013.6f,%+013.6f,%+013.6f", key, v.X, v.Y, v.Z);
  }
};

void WritePolygon(TextWriter& text, const CsgPolygon& polygon, int number) {
  constexpr std::array<const char*, 6> textures{"brick", "cobble", "crate", "sand", "grass", "metal"};
  const Vector3 normal = PlaneOfPolygon(polygon.Points).Normal;
  const Vector3 along = NormalizeVector(SubtractVector(polygon.Points[1], polygon.Points[0]));
  text.Line("          Begin Polygon Item=OUTSIDE Texture=%s Link=%d", textures[static_cast<std::size_t>(number) % 6],
            number);
  text.Triple("Origin", polygon.Points[0]);
  text.Triple("Normal", normal);
  text.Triple("TextureU", along);
  text.Triple("TextureV", CrossProduct(normal, along));
  for (const Vector3& point : polygon.Points)
    text.Triple("Vertex", point);
  text.Line("          End Polygon");
}

} // namespace

std::vector<CsgBrush> MakeRooms(int brushes) { return RoomBuilder(static_cast<std::size_t>(brushes)).Build(); }

std::string MakeRoomsLevel(int brushes) {
  TextWriter text;
  int number = 0;
  for (const CsgBrush& brush : MakeRooms(brushes)) {
    text.Line("Begin Actor Class=Brush Name=Brush%d", number);
    text.Line("     CsgOper=%s", brush.Operation == CsgOperation::Add ? "CSG_Add" : "CSG_Subtract");
    text.Line("     MainScale=(SheerAxis=SHEER_ZX)");
    text.Line("     PostScale=(SheerAxis=SHEER_ZX)");
    text.Line("     Level=LevelInfo'MyLevel.LevelInfo0'");
    text.Line("     Tag=\"Brush\"");
    text.Line("    Begin Brush Name=Model%d", number + 1);
    text.Line("       Begin PolyList");
    for (std::size_t i = 0; i < brush.Polygons.size(); ++i)
      WritePolygon(text, brush.Polygons[i], number + static_cast<int>(i));
    text.Line("       End PolyList");
    text.Line("    End Brush");
    text.Line("     Brush=Model'MyLevel.Model%d'", number + 1);
    text.Line("     Name=\"Brush%d\"", number++);
    text.Line("End Actor");
  }
  return text.Text + "End Map\r\n";
}

} // namespace quarvel::bench
