#include "app/desktop/message_text.h"

#include "app/desktop/qt_text.h"
#include "settings/option_table.h"

#include <QPushButton>
#include <QRegularExpression>

namespace quarvel {

QString WithCaptions(const QString& text) {
  static const QRegularExpression word(QStringLiteral("\\b[A-Z][A-Za-z0-9]{4,}\\b"));
  QString captioned = text;
  for (qsizetype from = 0;;) {
    const QRegularExpressionMatch match = word.match(captioned, from);
    if (!match.hasMatch()) return captioned;
    const OptionInfo* option = FindOption(ToText(match.captured()));
    const bool isControl = option && ToQString(option->Control) == match.captured() && !option->Caption.empty();
    const QString said = isControl ? u'"' + ToQString(option->Caption) + u'"' : match.captured();
    captioned.replace(match.capturedStart(), match.capturedLength(), said);
    from = match.capturedStart() + said.size();
  }
}

QString Wrappable(const QString& text) {
  constexpr qsizetype longWord = 30;
  constexpr QChar breakHere(0x200B); // zero width space
  QString wrappable;
  qsizetype inWord = 0, sinceBreak = 0;
  for (const QChar c : text) {
    wrappable += c;
    inWord = c.isSpace() ? 0 : inWord + 1;
    sinceBreak = c.isSpace() ? 0 : sinceBreak + 1;
    const bool mayBreak = c == u'/' || c == u'\\' || c == u'_' || c == u'-' || sinceBreak >= longWord;
    if (!mayBreak || inWord < 2 || c.isHighSurrogate()) continue;
    wrappable += breakHere;
    sinceBreak = 0;
  }
  return wrappable;
}

QLabel* MakeWrappedLabel(const QString& text, QWidget* parent) {
  auto* label = new QLabel(Wrappable(text), parent);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

void EnterCloses(QDialogButtonBox* buttons) {
  for (QAbstractButton* button : buttons->buttons())
    if (auto* push = qobject_cast<QPushButton*>(button)) push->setAutoDefault(false);
  buttons->button(QDialogButtonBox::Close)->setDefault(true);
}

} // namespace quarvel
