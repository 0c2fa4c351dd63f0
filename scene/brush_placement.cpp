#include "scene/brush_placement.h"

#include "math/number_text.h"
#include "math/rotation.h"

#include <array>
#include <cmath>
#include <initializer_list>

namespace quarvel {

namespace {

Matrix4 TranslationMatrix(const Vector3& by) {
  Matrix4 m = IdentityMatrix();
  m.At(0, 3) = by.X;
  m.At(1, 3) = by.Y;
  m.At(2, 3) = by.Z;
  return m;
}

/// On right-handed axes: a sheer from or to Y changes its sign with it.
Matrix4 SheerMatrix(const SheerRecord& sheer) {
  struct Axes {
    int From, To;
  };
  constexpr std::array<Axes, 7> axes{{{0, 0}, {0, 1}, {0, 2}, {1, 0}, {1, 2}, {2, 0}, {2, 1}}};
  Matrix4 m = IdentityMatrix();
  const Axes& pair = axes[static_cast<std::size_t>(sheer.Axis)];
  const bool involvesY = pair.From == 1 || pair.To == 1;
  if (pair.From != pair.To) m.At(pair.To, pair.From) = SnappedSheerRate(sheer.Rate) * (involvesY ? -1 : 1);
  return m;
}

bool Sheers(const SheerRecord& sheer) { return sheer.Axis != SheerAxis::None && SnappedSheerRate(sheer.Rate) != 0; }

/// The matrix that applies the given ones from the first to the last.
Matrix4 InOrder(std::initializer_list<Matrix4> steps) {
  Matrix4 product = IdentityMatrix();
  for (const Matrix4& step : steps)
    product = MultiplyMatrix(product, step);
  return product;
}

Matrix4 ScaleAndSheer(const Vector3& scale, const SheerRecord& sheer) {
  return InOrder({ScaleMatrix(scale.X, scale.Y, scale.Z), SheerMatrix(sheer)});
}

bool AllPositive(const Vector3& v) { return v.X > 0 && v.Y > 0 && v.Z > 0; }
int NegativeComponents(const Vector3& v) { return (v.X < 0) + (v.Y < 0) + (v.Z < 0); }

/// The remainder that a pan of whole texels leaves, with the pan's sign.
double PanWithin(double pan, int size) {
  return static_cast<double>(RoundToInteger(pan, -2147483648LL, 2147483647LL) % size);
}

} // namespace

double SnappedSheerRate(double rate) {
  const double size = std::fabs(rate);
  if (size <= 0.05) return 0;
  const double snapped = size <= 0.55 ? size - 0.05 : size <= 0.65 ? 0.5 : size - 0.15;
  return std::copysign(snapped, rate);
}

BrushPlacement PlaceBrush(const BrushRecord& brush, const SceneSpace& space) {
  const Vector3 one{1, 1, 1};
  const Matrix4 rotation = BrushRotationMatrix(brush.Rotation);
  const Matrix4 main = ScaleAndSheer(brush.MainScale, brush.MainSheer);
  const Matrix4 post = ScaleAndSheer(brush.PostScale, brush.PostSheer);
  const Vector3 product = MultiplyVector(brush.MainScale, brush.PostScale);
  // The Transform scales before it turns, so it can carry a scale only when none comes after a rotation; and viewers
  // handle negative scales badly. It cannot sheer.
  const bool transformScales = !Sheers(brush.MainSheer) && !Sheers(brush.PostSheer) && AllPositive(product) &&
                               (brush.PostScale == one || brush.Rotation == Rotator3());
  const Matrix4 folded =
      transformScales ? IdentityMatrix() : InOrder({main, rotation, post, TransposeMatrix(rotation)});

  const Matrix4 toPivot = InOrder({TranslationMatrix(ScaleVector(brush.PrePivot, -1)), ScaleMatrix(1, -1, 1)});
  const Matrix4 toScene = InOrder({space.ConversionMatrix(), ScaleMatrix(space.Scale(), space.Scale(), space.Scale())});
  const Vector3 location = ToRightHanded(brush.Location);

  BrushPlacement placement;
  placement.Translation = FormatVec(TransformPoint(toScene, location));
  placement.Rotation = space.RotationText(BrushRotator(brush.Rotation));
  const Vector3 scale = transformScales ? product : one;
  placement.Scale = FormatVec({scale.X, scale.Z, scale.Y});
  placement.VertexMatrix = InOrder({toPivot, folded, toScene});
  placement.WorldMatrix = InOrder({toPivot, main, rotation, post, TranslationMatrix(location), toScene});
  placement.Mirrored = (NegativeComponents(brush.MainScale) + NegativeComponents(brush.PostScale)) % 2 == 1;
  return placement;
}

TexturePlane MakeTexturePlane(const PolygonRecord& polygon, int width, int height) {
  TexturePlane plane;
  if (VectorLength(polygon.TextureU) == 0 || VectorLength(polygon.TextureV) == 0) return plane;
  if (width != 0) {
    plane.U = ScaleVector(polygon.TextureU, 1.0 / width);
    plane.OffsetU = PanWithin(polygon.PanU, width) / width - DotProduct(polygon.Origin, plane.U);
  }
  if (height != 0) {
    plane.V = ScaleVector(polygon.TextureV, -1.0 / height);
    plane.OffsetV = (height - PanWithin(polygon.PanV, height)) / height - DotProduct(polygon.Origin, plane.V);
  }
  return plane;
}

TexturePoint TextureCoordinateOf(const TexturePlane& plane, const Vector3& vertex) {
  return {DotProduct(vertex, plane.U) + plane.OffsetU, DotProduct(vertex, plane.V) + plane.OffsetV};
}

} // namespace quarvel
