#include "base/report.h"

#include <array>

namespace quarvel {

namespace {

struct FindingKind {
  std::string_view Name;
  Severity Grade;
  std::string_view Text;
};

constexpr std::array kinds{
#define FINDING(code, severity, text) FindingKind{#code, Severity::severity, text},
#include "base/finding_codes.inc"
#undef FINDING
};

const FindingKind& KindOf(FindingCode code) { return kinds[static_cast<std::size_t>(code)]; }

} // namespace

std::string_view NameOf(FindingCode code) { return KindOf(code).Name; }

Severity SeverityOf(FindingCode code) { return KindOf(code).Grade; }

std::string_view NameOf(Severity severity) {
  constexpr std::array<std::string_view, 3> names{"note", "changed", "lost"};
  return names[static_cast<std::size_t>(severity)];
}

std::string TextOf(FindingCode code, std::initializer_list<std::string> details) {
  constexpr std::string_view gap = "{}";
  std::string_view rest = KindOf(code).Text;
  std::string text;
  for (const std::string& detail : details) {
    const std::size_t at = rest.find(gap);
    text.append(rest.substr(0, at)).append(detail);
    rest.remove_prefix(at == rest.npos ? rest.size() : at + gap.size());
  }
  return text.append(rest);
}

void Report::Note(FindingCode code, std::string_view actor, std::string text, std::vector<Finding>& to) {
  if (seen_.emplace(actor, text).second) to.push_back({code, std::string(actor), std::move(text)});
}

} // namespace quarvel
