#include "t3d/brush_record.h"
#include "tests/made_actors.h"

#include <gtest/gtest.h>

namespace quarvel {
namespace {

using test::Actor;

BrushRecord ReadOne(const std::string& text) {
  const T3DLevel level(text);
  NumberCheck check;
  BrushRecord brush = ReadBrush(level, level.Actors.at(0), check);
  // What the record holds of the text ends with it.
  for (PolygonRecord& polygon : brush.Polygons)
    polygon.Texture = {};
  return brush;
}

TEST(BrushRecord, ReadsPolygonsWithinTheirBounds) {
  const std::string text =
      Actor("Brush Name=B", " CsgOper=CSG_Add\r\n PolyFlags=8\r\n Begin Brush Name=M\r\n"
                            " Begin PolyList Num=3\r\n"
                            "  Begin Polygon Item=Origin Texture=Pack.Panel22 Flags=-1073741824 Link=0\r\n"
                            "   Origin   +00001.0,+00002.0,+00003.0\r\n"
                            "   Vertex   +00004.0,+00005.0,+00006.0\r\n"
                            "   Vertex   +00007.0,+00008.0,+000-0.0\r\n"
                            "  End Polygon\r\n"
                            "  Begin Polygon Texture=\"Quoted\" Flags=256\r\n"
                            "   Pan      U=-65 V=7\r\n"
                            "   TextureU +00001.0,+00000.0,+00000.0\r\n"
                            "  End Polygon\r\n"
                            "  Begin Polygon\r\n   Vertex 1,1,1\r\n"
                            "  Begin Polygon\r\n   Vertex 9,9,9\r\n  End Polygon\r\n"
                            " End PolyList\r\n End Brush\r\n PrePivot=(Y=4)\r\n");
  const T3DLevel level(text);
  NumberCheck check;
  const BrushRecord brush = ReadBrush(level, level.Actors.at(0), check);
  ASSERT_EQ(brush.Polygons.size(), 3U);
  const PolygonRecord& first = brush.Polygons[0];
  EXPECT_EQ(first.Texture, "Pack.Panel22");
  EXPECT_EQ(first.Flags, static_cast<std::uint32_t>(-1073741824) | 8U);
  EXPECT_EQ(first.Origin, (Vector3{1, 2, 3})) << "not the item of that name";
  EXPECT_EQ(first.PanU, 0) << "a texture's name is no Pan line, and the next polygon's line is not this one's";
  EXPECT_EQ(first.TextureU, Vector3());
  EXPECT_EQ(first.Vertices, (std::vector<Vector3>{{4, 5, 6}, {7, 8, 0}}));
  const PolygonRecord& second = brush.Polygons[1];
  EXPECT_EQ(second.Texture, "Quoted");
  EXPECT_EQ(second.PanU, -65);
  EXPECT_EQ(second.PanV, 7);
  EXPECT_EQ(second.Vertices, (std::vector<Vector3>{{0, 0, 0}})) << "one without vertices has one at the origin";
  EXPECT_EQ(brush.Polygons[2].Vertices, (std::vector<Vector3>{{9, 9, 9}}));
  EXPECT_EQ(brush.DamagedPolygons, 1);
  EXPECT_EQ(brush.PrePivot, (Vector3{0, 4, 0})) << "behind the polygons";
  EXPECT_TRUE(IsAdditive(brush));
}

TEST(BrushRecord, ReadsScalesWithTheirDefaults) {
  const BrushRecord brush = ReadOne(
      Actor("Brush Name=B",
            " MainScale=(Scale=(Z=-1.000000),SheerAxis=SHEER_ZX)\r\n PostScale=(SheerRate=-0.5,SheerAxis=SHEER_YZ)\r\n"
            " TempScale=(Scale=(X=9))\r\n OldLocation=(X=5)\r\n Location=(X=1)\r\n"));
  EXPECT_EQ(brush.MainScale, (Vector3{1, 1, -1}));
  EXPECT_EQ(brush.PostScale, (Vector3{1, 1, 1}));
  EXPECT_EQ(brush.PostSheer.Axis, SheerAxis::YZ);
  EXPECT_EQ(brush.PostSheer.Rate, -0.5);
  EXPECT_EQ(brush.MainSheer.Axis, SheerAxis::ZX);
  EXPECT_EQ(brush.MainSheer.Rate, 0);
  EXPECT_EQ(brush.Location, (Vector3{1, 0, 0}));
}

TEST(BrushRecord, ReadsMoversOfEachClass) {
  const std::string body = " RotationRate=(Yaw=1)\r\n RotateRate=(Yaw=2)\r\n Location=(X=5)\r\n BasePos=(X=3)\r\n"
                           " NumKeys=3\r\n KeyPos(1)=(Z=10)\r\n KeyPos(2)=(Z=20)\r\n KeyPos(3)=(Z=30)\r\n"
                           " KeyRot(2)=(Yaw=7)\r\n InitialState=\"TriggerToggle\"\r\n";
  const BrushRecord mover = ReadOne(Actor("Mover Name=M", body));
  EXPECT_EQ(mover.CsgOper, "CsgOper=CSG_Add");
  EXPECT_EQ(mover.InitialState, "TriggerToggle");
  EXPECT_EQ(mover.Physics, "PHYS_MovingBrush");
  EXPECT_EQ(mover.RotationRate.Yaw, 1);
  EXPECT_EQ(mover.KeyPos[0], (Vector3{2, 0, 0}));
  EXPECT_EQ(mover.KeyPos[2], (Vector3{0, 0, 20}));
  EXPECT_EQ(mover.KeyPos[3], Vector3()) << "beyond NumKeys";
  EXPECT_EQ(mover.KeyRot[2].Yaw, 7);
  EXPECT_TRUE(mover.IsMover && !mover.IsLoopMover);

  const BrushRecord rotating = ReadOne(Actor("Game.RotatingMover Name=M", body));
  EXPECT_EQ(rotating.RotationRate.Yaw, 2);
  EXPECT_EQ(rotating.Physics, "PHYS_Rotating");
  EXPECT_TRUE(ReadOne(Actor("LoopMover Name=M", "")).IsLoopMover);

  const BrushRecord one = ReadOne(Actor("Mover Name=M", " NumKeys=1\r\n KeyPos(1)=(Z=1)\r\n"));
  EXPECT_EQ(one.KeyPos[1], Vector3());
  const BrushRecord most = ReadOne(Actor("Mover Name=M", " NumKeys=150\r\n KeyPos(149)=(Z=1)\r\n"));
  EXPECT_FALSE(most.TooManyKeys);
  EXPECT_EQ(most.KeyPos[149].Z, 1);
  EXPECT_TRUE(ReadOne(Actor("Mover Name=M", " NumKeys=151\r\n KeyPos(1)=(Z=1)\r\n")).TooManyKeys);
}

TEST(BrushRecord, ReadsABarePolygonList) {
  const std::string text = "Begin PolyList\n Begin Polygon\n  Vertex 1,2,3\n End Polygon\n Begin Polygon\n  Vertex 4";
  NumberCheck check;
  TextCursor cursor = 1;
  BrushRecord brush;
  ASSERT_TRUE(ReadPolyList(text, cursor, brush, check));
  EXPECT_EQ(brush.Polygons.size(), 1U);
  EXPECT_EQ(brush.DamagedPolygons, 1);
  EXPECT_TRUE(IsAdditive(brush));
  EXPECT_FALSE(ReadPolyList(text, cursor, brush, check));
}

} // namespace
} // namespace quarvel
