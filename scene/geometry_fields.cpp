#include "scene/geometry_fields.h"

#include "math/number_text.h"

#include <charconv>

namespace quarvel {

namespace {

template <typename Face>
std::string ListOfFaces(const std::vector<Face>& faces) {
  std::string list;
  for (const Face& face : faces) {
    if (!list.empty()) list += ", ";
    for (const int index : face) {
      char digits[16];
      list.append(digits, std::to_chars(digits, digits + sizeof digits, index).ptr).append(", ");
    }
    list += "-1";
  }
  return list;
}

} // namespace

std::string PointList(const std::vector<Vector3>& points) {
  std::string list;
  list.reserve(points.size() * 24);
  for (const Vector3& point : points) {
    if (!list.empty()) list += ',';
    AppendVec(list, point);
  }
  return list;
}

std::string TexturePointList(const std::vector<TexturePoint>& points) {
  std::string list;
  list.reserve(points.size() * 18);
  for (const TexturePoint& point : points) {
    if (!list.empty()) list += ',';
    AppendFlt(list, point.U);
    list += ' ';
    AppendFlt(list, point.V);
  }
  return list;
}

std::string IndexList(const std::vector<std::vector<int>>& faces) { return ListOfFaces(faces); }
std::string IndexList(const std::vector<Triangle>& faces) { return ListOfFaces(faces); }

} // namespace quarvel
