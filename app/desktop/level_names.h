#pragma once

#include <QString>
#include <QStringList>

namespace quarvel {

/// The input that stands for files and folders which the user dropped or chose: a file by its name, a folder as a
/// pattern for all levels in it, several as a list. Of several, those that are no level by their extension are left
/// out. `problem` tells in one sentence what could not be taken.
QString InputFor(const QStringList& paths, QString* problem = nullptr);

/// The output that goes with an input: the scene beside a level; empty for several, which are converted beside
/// themselves.
QString OutputFor(const QString& input);

/// The folder in which dialogs begin: that of the input, or the nearest one above it that is there.
QString FolderOf(const QString& input);

} // namespace quarvel
