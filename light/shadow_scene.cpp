#include "light/shadow_scene.h"

#include <algorithm>
#include <cstdint>
#include <embree3/rtcore.h>
#include <limits>
#include <stdexcept>
#include <vector>

namespace quarvel {

namespace {

// Unreal units. Rays end before their lamp, which may touch the surface that it hangs on.
constexpr double gapAtLamp = 0.5;
constexpr double farAway = 1e6;

constexpr unsigned castsShadow = 1, boundsSolid = 2;

unsigned MaskOf(const LitSurface& surface) {
  return (surface.BlocksLamps ? castsShadow : 0) | (surface.BoundsSolid ? boundsSolid : 0);
}

/// The triangles that lie behind one mask, and the surface of each.
struct TriangleMesh {
  std::vector<float> Points;
  std::vector<unsigned> Corners;
  std::vector<Vector3> Normals;
  std::vector<bool> BlockSun;

  void Add(const LitSurface& surface) {
    const auto first = static_cast<unsigned>(Points.size() / 3);
    for (const Vector3& point : surface.Points)
      for (const double value : {point.X, point.Y, point.Z})
        Points.push_back(static_cast<float>(value));
    for (unsigned i = 2; i < surface.Points.size(); ++i) {
      for (const unsigned corner : {0U, i - 1, i})
        Corners.push_back(first + corner);
      Normals.push_back(surface.Normal);
      BlockSun.push_back(surface.BlocksSun);
    }
  }
};

struct Device {
  // One thread is enough to build, and builds the same tree each time.
  Device() : Handle(rtcNewDevice("threads=1")) {
    if (!Handle) throw std::runtime_error("the ray library cannot be set up");
  }
  ~Device() { rtcReleaseDevice(Handle); }
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;
  RTCDevice Handle;
};

/// The surfaces with one bit of the mask, as a scene of the ray library.
class RayScene {
 public:
  RayScene(const Device& device, std::span<const LitSurface> surfaces, unsigned bit)
      : scene_(rtcNewScene(device.Handle)) {
    rtcSetSceneFlags(scene_, RTC_SCENE_FLAG_ROBUST);
    for (const LitSurface& surface : surfaces)
      if (MaskOf(surface) & bit) mesh_.Add(surface);
    if (!mesh_.Normals.empty()) Attach(device);
    rtcCommitScene(scene_);
    if (rtcGetDeviceError(device.Handle) != RTC_ERROR_NONE)
      throw std::runtime_error("the ray library cannot take the surfaces");
  }
  ~RayScene() { rtcReleaseScene(scene_); }
  RayScene(const RayScene&) = delete;
  RayScene& operator=(const RayScene&) = delete;

  RTCScene Handle() const { return scene_; }
  const Vector3& NormalOf(unsigned triangle) const { return mesh_.Normals[triangle]; }
  bool BlocksSun(unsigned triangle) const { return mesh_.BlockSun[triangle]; }

 private:
  void Attach(const Device& device) {
    RTCGeometry geometry = rtcNewGeometry(device.Handle, RTC_GEOMETRY_TYPE_TRIANGLE);
    void* points = rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, 3 * sizeof(float),
                                           mesh_.Points.size() / 3);
    void* corners = rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, 3 * sizeof(unsigned),
                                            mesh_.Normals.size());
    if (points && corners) {
      std::copy(mesh_.Points.begin(), mesh_.Points.end(), static_cast<float*>(points));
      std::copy(mesh_.Corners.begin(), mesh_.Corners.end(), static_cast<unsigned*>(corners));
    }
    rtcCommitGeometry(geometry);
    rtcAttachGeometry(scene_, geometry);
    rtcReleaseGeometry(geometry);
  }

  RTCScene scene_;
  TriangleMesh mesh_;
};

/// Where a ray towards a lamp ends, seen from its beginning.
Vector3 WayTo(const Lamp& lamp, const Vector3& from) {
  if (lamp.Shape == LampShape::Directional) return ScaleVector(lamp.Direction, -farAway);
  const Vector3 way = SubtractVector(lamp.Position, from);
  const double length = VectorLength(way);
  return length <= gapAtLamp ? Vector3{} : ScaleVector(way, (length - gapAtLamp) / length);
}

RTCRay RayAlong(const Vector3& from, const Vector3& way) {
  RTCRay ray{};
  ray.org_x = static_cast<float>(from.X);
  ray.org_y = static_cast<float>(from.Y);
  ray.org_z = static_cast<float>(from.Z);
  ray.dir_x = static_cast<float>(way.X);
  ray.dir_y = static_cast<float>(way.Y);
  ray.dir_z = static_cast<float>(way.Z);
  ray.tfar = 1;
  ray.mask = std::numeric_limits<unsigned>::max();
  return ray;
}

/// The triangle that a ray meets first, RTC_INVALID_GEOMETRY_ID when there is none.
unsigned FirstOnWay(const RayScene& scene, const Vector3& from, const Vector3& way) {
  RTCRayHit ray{};
  ray.ray = RayAlong(from, way);
  ray.hit.geomID = ray.hit.primID = RTC_INVALID_GEOMETRY_ID;
  RTCIntersectContext context;
  rtcInitIntersectContext(&context);
  rtcIntersect1(scene.Handle(), &context, &ray);
  return ray.hit.geomID == RTC_INVALID_GEOMETRY_ID ? RTC_INVALID_GEOMETRY_ID : ray.hit.primID;
}

