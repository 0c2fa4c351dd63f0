#pragma once

#include <QDialogButtonBox>
#include <QLabel>
#include <QString>

namespace quarvel {

/// What the core says, as the window says it: options by their captions, not by the names of their controls.
QString WithCaptions(const QString& text);

/// The same text with places at which long words (paths) may be broken into lines. Only for showing, not for copying.
QString Wrappable(const QString& text);

/// A label for plain text of any length, which wraps and never widens its window.
QLabel* MakeWrappedLabel(const QString& text, QWidget* parent);

/// Makes the Close button the one that Enter presses, whatever other buttons there are.
void EnterCloses(QDialogButtonBox* buttons);

} // namespace quarvel
