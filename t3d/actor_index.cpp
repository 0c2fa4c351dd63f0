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

std::string_view EarlierSpelling(std::string_view className) {
  return className == "SunLight" ? "Sunlight" : className;
}

/// The class that a search text names, or the beginning of several.
std::string_view ClassOf(std::string_view searchText) {
  searchText.remove_prefix(std::min(searchText.size(), std::string_view("Class=").size()));
  if (searchText.ends_with(' ')) searchText.remove_suffix(1);
  return searchText;
}

/// For a single class: however many classes there are, finding the actors of each does not look at all the others.
const ActorBlock* NextOfClass(const LevelText& level, TextCursor cursor, std::string_view searchText) {
  const auto ofClass = level.ActorsOfClass.find(EarlierSpelling(ClassOf(searchText)));
  if (ofClass == level.ActorsOfClass.end()) return nullptr;
  const auto before = [&](std::size_t actor, TextCursor position) { return level.Actors[actor].From < position; };
  const auto at = std::lower_bound(ofClass->second.begin(), ofClass->second.end(), cursor, before);
  return at == ofClass->second.end() ? nullptr : &level.Actors[*at];
}

const ActorBlock* NextThatFits(const LevelText& level, TextCursor cursor, std::string_view searchText) {
  const auto before = [](const ActorBlock& actor, TextCursor position) { return actor.From < position; };
  const auto at = std::find_if(
      std::lower_bound(level.Actors.begin(), level.Actors.end(), cursor, before), level.Actors.end(),
      [&](const ActorBlock& actor) { return actor.IsComplete() && FitsSearchText(actor.Class, searchText); });
  return at == level.Actors.end() ? nullptr : &*at;
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

bool FitsSearchText(std::string_view className, std::string_view searchText) {
  const std::string_view wanted = EarlierSpelling(ClassOf(searchText));
  className = EarlierSpelling(className);
  return searchText.ends_with(' ') ? className == wanted : className.starts_with(wanted);
}

LevelText::LevelText(std::string_view text) : Text(text), Actors(IndexActors(text)) {
  for (std::size_t i = 0; i < Actors.size(); ++i)
    if (Actors[i].IsComplete()) ActorsOfClass[EarlierSpelling(Actors[i].Class)].push_back(i);
}

const ActorBlock* FindActor(const LevelText& level, TextCursor& cursor, std::string_view searchText) {
  const ActorBlock* actor =
      searchText.ends_with(' ') ? NextOfClass(level, cursor, searchText) : NextThatFits(level, cursor, searchText);
  if (actor != nullptr) cursor = actor->To + static_cast<TextCursor>(endActor.size());
  return actor;
}

} // namespace quarvel
