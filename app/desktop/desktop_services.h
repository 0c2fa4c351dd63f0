#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>

namespace quarvel {

/// What the window asks of the desktop. Tests give answers of their own.
class DesktopServices {
 public:
  virtual ~DesktopServices() = default;

  /// Existing files to convert; empty when the user chose none.
  virtual QStringList ChooseLevels(QWidget* parent, const QString& start);
  /// A file to write; empty when the user chose none.
  virtual QString ChooseFileToSave(QWidget* parent, const QString& title, const QString& start, const QString& filter);
  /// A folder that is there; empty when the user chose none.
  virtual QString ChooseFolder(QWidget* parent, const QString& title, const QString& start);
  /// Opens a file or folder with the program that the desktop has for it. False when there is none.
  virtual bool Open(const QString& path);
};

} // namespace quarvel
