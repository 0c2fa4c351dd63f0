#include "t3d/actor_index.h"

#include <algorithm>

namespace quarvel {

namespace {

constexpr std::string_view beginActor = "Begin Actor";
constexpr std::string_view endActor = "End Actor";

/// True when the text at `at` is a whole word ("Begin ActorList" is not "Begin Actor").
bool IsWholeWord(std::string_view text, std::size_t at, std::size_t length) {
  return at + length >= text.size() || std::string_view(" \t\r\n").find(text[at + length]) != std::string_view::npos;
}

std::size_t FindWord(std::string_view text, std::string_view word, std::size_t from) {
  std::size_t at = text.find(word, from);
  while (at != text.npos && !IsWholeWord(text, at, word.size()))
    at = text.find(word, at + word.size());
  return at;
}

std::string_view ClassAt(std::string_view text, std::size_t classKey) {
  const std::size_t start = classKey + std::string_view("Class=").size();
  const std::size_t end = std::min(text.find_first_of(" \t\r\n", start), text.size());
  std::string_view name = text.substr(start, end - start);
  if (name.size() >= 2 && name.front() == '"' && name.back() == '"') name = name.substr(1, name.size() - 2);
  return name.substr(name.rfind('.') + 1);
}

} // namespace

std::vector<ActorBlock> IndexActors(std::string_view text) {
  std::vector<ActorBlock> actors;
  std::size_t begin = FindWord(text, beginActor, 0);
  while (begin != text.npos) {
    const std::size_t behind = begin + beginActor.size();
    const std::size_t next = FindWord(text, beginActor, behind);
    const std::string_view actor = text.substr(0, next);
    const std::size_t end = FindWord(actor, endActor, behind);
    const std::size_t classKey = actor.substr(0, end).find("Class=", behind);
    if (classKey != text.npos)
      actors.push_back({ClassAt(actor.substr(0, end), classKey), static_cast<TextCursor>(classKey + 1),
                        end == text.npos ? 0 : static_cast<TextCursor>(end + 1)});
    begin = next;
  }
  return actors;
}

} // namespace quarvel