/// Sunlight comes from the first backdrop on its way: what stands behind that is another place.
bool SunReaches(const RayScene& scene, const Vector3& from, const Vector3& way) {
  const unsigned first = FirstOnWay(scene, from, way);
  return first == RTC_INVALID_GEOMETRY_ID || !scene.BlocksSun(first);
}

bool IsFree(const RayScene& scene, const Vector3& from, const Vector3& way) {
  RTCRay ray = RayAlong(from, way);
  RTCIntersectContext context;
  rtcInitIntersectContext(&context);
  rtcOccluded1(scene.Handle(), &context, &ray);
  return ray.tfar >= 0; // a ray that hit something comes back with minus infinity
}

std::array<bool, 4> AreFree(const RayScene& scene, const std::array<Vector3, 4>& from,
                            const std::array<Vector3, 4>& ways) {
  RTCRay4 rays{};
  for (std::size_t i = 0; i < 4; ++i) {
    const RTCRay ray = RayAlong(from[i], ways[i]);
    rays.org_x[i] = ray.org_x;
    rays.org_y[i] = ray.org_y;
    rays.org_z[i] = ray.org_z;
    rays.dir_x[i] = ray.dir_x;
    rays.dir_y[i] = ray.dir_y;
    rays.dir_z[i] = ray.dir_z;
    rays.tfar[i] = ray.tfar;
    rays.mask[i] = ray.mask;
  }
  alignas(16) const int valid[4] = {-1, -1, -1, -1};
  RTCIntersectContext context;
  rtcInitIntersectContext(&context);
  context.flags = RTC_INTERSECT_CONTEXT_FLAG_COHERENT;
  rtcOccluded4(valid, scene.Handle(), &context, &rays);
  std::array<bool, 4> free{};
  for (std::size_t i = 0; i < 4; ++i)
    free[i] = rays.tfar[i] >= 0;
  return free;
}

} // namespace

struct ShadowScene::Rays {
  explicit Rays(std::span<const LitSurface> surfaces)
      : ForLamps(Library, surfaces, castsShadow), OfSolids(Library, surfaces, boundsSolid) {}

  Device Library;
  RayScene ForLamps, OfSolids;
};

ShadowScene::ShadowScene(std::span<const LitSurface> surfaces, SolidMatter matter)
    : rays_(std::make_unique<Rays>(surfaces)), matter_(std::move(matter)) {}
ShadowScene::~ShadowScene() = default;

bool ShadowScene::Sees(const Lamp& lamp, const Vector3& point, const Vector3& normal) const {
  const Vector3 from = Lifted(point, normal);
  const bool isSun = lamp.Shape == LampShape::Directional;
  return (isSun ? SunReaches : IsFree)(rays_->ForLamps, from, WayTo(lamp, from));
}

Vector3 ShadowScene::Light(const Lamp& lamp, const Vector3& point, const Vector3& normal) const {
  const Vector3 light = LightFrom(lamp, point, normal);
  return light == Vector3() || !Sees(lamp, point, normal) ? Vector3() : light;
}

unsigned ShadowScene::WhichSee(const Lamp& lamp, const std::array<Vector3, 4>& points, const Vector3& normal) const {
  std::array<Vector3, 4> from, ways;
  std::array<bool, 4> sees{};
  for (std::size_t i = 0; i < 4; ++i) {
    from[i] = Lifted(points[i], normal);
    ways[i] = WayTo(lamp, from[i]);
    if (lamp.Shape == LampShape::Directional) sees[i] = SunReaches(rays_->ForLamps, from[i], ways[i]);
  }
  if (lamp.Shape != LampShape::Directional) sees = AreFree(rays_->ForLamps, from, ways);
  unsigned mask = 0;
  for (std::size_t i = 0; i < 4; ++i)
    mask |= static_cast<unsigned>(sees[i]) << i;
  return mask;
}

bool ShadowScene::Connected(const Vector3& from, const Vector3& to, const Vector3& normal) const {
  return IsFree(rays_->ForLamps, Lifted(from, normal), SubtractVector(to, from));
}

std::array<bool, 4> ShadowScene::Connected(const Vector3& from, const std::array<Vector3, 4>& to,
                                           const Vector3& normal) const {
  std::array<Vector3, 4> starts, ways;
  starts.fill(Lifted(from, normal));
  for (std::size_t i = 0; i < 4; ++i)
    ways[i] = SubtractVector(to[i], from);
  return AreFree(rays_->ForLamps, starts, ways);
}

bool ShadowScene::InSolid(const Vector3& point, const Vector3& normal) const {
  if (matter_.Contains(Lifted(point, normal))) return true;
  const unsigned first = FirstOnWay(rays_->OfSolids, Lifted(point, normal), ScaleVector(normal, farAway));
  return first != RTC_INVALID_GEOMETRY_ID && DotProduct(rays_->OfSolids.NormalOf(first), normal) > 0;
}

} // namespace quarvel
