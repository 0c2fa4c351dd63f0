#include "t3d/brush_record.h"

#include "math/number_text.h"

#include <algorithm>
#include <array>

namespace quarvel {

namespace {

constexpr std::string_view endPolygon = "End Polygon";
constexpr std::size_t maxVertices = 32767;

/// The value word of a key of the polygon, without the quotes that may surround it.
std::string_view PolygonWord(std::string_view text, std::string_view key, TextCursor from, TextCursor to) {
  const TextCursor at = FindText(text, key, from, to);
  if (at == 0) return {};
  const std::size_t start = static_cast<std::size_t>(at) - 1 + key.size();
  std::string_view word =
      text.substr(start, std::min(text.find_first_of(" \t\r\n", start), static_cast<std::size_t>(to) - 1) - start);
  if (word.size() >= 2 && word.front() == '"' && word.back() == '"') word = word.substr(1, word.size() - 2);
  return word;
}

std::uint32_t ParseFlags(std::string_view word) {
  return static_cast<std::uint32_t>(RoundToInteger(ParseLeadingNumber(word), -2147483648LL, 4294967295LL));
}

void ReadPan(std::string_view text, TextCursor from, TextCursor to, PolygonRecord& polygon) {
  TextCursor at = FindText(text, "Pan", from, to);
  if (at == 0) return;
  const std::string_view line = ReadLineAt(text, at);
  const auto number = [&](std::string_view label) {
    const std::size_t start = line.find(label);
    return start == line.npos ? 0 : ParseLeadingNumber(line.substr(start + label.size()));
  };
  polygon.PanU = number("U=");
  polygon.PanV = number("V=");
}

void ReadVertices(std::string_view text, TextCursor cursor, TextCursor to, std::vector<Vector3>& vertices) {
  constexpr std::string_view key = "Vertex";
  vertices.reserve(8);
  for (TextCursor at = FindText(text, key, cursor, to); at != 0; at = FindText(text, key, cursor, to)) {
    cursor = at + static_cast<TextCursor>(key.size());
    const Vector3 vertex = ReadTripleOfLine(text, cursor, to);
    if (vertices.size() < maxVertices) vertices.push_back(vertex);
  }
  if (vertices.empty()) vertices.emplace_back();
}

/// Reads the polygon between its "Begin Polygon" and "End Polygon". The first line holds names that may look like the
/// keys of the lines below it.
void ReadPolygonBody(std::string_view text, TextCursor from, TextCursor to, PolygonRecord& polygon,
                     NumberCheck& check) {
  polygon.Texture = PolygonWord(text, "Texture=", from, to);
  polygon.Flags = ParseFlags(PolygonWord(text, "Flags=", from, to));
  TextCursor lines = from;
  ReadLineAt(text, lines);
  const auto triple = [&](std::string_view key) {
    TextCursor cursor = lines;
    return ReadNumberTriple(text, key, cursor, to, check);
  };
  polygon.Origin = triple("Origin");
  polygon.Normal = triple("Normal");
  ReadPan(text, lines, to, polygon);
  polygon.TextureU = triple("TextureU");
  polygon.TextureV = triple("TextureV");
  ReadVertices(text, lines, to, polygon.Vertices);
}

/// Reads the next polygon before `to`. A polygon that the next one interrupts is counted as damaged and passed over.
bool ReadPolygon(std::string_view text, TextCursor& cursor, TextCursor to, BrushRecord& brush, NumberCheck& check) {
  constexpr std::string_view beginPolygon = "Begin Polygon";
  TextCursor begin = FindText(text, beginPolygon, cursor, to);
  while (begin != 0) {
    const TextCursor next = FindText(text, beginPolygon, begin + 1, to);
    const TextCursor end = FindText(text, endPolygon, begin, next == 0 ? to : next);
    if (end != 0) {
      PolygonRecord& polygon = brush.Polygons.emplace_back();
      ReadPolygonBody(text, begin, end, polygon, check);
      polygon.Flags |= brush.PolyFlags;
      cursor = end + static_cast<TextCursor>(endPolygon.size());
      return true;
    }
    ++brush.DamagedPolygons;
    begin = next;
  }
  return false;
}

SheerRecord ReadSheer(const TextBlock& block, std::string_view key) {
  constexpr std::array<std::string_view, 7> axes{"None", "XY", "XZ", "YX", "YZ", "ZX", "ZY"};
  SheerRecord sheer;
  TextCursor at = block.Find(key);
  if (at == 0) return sheer;
  const std::string_view line = ReadLineAt(block.Text(), at);
  const auto valueOf = [&](std::string_view name) {
    const std::size_t found = line.find(name);
    return found == line.npos ? std::string_view() : line.substr(found + name.size());
  };
  sheer.Rate = ParseLeadingNumber(valueOf("SheerRate="));
  const std::string_view axis = valueOf("SheerAxis=SHEER_");
  for (std::size_t i = 1; i < axes.size(); ++i)
    if (SameText(axis.substr(0, axes[i].size()), axes[i])) sheer.Axis = static_cast<SheerAxis>(i);
  return sheer;
}

void ReadPlacement(const TextBlock& block, BrushRecord& brush) {
  GetKeyValue(block, "CsgOper=", brush.CsgOper);
  brush.Header = ReadActorHeader(block);
  brush.Location = GetVectorOr0(block, " Location=");
  brush.PrePivot = GetVectorOr0(block, "PrePivot=");
  brush.Rotation = GetRotator(block, " Rotation=");
  brush.PostScale = GetVectorOr1(block, "PostScale=(Scale=");
  brush.MainScale = GetVectorOr1(block, "MainScale=(Scale=");
  brush.PostSheer = ReadSheer(block, "PostScale=");
  brush.MainSheer = ReadSheer(block, "MainScale=");
  GetKeyValue(block, "InitialState=", brush.InitialState);
  GetKeyValue(block, "Group=", brush.Group);
  GetKeyValue(block, "bDynamicLight=", brush.bDynamicLight);
  GetKeyValue(block, "url=", brush.Url);
  brush.PolyFlags = ParseFlags(GetValueWord(block, "PolyFlags="));
}

void ReadMotion(const TextBlock& block, BrushRecord& brush) {
  brush.RotationRate = GetRotator(block, "RotationRate=");
  if (brush.Header.Class == "RotatingMover" && block.Find("RotateRate=") != 0)
    brush.RotationRate = GetRotator(block, "RotateRate=");
  brush.DesiredRotation = GetRotator(block, "DesiredRotation=");
  GetKeyValue(block, "Mass=", brush.Mass);
  GetKeyValue(block, "Physics=", brush.Physics);
  GetKeyValue(block, "bBounce=", brush.bBounce);
  GetKeyValue(block, "bRotateToDesired=", brush.bRotateToDesired);
  GetKeyValue(block, "NumKeys=", brush.NumKeys);
  brush.NumKeysText = GetStringValue(block, "NumKeys=");
  brush.NumKeysCopy = brush.NumKeys;
  GetKeyValue(block, "MoveTime=", brush.MoveTime);
  GetKeyValue(block, "bUseTriggered=", brush.bUseTriggered);
  GetKeyValue(block, "AttachTag=", brush.AttachTag);
  GetKeyValue(block, "KeyNum=", brush.KeyNum);
  GetKeyValue(block, "StayOpenTime=", brush.StayOpenTime);
  GetKeyValue(block, "DelayTime=", brush.DelayTime);
  GetKeyValue(block, "MoverGlideType=", brush.MoverGlideType);
  GetKeyValue(block, "BumpEvent=", brush.BumpEvent);
  GetKeyValue(block, "StaticMesh=", brush.StaticMesh);
  brush.DrawScale3D = GetVectorOr1(block, "DrawScale3D=");
  GetKeyValue(block, "DrawScale=", brush.DrawScale);
  brush.BasePos = GetVectorOr0(block, "BasePos=");
  brush.BaseRot = GetRotator(block, "BaseRot=");
}

void CountUnusedKeys(const TextBlock& block, BrushRecord& brush) {
  for (int i = std::max<int>(brush.NumKeys, 1); i < MaxKeys; ++i) {
    const std::string index = "(" + std::to_string(i) + ")=";
    brush.UnusedKeys += (block.Find("KeyPos" + index) != 0) + (block.Find("KeyRot" + index) != 0);
  }
}

void ReadKeys(const TextBlock& block, BrushRecord& brush) {
  brush.HasKeyPos = IsKeyAt(block, "KeyPos");
  brush.HasKeyRot = IsKeyAt(block, "KeyRot");
  brush.KeyPos[0] = SubtractVector(brush.Location, brush.BasePos);
  brush.TooManyKeys = brush.NumKeys > MaxKeys;
  if (brush.TooManyKeys) return;
  for (int i = 1; i < brush.NumKeys; ++i) {
    const std::string index = "(" + std::to_string(i) + ")=";
    const auto key = static_cast<std::size_t>(i);
    if (brush.HasKeyPos) brush.KeyPos[key] = GetVectorOr0(block, "KeyPos" + index);
    if (brush.HasKeyRot) brush.KeyRot[key] = GetRotator(block, "KeyRot" + index);
  }
  if (brush.HasKeyPos || brush.HasKeyRot) CountUnusedKeys(block, brush);
}

void ReadPolygons(std::string_view text, TextCursor from, TextCursor to, BrushRecord& brush, NumberCheck& check) {
  brush.Polygons.reserve(8);
  while (ReadPolygon(text, from, to, brush, check)) {
  }
}

} // namespace

BrushRecord ReadBrush(const T3DLevel& level, const ActorBlock& actor, NumberCheck& check) {
  BrushRecord brush;
  const TextBlock block(level.Text, actor.From, actor.To);
  ReadPlacement(block, brush);
  if (IsOfFamily(actor.Class, ActorFamily::Mover)) {
    if (actor.Class == "RotatingMover") brush.Physics = "PHYS_Rotating";
    brush.CsgOper = "CsgOper=CSG_Add";
    brush.IsMover = true;
    brush.IsLoopMover = actor.Class == "LoopMover";
    ReadMotion(block, brush);
    ReadKeys(block, brush);
  }
  ReadSoundBlock(block, brush.Sound);
  check.Actor = brush.Header.Name;
  ReadPolygons(level.Text, actor.From, actor.To, brush, check);
  return brush;
}

bool ReadPolyList(std::string_view text, TextCursor& cursor, BrushRecord& brush, NumberCheck& check) {
  const auto size = static_cast<TextCursor>(text.size() + 1);
  const TextCursor begin = FindText(text, "Begin PolyList", cursor, size);
  if (begin == 0) return false;
  brush = BrushRecord();
  brush.CsgOper = "CsgOper=CSG_Add";
  const TextCursor end = FindText(text, "End PolyList", begin, size);
  ReadPolygons(text, begin, end == 0 ? size : end, brush, check);
  cursor = end == 0 ? size : end + 12;
  return true;
}

bool IsAdditive(const BrushRecord& brush) { return brush.CsgOper == "CSG_Add" || brush.CsgOper == "CsgOper=CSG_Add"; }

} // namespace quarvel
