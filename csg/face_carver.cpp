#include "csg/face_carver.h"

#include <algorithm>
#include <limits>

namespace quarvel {

namespace {

/// With more carvers than this to go, the one in the middle comes first.
constexpr std::size_t manyCarvers = 16;
/// Of more parts than this each with each is too much.
constexpr std::size_t mostJoined = 12;

} // namespace

const std::vector<PieceStore::Piece>& FaceCarver::Carve(const FlatFace& face, int owner) {
  store_.Clear();
  parts_.clear();
  near_.clear();
  kept_.clear();
  normal_ = face.Plane.Normal;
  owner_ = owner;
  const Candidate whole{store_.Add(face.Points), NoCarver, owner};
  const Bounds3 box = WidenBox(BoxOf(whole.Piece), PlaneTolerance);
  boxes_.Search([&](const Bounds3& other) { return BoxesMeet(box, other); },
                [&](std::uint32_t number) {
                  if (static_cast<int>(number) != owner) near_.push_back(static_cast<int>(number));
                });
  std::sort(near_.begin(), near_.end());
  if (Decide(whole, 0, near_.size()) == Fate::Whole) kept_.push_back(whole.Piece);
  return kept_;
}

/// A structural face is decided once a later brush contains one of its sides: either both sides are alike, or the
/// other brush has a face in the same place.
bool FaceCarver::IsLost(const Candidate& piece) const {
  return owner_ != NoCarver && std::max(piece.Front, piece.Back) > owner_;
}

bool FaceCarver::IsSeen(const Candidate& piece) const {
  if (owner_ == NoCarver) return IsEmpty(piece.Front) && IsEmpty(piece.Back);
  return IsEmpty(piece.Front) != IsEmpty(piece.Back);
}

/// Whether one of the listed carvers can make a piece seen that would not be.
bool FaceCarver::CanBecomeSeen(const Candidate& piece, std::size_t from) const {
  const bool wanted = owner_ == NoCarver || !IsEmpty(owner_);
  return std::any_of(near_.begin() + static_cast<std::ptrdiff_t>(from), near_.end(), [&](int carver) {
    return IsEmpty(carver) == wanted && (owner_ == NoCarver || (carver > piece.Front && carver < owner_));
  });
}

Bounds3 FaceCarver::BoxOf(Piece piece) const {
  Bounds3 box = InitBounds();
  for (const Vector3& point : store_.Points(piece))
    GrowBounds(box, point);
  return box;
}

/// Appends those of a part of the list that can still change what is known of the piece; returns where they begin.
std::size_t FaceCarver::ListThose(const Candidate& piece, std::size_t from, std::size_t to) {
  const Bounds3 box = WidenBox(BoxOf(piece.Piece), PlaneTolerance);
  const int known = std::min(piece.Front, piece.Back);
  const std::size_t start = near_.size();
  for (std::size_t i = from; i < to; ++i)
    if (const int carver = near_[i]; carver > known && BoxesMeet(box, carvers_[static_cast<std::size_t>(carver)].Box))
      near_.push_back(carver);
  return start;
}

/// Puts the one of many carvers that is nearest to the middle of the piece at the list's end, from which they are
/// taken: its parts then have fewer left to meet. Of few the last comes first, since it decides.
void FaceCarver::BringMiddleToEnd(const Bounds3& box, std::size_t from) {
  if (near_.size() - from <= manyCarvers) return;
  const Vector3 middle = BoundsCenter(box);
  std::size_t best = from;
  double bestDistance = std::numeric_limits<double>::max();
  for (std::size_t i = from; i < near_.size(); ++i) {
    const Vector3 apart = SubtractVector(BoundsCenter(carvers_[static_cast<std::size_t>(near_[i])].Box), middle);
    if (const double distance = DotProduct(apart, apart); distance < bestDistance) {
      bestDistance = distance;
      best = i;
    }
  }
  std::rotate(near_.begin() + static_cast<std::ptrdiff_t>(best), near_.begin() + static_cast<std::ptrdiff_t>(best) + 1,
              near_.end());
}

FaceCarver::Fate FaceCarver::Decide(Candidate piece, std::size_t from, std::size_t to) {
  const std::size_t start = ListThose(piece, from, to);
  if (!IsSeen(piece) && !CanBecomeSeen(piece, start)) {
    near_.resize(start);
    return Fate::Gone;
  }
  BringMiddleToEnd(BoxOf(piece.Piece), start);
  while (near_.size() > start) {
    const int carver = near_.back();
    near_.pop_back();
    const unsigned asked = (piece.Front < carver ? FrontSide : NoSide) | (piece.Back < carver ? BackSide : NoSide);
    if (asked == NoSide) continue;
    const std::size_t firstPart = parts_.size();
    carvers_[static_cast<std::size_t>(carver)].Tree.Clip(store_, piece.Piece, normal_, asked, parts_);
    if (parts_.size() > firstPart + 1) {
      const Fate fate = DecideParts(piece, carver, firstPart, start);
      near_.resize(start);
      return fate;
    }
    const unsigned contained = parts_.back().Contained;
    parts_.pop_back();
    if (contained & FrontSide) piece.Front = carver;
    if (contained & BackSide) piece.Back = carver;
    if (IsLost(piece)) break;
  }
  near_.resize(start);
  return !IsLost(piece) && IsSeen(piece) ? Fate::Whole : Fate::Gone;
}

/// Joins what a cut has parted without need.
void FaceCarver::JoinKept(std::size_t from) {
  for (std::size_t i = from; i + 1 < kept_.size() && kept_.size() - from <= mostJoined; ++i)
    for (std::size_t k = i + 1; k < kept_.size(); ++k) {
      const std::vector<Vector3> joined = JoinAlongEdge(store_.Points(kept_[i]), store_.Points(kept_[k]), normal_);
      if (joined.empty()) continue;
      kept_[i] = store_.Add(joined);
      kept_.erase(kept_.begin() + static_cast<std::ptrdiff_t>(k));
      k = i;
    }
}

FaceCarver::Fate FaceCarver::DecideParts(const Candidate& piece, int carver, std::size_t firstPart, std::size_t from) {
  const std::size_t firstKept = kept_.size(), end = parts_.size(), to = near_.size();
  bool all = true;
  for (std::size_t i = firstPart; i < end; ++i) {
    const ClippedPiece part = parts_[i];
    const Candidate next{part.Piece, part.Contained & FrontSide ? carver : piece.Front,
                         part.Contained & BackSide ? carver : piece.Back};
    const Fate fate = IsLost(next) ? Fate::Gone : Decide(next, from, to);
    if (fate == Fate::Whole) kept_.push_back(part.Piece);
    all = all && fate == Fate::Whole;
  }
  parts_.resize(firstPart);
  if (all) {
    kept_.resize(firstKept);
    return Fate::Whole;
  }
  JoinKept(firstKept);
  return kept_.size() > firstKept ? Fate::Cut : Fate::Gone;
}

} // namespace quarvel
