#pragma once

#include "app/desktop/desktop_services.h"

#include <QDialog>

namespace quarvel {

/// Shows the script that preloads the images of a scene in a web page.
class PreloadDialog : public QDialog {
  Q_OBJECT

 public:
  /// `file` is where the run has written it, and where saving begins.
  PreloadDialog(const QString& script, const QString& file, DesktopServices& services, QWidget* parent);

 private:
  void Save();

  QString script_;
  QString file_;
  DesktopServices& services_;
};

} // namespace quarvel
