#include "actors/movers.h"
#include "scene/brush_placement.h"
#include "tests/made_actors.h"

#include <cmath>
#include <gtest/gtest.h>
#include <sstream>

namespace quarvel {
namespace {

/// The corner of a brush under a Transform with this rotation and translation.
Vector3 Placed(const std::string& rotation, const std::string& translation, const Vector3& corner) {
  std::istringstream in(rotation + " " + translation);
  Vector3 axis, shift;
  double angle = 0;
  in >> axis.X >> axis.Y >> axis.Z >> angle >> shift.X >> shift.Y >> shift.Z;
  const Vector3 across = CrossProduct(axis, corner);
  const Vector3 turned =
      AddVector(AddVector(ScaleVector(corner, std::cos(angle)), ScaleVector(across, std::sin(angle))),
                ScaleVector(axis, DotProduct(axis, corner) * (1 - std::cos(angle))));
  return AddVector(turned, shift);
}

TEST(Movers, RestWhereTheirStartKeyPutsThem) {
  const std::string text =
      test::Actor("Mover Name=M", "    BasePos=(X=-10,Y=700,Z=30)\r\n    Location=(X=-5,Y=690,Z=42)\r\n    KeyNum=1\r\n"
                                  "    KeyPos(1)=(X=5,Y=-10,Z=12)\r\n    KeyRot(1)=(Pitch=8000,Yaw=-300,Roll=2000)\r\n"
                                  "    BaseRot=(Pitch=4288,Yaw=16684,Roll=100)\r\n"
                                  "    Rotation=(Pitch=12288,Yaw=-49152,Roll=67636)");
  const T3DLevel level(text);
  NumberCheck check;
  const BrushRecord mover = ReadBrush(level, level.Actors.at(0), check);
  Report findings;
  const MoverAnimation track = AnimationOf(mover, findings);
  for (const Finding& finding : findings.Findings())
    EXPECT_NE(finding.Code, FindingCode::JumpsAtStart);
  const SceneSpace space(0.02);
  const std::string positions = PositionValues(track, space), rotations = RotationValues(track, space);
  const BrushPlacement placement = PlaceBrush(mover, space);
  for (const Vector3& corner : {Vector3{100, -50, 20}, Vector3{-300, 8, 500}}) {
    const Vector3 point = TransformPoint(placement.VertexMatrix, corner);
    const Vector3 atRest = Placed(placement.Rotation, placement.Translation, point);
    const Vector3 atKey =
        Placed(rotations.substr(0, rotations.find(',')), positions.substr(0, positions.find(',')), point);
    EXPECT_LT(VectorLength(SubtractVector(atRest, atKey)), 1e-4);
    EXPECT_LT(VectorLength(SubtractVector(atRest, TransformPoint(placement.WorldMatrix, corner))), 1e-4);
  }
}

} // namespace
} // namespace quarvel
