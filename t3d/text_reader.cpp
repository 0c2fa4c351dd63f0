#include "t3d/text_reader.h"

#include "math/number_text.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>

namespace quarvel {

namespace {

constexpr std::size_t pieceSize = 500000;

bool IsLineBreak(char c) { return c == '\r' || c == '\n'; }
bool IsSeparator(char c) { return c == ' ' || c == '\t' || IsLineBreak(c); }

/// Lines are short: a plain loop takes half the time of find_first_of.
std::size_t FindLineBreak(std::string_view text, std::size_t from) {
  while (from < text.size() && !IsLineBreak(text[from]))
    ++from;
  return from;
}

std::size_t Offset(TextCursor cursor) { return cursor < 1 ? 0 : static_cast<std::size_t>(cursor) - 1; }
TextCursor Cursor(std::size_t offset) { return static_cast<TextCursor>(offset) + 1; }

/// The line of the key, from the key on; empty when the key is not there or starts at the bound itself.
std::string_view LineOfKey(const TextBlock& block, std::string_view key) {
  TextCursor at = block.Find(key);
  if (at == 0 || at >= block.To()) return {};
  if (IsLineBreak(block.Text()[Offset(at)])) ++at; // what the blank that begins the key stands for
  return ReadLineAt(block.Text(), at);
}

/// What closes the nested block that begins here, if its keys are its own; "" for other blocks.
std::string_view ClosingOf(std::string_view block) {
  const auto begins = [&](std::string_view word) {
    return block.starts_with(word) && (block.size() == word.size() || IsSeparator(block[word.size()]));
  };
  return begins("Begin Brush") ? "End Brush" : begins("Begin Object") ? "End Object" : "";
}

/// The number in the ten characters behind a label.
bool ReadComponent(std::string_view line, std::string_view label, double& target) {
  const std::size_t at = line.find(label);
  if (at == line.npos) return false;
  target = ParseLeadingNumber(line.substr(at + label.size(), 10));
  return true;
}

/// The text between the first opening at or after `from` and the closing that follows. A closing that overlaps the
/// opening ends it before anything is cut.
std::optional<std::string_view> Cut(std::string_view text, std::size_t from, std::string_view opening,
                                    std::string_view closing) {
  const std::size_t at = text.find(opening, from);
  const std::size_t end = at == text.npos ? at : text.find(closing, at);
  if (end == text.npos || end < at + opening.size()) return std::nullopt;
  return text.substr(at + opening.size(), end - at - opening.size());
}

} // namespace

std::optional<std::string> ReadWholeFile(const std::filesystem::path& path, RunInterface& user) {
  std::error_code error;
  const auto size = std::filesystem::file_size(path, error);
  if (error || size >= static_cast<std::uintmax_t>(std::numeric_limits<TextCursor>::max())) return std::nullopt;
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  std::string text(static_cast<std::size_t>(size), '\0');
  for (std::size_t at = 0; at < text.size(); at += pieceSize) {
    const std::size_t piece = std::min(pieceSize, text.size() - at);
    file.read(text.data() + at, static_cast<std::streamsize>(piece));
    if (static_cast<std::size_t>(file.gcount()) != piece) return std::nullopt;
    user.ProcessEvents();
    if (user.StopRequested()) {
      text.resize(at + piece);
      break;
    }
  }
  return text;
}

TextCursor FindText(std::string_view text, std::string_view what, TextCursor from, TextCursor to) {
  if (to < 1 || what.empty()) return 0;
  const std::size_t end = std::min(text.size(), Offset(to) + what.size());
  const std::size_t at = text.substr(0, end).find(what, Offset(from));
  return at == text.npos ? 0 : Cursor(at);
}

TextBlock::TextBlock(std::string_view text, TextCursor from, TextCursor to)
    : text_(text), from_(std::max(from, 1)), to_(std::min(to, Cursor(text.size()))) {
  TextCursor at = from_;
  while (at != 0 && at < to_) {
    const TextCursor nested = FindText(text_, "Begin ", at, to_);
    IndexEqualsSigns(at, nested == 0 ? to_ : nested);
    if (nested == 0) return;
    const std::string_view closing = ClosingOf(text_.substr(Offset(nested)));
    at = closing.empty() ? nested + 6 : FindText(text_, closing, nested, to_);
    if (closing.empty()) IndexEqualsSigns(nested, at);
  }
}

void TextBlock::IndexEqualsSigns(TextCursor from, TextCursor to) {
  const std::string_view part = text_.substr(0, std::min(text_.size(), Offset(to) + 1));
  for (std::size_t at = part.find('=', Offset(from)); at != part.npos; at = part.find('=', at + 1))
    equalsSigns_.push_back(Cursor(at));
}

TextCursor TextBlock::Find(std::string_view key) const {
  if (key.empty() || key.back() != '=') return FindText(text_, key, from_, to_);
  const bool leadingBlank = key.front() == ' ';
  const std::string_view rest = leadingBlank ? key.substr(1) : key;
  for (const TextCursor sign : equalsSigns_) {
    const TextCursor start = sign - static_cast<TextCursor>(key.size()) + 1;
    if (start < from_ || start > to_) continue;
    const std::size_t at = Offset(start);
    if (leadingBlank && !IsSeparator(text_[at])) continue;
    if (text_.substr(at + key.size() - rest.size(), rest.size()) == rest) return start;
  }
  return 0;
}

ActorHeader ReadActorHeader(const TextBlock& block) {
  ActorHeader header;
  GetKeyValue(block, "Class=", header.Class);
  header.Class.erase(0, header.Class.rfind('.') + 1);
  header.Tag = GetStringValue(block, " Tag=");
  header.Name = GetStringValue(block, "Name=");
  header.Event = GetStringValue(block, "Event=");
  header.Region = GetStringValue(block, "Region=");
  header.IsSkyZone = header.Region.find("SkyZoneInfo") != std::string::npos;
  return header;
}

bool IsKeyAt(const TextBlock& block, std::string_view key) {
  const TextCursor at = block.Find(key);
  if (at <= 1) return at == 1;
  const char before = block.Text()[Offset(at) - 1];
  return before == ',' || IsSeparator(before) || key.front() == ' ';
}

std::string GetValueWord(const TextBlock& block, std::string_view key) {
  if (!IsKeyAt(block, key)) return {};
  TextCursor cursor = block.Find(key) + static_cast<TextCursor>(key.size());
  // A key with nothing behind it is empty: the next line is not its value, nor is what follows the block.
  const std::size_t value = block.Text().find_first_not_of(" \t", Offset(cursor));
  if (value >= Offset(block.To()) || IsLineBreak(block.Text()[value])) return {};
  std::string_view word = NextWord(block.Text(), cursor);
  while (word.starts_with(' '))
    word.remove_prefix(1);
  while (word.ends_with(' '))
    word.remove_suffix(1);
  while (!word.empty() && IsLineBreak(word.back()))
    word.remove_suffix(1);
  return std::string(word);
}

std::string GetStringValue(const TextBlock& block, std::string_view key) {
  const TextCursor at = block.Find(key);
  if (at == 0 || at >= block.To()) return {};
  const std::size_t value = Offset(at) + key.size();
  const bool quoted = value < block.Text().size() && block.Text()[value] == '"';
  return quoted ? GetQuotedValue(block, key) : GetValueWord(block, key);
}

std::string GetQuotedValue(const TextBlock& block, std::string_view key) {
  const TextCursor at = block.Find(key);
  if (at == 0 || at >= block.To()) return {};
  const std::string_view behind = block.Text().substr(Offset(at) + key.size());
  if (!behind.starts_with('"')) return {};
  const std::size_t bound = Offset(block.To()) - std::min(Offset(block.To()), Offset(at) + key.size() + 1);
  return std::string(behind.substr(1, std::min(bound, behind.find('"', 1) - 1)));
}

double GetKeyOrZero(const TextBlock& block, std::string_view key) {
  return IsKeyAt(block, key) ? ParseLeadingNumber(GetStringValue(block, key)) : 0;
}

bool GetKeyValue(const TextBlock& block, std::string_view key, std::string& target) {
  if (!IsKeyAt(block, key)) return false;
  target = GetStringValue(block, key);
  return true;
}

bool GetKeyValue(const TextBlock& block, std::string_view key, bool& target) {
  if (!IsKeyAt(block, key)) return false;
  target = GetStringValue(block, key) != "False";
  return true;
}

bool GetKeyValue(const TextBlock& block, std::string_view key, double& target) {
  if (!IsKeyAt(block, key)) return false;
  target = GetKeyOrZero(block, key);
  return true;
}

bool GetKeyValue(const TextBlock& block, std::string_view key, std::int16_t& target) {
  double number = 0;
  if (!GetKeyValue(block, key, number)) return false;
  target = static_cast<std::int16_t>(RoundToInteger(number, -32768, 32767));
  return true;
}

Vector3 GetVector(const TextBlock& block, std::string_view key, double fallback) {
  Vector3 value{fallback, fallback, fallback};
  const std::string_view line = LineOfKey(block, key);
  ReadComponent(line, "X=", value.X);
  ReadComponent(line, "Y=", value.Y);
  ReadComponent(line, "Z=", value.Z);
  return value;
}

Vector3 GetVectorOr0(const TextBlock& block, std::string_view key) { return GetVector(block, key, 0); }
Vector3 GetVectorOr1(const TextBlock& block, std::string_view key) { return GetVector(block, key, 1); }

Rotator3 GetRotator(const TextBlock& block, std::string_view key) {
  Rotator3 value;
  const std::string_view line = LineOfKey(block, key);
  ReadComponent(line, "Pitch=", value.Pitch);
  ReadComponent(line, "Yaw=", value.Yaw);
  ReadComponent(line, "Roll=", value.Roll);
  return value;
}

bool GetColor(const TextBlock& block, std::string_view key, ColorRGB& target) {
  const std::string_view line = LineOfKey(block, key);
  bool inRange = true;
  const auto read = [&](std::string_view label, unsigned char& component) {
    double number = 0;
    if (!ReadComponent(line, label, number)) return;
    component = static_cast<unsigned char>(RoundToInteger(number, 0, 255));
    inRange = inRange && std::nearbyint(number) >= 0 && std::nearbyint(number) <= 255;
  };
  read("R=", target.R);
  read("G=", target.G);
  read("B=", target.B);
  return inRange;
}

Vector3 ReadNumberTriple(std::string_view text, std::string_view key, TextCursor& cursor, TextCursor to,
                         NumberCheck& check) {
  const TextCursor at = FindText(text, key, cursor, to);
  if (at == 0) return {};
  cursor = at + static_cast<TextCursor>(key.size());
  Vector3 value = ReadTripleOfLine(text, cursor, to);
  for (double* component : {&value.X, &value.Y, &value.Z}) {
    if (std::fabs(*component) <= 1000000) continue;
    if (check.Places++ == 0) check.FirstActor = check.Actor;
    *component = *component > 0 ? 1 : -1;
  }
  return value;
}

Vector3 ReadTripleOfLine(std::string_view text, TextCursor& cursor, TextCursor to) {
  const std::size_t start = Offset(cursor);
  const std::string_view rest = text.substr(start, Offset(to) - std::min(Offset(to), start));
  const std::size_t length = FindLineBreak(rest, 0);
  const std::string_view line = rest.substr(0, length);
  cursor += static_cast<TextCursor>(std::min(length + 1, rest.size()));
  const std::size_t first = line.find(',');
  if (first == line.npos) return {ParseLeadingNumber(line), 0, 0};
  const std::size_t second = line.find(',', first + 1);
  const double z = second == line.npos ? 0 : ParseLeadingNumber(line.substr(second + 1));
  return {ParseLeadingNumber(line), ParseLeadingNumber(line.substr(first + 1)), z};
}

std::string_view ReadLineAt(std::string_view text, TextCursor& cursor) {
  const std::size_t start = std::min(Offset(cursor), text.size());
  const std::size_t end = FindLineBreak(text, start);
  cursor = Cursor(std::min(text.find_first_not_of("\r\n", end), text.size()));
  return text.substr(start, end - start);
}

std::string_view NextWord(std::string_view text, TextCursor& cursor) {
  // The scan stops before the text's last character, which a word at the very end keeps all the same.
  if (text.empty() || Offset(cursor) + 1 >= text.size()) return {};
  std::size_t start = Offset(cursor);
  while (start < text.size() && IsSeparator(text[start]))
    ++start;
  std::size_t end = start;
  while (end + 1 < text.size() && !IsSeparator(text[end]))
    ++end;
  cursor = Cursor(end);
  return start < text.size() ? text.substr(start, end - start + 1) : std::string_view();
}

std::string_view NextToken(std::string_view text, std::string_view delimiter, TextCursor& cursor) {
  const std::size_t start = std::min(Offset(cursor), text.size());
  const std::size_t at = text.find(delimiter, start);
  cursor = at == text.npos ? 0 : Cursor(at + 1);
  return at == text.npos ? std::string_view() : text.substr(start, at - start);
}

std::string_view GetBetween(std::string_view text, std::string_view opening, std::string_view closing, int n) {
  std::size_t at = text.npos;
  for (int i = 0; i < n; ++i) {
    at = text.find(opening, i == 0 ? 0 : at + 1);
    if (at == text.npos) return {};
  }
  return n < 1 ? std::string_view() : GetBetweenFrom(text, Cursor(at), opening, closing);
}

std::string_view GetBetweenFrom(std::string_view text, TextCursor cursor, std::string_view opening,
                                std::string_view closing) {
  return Cut(text, Offset(cursor), opening, closing).value_or(std::string_view());
}

bool TryGetBetween(std::string_view text, std::string_view opening, std::string_view closing, std::string& target) {
  const auto found = Cut(text, 0, opening, closing);
  if (found) target = *found;
  return found.has_value();
}

} // namespace quarvel
