#include "packages/level_export.h"
#include "tests/packages/made_package.h"

#include <gtest/gtest.h>

namespace quarvel {
namespace {

using test::Blob;
using test::MadePackage;
using test::ObjectBytes;

std::string WithoutReturns(std::string text) {
  std::erase(text, '\r');
  return text;
}

TEST(ExportedLevel, IsWhatTheEditorWrites) {
  const Blob file = test::MadeLevel();
  const ExportedLevel level = ExportLevel(*ReadPackage(file, "Rooms").Value);
  EXPECT_EQ(level.Error, "");
  const auto polygon = [](const std::string& pan) {
    return R"(             Origin   -00008.000000,+00008.000000,+00000.000000
             Normal   +00000.000000,+00000.000000,+00001.000000
)" + pan + R"(             TextureU +00001.000000,+00000.000000,+00000.000000
             TextureV +00000.000000,-00000.500000,+00000.000000
             Vertex   -00008.000000,+00008.000000,+00000.000000
             Vertex   +00008.000000,+00008.000000,+00000.000000
             Vertex   +00008.000000,-00008.000000,+00000.000000
             Vertex   -00008.000000,-00008.000000,+00000.250000
          End Polygon
)";
  };
  const std::string pan = "             Pan      U=-1 V=";
  EXPECT_EQ(WithoutReturns(level.Text), R"(Begin Map
Begin Actor Class=LevelInfo Name=LevelInfo0
     Title="Two_rooms"
     Level=LevelInfo'MyLevel.LevelInfo0'
     Name="LevelInfo0"
End Actor
Begin Actor Class=Brush Name=Brush1
     CsgOper=CSG_Add
     MainScale=(Scale=(Y=-2.000000),SheerRate=0.500000,SheerAxis=SHEER_ZX)
     Region=(Zone=LevelInfo'MyLevel.LevelInfo0',iLeaf=-1,ZoneNumber=3)
     Location=(X=16.000000,Z=-1.500000)
     Rotation=(Yaw=-16384)
    Begin Brush Name=Model2
       Begin PolyList
          Begin Polygon Item=OUTSIDE Texture=Brick Flags=-2147483646 Link=3
)" + polygon(pan + "16\n") + R"(          Begin Polygon Item=OUTSIDE Texture=Moss Flags=-2147483646 Link=3
)" + polygon(pan + "0\n") + R"(          Begin Polygon Item=OUTSIDE Texture=Harbour.Brick Flags=-2147483646 Link=3
)" + polygon("") + R"(       End PolyList
    End Brush
     Brush=Model'MyLevel.Model2'
     PrePivot=(Y=8.000000)
     Name="Brush1"
End Actor
Begin Actor Class=Dispatcher Name=Dispatcher0
     OutEvents(0)="First"
     OutEvents(7)="Last"
     Wait=0.100000
     bHidden=False
     LightType=99
     Texture=None
     DistanceFogColor=(R=0,G=128,B=9)
     Edge=(X=1.000000,Y=2.000000,Z=3.000000,W=4.000000)
     Name="Dispatcher0"
End Actor
End Map
)");
  EXPECT_EQ(level.TextureNames,
            (std::map<std::string, std::string>{{"brick", "Castle.Walls.Brick"}, {"moss", "MyLevel.Moss"}}));
}

TEST(ExportedLevel, TellsWhatIsDamaged) {
  MadePackage made;
  const ObjectRef good = made.Export("Light", "Light0", ObjectBytes(made).Byte("LightHue", 3).None());
  const ObjectRef bad = made.Export("Light", "Light1", ObjectBytes(made).Byte("LightHue", 3));
  const ObjectRef model = made.Export("Model", "Model0", ObjectBytes(made).None().U32(1));
  const ObjectRef brush = made.Export("Brush", "Brush0", ObjectBytes(made).Object("Brush", model).None());
  const ObjectRef polys = made.Export("Polys", "Polys0", ObjectBytes(made).None().U32(9).U32(9));
  const ObjectRef open =
      made.Export("Model", "Model1", ObjectBytes(made).None().Add(Blob(46, 0)).U32(0).U32(0).Index(polys));
  const ObjectRef torn = made.Export("Brush", "Brush1", ObjectBytes(made).Object("Brush", open).None());
  ObjectBytes level(made);
  level.None().U32(6).U32(6).Index(bad).Index(good).Index(good).Index(500).Index(brush).Index(torn);
  made.Export("Level", "MyLevel", level);
  const Blob file = made.Build();
  const ExportedLevel exported = ExportLevel(*ReadPackage(file, "Rooms").Value);
  EXPECT_EQ(WithoutReturns(exported.Text),
            "Begin Map\nBegin Actor Class=Light Name=Light0\n     LightHue=3\n     Name=\"Light0\"\nEnd Actor\n"
            "Begin Actor Class=Brush Name=Brush0\n     Brush=Model'MyLevel.Model0'\n     Name=\"Brush0\"\nEnd Actor\n"
            "Begin Actor Class=Brush Name=Brush1\n    Begin Brush Name=Model1\n       Begin PolyList\n"
            "       End PolyList\n    End Brush\n     Brush=Model'MyLevel.Model1'\n     Name=\"Brush1\"\nEnd Actor\n"
            "End Map\n");
  std::vector<std::string> faults;
  for (const Finding& fault : exported.Faults)
    faults.push_back(fault.Actor + " " + fault.Reason);
  EXPECT_EQ(faults, (std::vector<std::string>{"Light1 could not be read: its properties are damaged",
                                              "object 500 is an actor of the level that is not in its file",
                                              "Brush0 has a damaged brush", "Brush1 has damaged polygons"}));
}

TEST(ExportedLevel, DoesNotGrowOutOfProportion) {
  MadePackage made;
  ObjectBytes polys(made);
  polys.None().U32(2000).U32(2000);
  for (int i = 0; i < 2000; ++i)
    polys.Index(3).Add(Blob(84, 1)).U32(0).Index(0).Index(0).Index(0).Index(0).Index(0).U32(0);
  const ObjectRef list = made.Export("Polys", "Polys0", polys);
  const ObjectRef model =
      made.Export("Model", "Model0", ObjectBytes(made).None().Add(Blob(46, 0)).U32(0).U32(0).Index(list));
  ObjectBytes level(made);
  level.None().U32(200).U32(0);
  for (int i = 0; i < 200; ++i)
    level.Index(made.Export("Brush", "Brush" + std::to_string(i), ObjectBytes(made).Object("Brush", model).None()));
  made.Export("Level", "MyLevel", level);
  const Blob file = made.Build();
  EXPECT_EQ(ExportLevel(*ReadPackage(file, "Rooms").Value).Error,
            "is damaged: its text would be out of proportion to it");
}

} // namespace
} // namespace quarvel
