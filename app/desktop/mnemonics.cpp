#include "app/desktop/mnemonics.h"

#include <QAbstractButton>
#include <QLabel>

namespace quarvel {

namespace {

qsizetype MnemonicAt(const QString& text) {
  const qsizetype mark = text.indexOf(u'&');
  return mark < 0 || mark + 1 >= text.size() ? -1 : mark + 1;
}

/// Where a letter that is still free stands, the first letters of words before others; -1 for nowhere.
qsizetype FreeLetter(const QString& text, const QString& taken) {
  for (const bool wordStart : {true, false})
    for (qsizetype i = 0; i < text.size(); ++i) {
      const bool isStart = i == 0 || !text[i - 1].isLetterOrNumber();
      if (isStart == wordStart && text[i].isLetter() && !taken.contains(text[i].toLower())) return i;
    }
  return -1;
}

QString Marked(const QString& text, QString& taken) {
  if (text.isEmpty() || MnemonicAt(text) >= 0) return text;
  const qsizetype at = FreeLetter(text, taken);
  if (at < 0) return text;
  taken += text[at].toLower();
  return QString(text).insert(at, u'&');
}

} // namespace

void AssignMnemonics(QWidget* root) {
  QString taken = WindowMnemonics();
  for (QWidget* widget : root->findChildren<QWidget*>()) {
    if (auto* button = qobject_cast<QAbstractButton*>(widget))
      button->setText(Marked(button->text(), taken));
    else if (auto* label = qobject_cast<QLabel*>(widget); label && label->buddy())
      label->setText(Marked(label->text(), taken));
  }
}

QString WindowMnemonics() { return QStringLiteral("lsbfcrhvpt"); }

} // namespace quarvel
