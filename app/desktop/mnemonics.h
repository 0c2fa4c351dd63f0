#pragma once

#include <QWidget>

namespace quarvel {

/// Gives the buttons and labels below `root` that have none a letter to reach them by, as far as letters go. Those of
/// the window around them, and letters given already, are not given again.
void AssignMnemonics(QWidget* root);

/// The letters that the window's own menus, labels and buttons have; a page gives none of them.
QString WindowMnemonics();

} // namespace quarvel
