#include "page/vrml_filter.h"

#include "base/ascii_text.h"

#include <cstring>
#include <vector>

namespace quarvel {

namespace {

enum class TokenKind { Word, String, Sign, End };

struct Token {
  TokenKind Kind = TokenKind::End;
  std::string_view Text;  ///< a string's without its quotes
  std::size_t From = 0;   ///< in the scene
  std::size_t Behind = 0; ///< the character after it
};

constexpr const char* signs = "{}[]";

bool IsBlank(char c) { return static_cast<unsigned char>(c) <= ' ' || c == ','; }

/// Splits a scene; comments are blanks.
class Tokens {
 public:
  explicit Tokens(std::string_view text) : text_(text) {}

  Token Next() {
    SkipBlanks();
    if (at_ >= text_.size()) return {TokenKind::End, {}, text_.size(), text_.size()};
    const std::size_t from = at_;
    if (text_[at_] == '"') return ReadString(from);
    if (std::strchr(signs, text_[at_])) return {TokenKind::Sign, text_.substr(from, 1), from, ++at_};
    while (at_ < text_.size() && !IsBlank(text_[at_]) && !std::strchr("{}[]\"#", text_[at_]))
      ++at_;
    if (at_ == from) ++at_;
    return {TokenKind::Word, text_.substr(from, at_ - from), from, at_};
  }

 private:
  void SkipBlanks() {
    while (at_ < text_.size() && (IsBlank(text_[at_]) || text_[at_] == '#'))
      if (text_[at_] == '#')
        at_ = std::min(text_.find_first_of("\r\n", at_), text_.size());
      else
        ++at_;
  }

  Token ReadString(std::size_t from) {
    for (++at_; at_ < text_.size() && text_[at_] != '"'; ++at_)
      if (text_[at_] == '\\') ++at_;
    const std::size_t end = std::min(at_, text_.size());
    at_ = std::min(end + 1, text_.size());
    return {TokenKind::String, text_.substr(from + 1, end - from - 1), from, at_};
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

bool Is(const Token& token, std::string_view text) { return token.Kind != TokenKind::String && token.Text == text; }

bool HoldsCode(std::string_view type) {
  return type == "Script" || type == "LoadSensor" || LowerCase(type).find("shader") != std::string::npos;
}

bool IsAddressField(std::string_view field) {
  return field.size() >= 3 && SameText(field.substr(field.size() - 3), "url");
}

std::string Unescape(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 1 < text.size()) ++i;
    plain += text[i];
  }
  return plain;
}

class VrmlFilter {
 public:
  VrmlFilter(std::string_view text, const RenameAddress& rename) : text_(text), rename_(rename), tokens_(text) {}

  FilteredVrml Filter() {
    for (Step(); now_.Kind != TokenKind::End; Step())
      FilterToken();
    CopyTo(text_.size());
    return std::move(result_);
  }

 private:
  void Step() {
    before_ = now_;
    now_ = tokens_.Next();
  }

  void FilterToken() {
    if (now_.Kind == TokenKind::Sign) return FilterSign();
    if (now_.Kind != TokenKind::Word) return;
    if (Is(before_, "DEF")) name_ = now_.Text;
    if (Is(now_, "EXTERNPROTO"))
      DropExternProto();
    else if (Is(now_, "ROUTE"))
      FilterRoute();
    else if (!Is(before_, "DEF") && !Is(before_, "USE") && (HoldsCode(now_.Text) || unknown_.contains(now_.Text)))
      DropNode();
    else if (IsAddressField(now_.Text))
      FilterAddress();
  }

  void FilterSign() {
    if (Is(now_, "{"))
      open_.push_back(before_.Kind == TokenKind::Word ? LowerCase(before_.Text) : std::string());
    else if (Is(now_, "}") && !open_.empty())
      open_.pop_back();
  }

  /// The text up to `end` goes into the result as it is.
  void CopyTo(std::size_t end) {
    if (end > copied_) result_.Text += text_.substr(copied_, end - copied_);
    copied_ = std::max(copied_, end);
  }

  /// What stands from `from` to `to` is replaced.
  void Replace(std::size_t from, std::size_t to, std::string_view by) {
    CopyTo(from);
    result_.Text += by;
    copied_ = std::max(copied_, to);
  }

  /// Steps behind the bracket that closes the one just read.
  void SkipBlock() {
    for (int depth = 1; depth > 0 && now_.Kind != TokenKind::End;) {
      Step();
      if (Is(now_, "{") || Is(now_, "[")) ++depth;
      if (Is(now_, "}") || Is(now_, "]")) --depth;
    }
  }

  void DropNode() {
    const Token type = now_;
    const bool isNamed = before_.Kind == TokenKind::Word && before_.Text == name_ && !name_.empty();
    Step();
    if (!Is(now_, "{")) return;
    SkipBlock();
    if (isNamed) lost_.insert(name_);
    result_.Dropped.emplace(type.Text);
    Replace(type.From, now_.Behind, "Group { }");
  }

  /// EXTERNPROTO name [ interface ] address, or [ addresses ].
  void DropExternProto() {
    const std::size_t from = now_.From;
    Step();
    unknown_.insert(now_.Text);
    result_.Dropped.emplace(now_.Text);
    for (int part = 0; part < 2; ++part) {
      Step();
      if (Is(now_, "[")) SkipBlock();
    }
    Replace(from, now_.Behind, "");
  }

  /// ROUTE node.field TO node.field
  void FilterRoute() {
    const std::size_t from = now_.From;
    Step();
    const std::string_view source = now_.Text.substr(0, now_.Text.find('.'));
    Step();
    Step();
    const std::string_view target = now_.Text.substr(0, now_.Text.find('.'));
    if (lost_.contains(source) || lost_.contains(target)) Replace(from, now_.Behind, "");
  }

  /// A field's strings are replaced by the first that can be renamed. "IS" and declarations have none.
  void FilterAddress() {
    const Token field = now_;
    const std::string node = open_.empty() ? std::string() : open_.back();
    const bool isImage = node == "imagetexture" || node == "movietexture" || !SameText(field.Text, "url");
    std::string name;
    const auto take = [&] {
      if (name.empty() && node != "anchor") name = rename_(Unescape(now_.Text), isImage ? "image" : node);
    };
    // Looks ahead, as the next token may be another field's name.
    Tokens ahead = tokens_;
    const Token first = ahead.Next();
    if (first.Kind != TokenKind::String && !Is(first, "[")) return;
    Step();
    if (now_.Kind == TokenKind::String)
      take();
    else
      for (Step(); now_.Kind != TokenKind::End && !Is(now_, "]"); Step())
        if (now_.Kind == TokenKind::String) take();
    Replace(field.Behind, now_.Behind, name.empty() ? " [ ]" : " \"" + name + "\"");
  }

  std::string_view text_;
  const RenameAddress& rename_;
  Tokens tokens_;
  Token before_, now_;
  FilteredVrml result_;
  std::size_t copied_ = 0;
  std::string_view name_;              ///< the last one defined
  std::vector<std::string> open_;      ///< types of the nodes around, the innermost last
  std::set<std::string_view> lost_;    ///< names of nodes that were taken out
  std::set<std::string_view> unknown_; ///< external prototypes
};

} // namespace

FilteredVrml FilterVrml(std::string_view text, const RenameAddress& rename) {
  return VrmlFilter(text, rename).Filter();
}

} // namespace quarvel
