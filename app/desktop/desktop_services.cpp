#include "app/desktop/desktop_services.h"

#include <QDesktopServices>
#include <QFileDialog>
#include <QUrl>

namespace quarvel {

QStringList DesktopServices::ChooseLevels(QWidget* parent, const QString& start) {
  return QFileDialog::getOpenFileNames(
      parent, QStringLiteral("Choose levels"), start,
      QStringLiteral("Unreal Brush (*.t3d);;Levels of the game (*.unr);;All files (*)"));
}

QString DesktopServices::ChooseFileToSave(QWidget* parent, const QString& title, const QString& start,
                                          const QString& filter) {
  return QFileDialog::getSaveFileName(parent, title, start, filter);
}

QString DesktopServices::ChooseFolder(QWidget* parent, const QString& title, const QString& start) {
  return QFileDialog::getExistingDirectory(parent, title, start);
}

bool DesktopServices::Open(const QString& path) { return QDesktopServices::openUrl(QUrl::fromLocalFile(path)); }

} // namespace quarvel
