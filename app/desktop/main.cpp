#include "app/desktop/desktop_services.h"
#include "app/desktop/form_main.h"
#include "app/desktop/settings_location.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QIcon>
#include <iostream>
#include <string_view>

namespace {

/// Also answered where there is no display.
bool WantsVersion(int argc, char** argv) {
  for (int i = 1; i < argc; ++i)
    if (argv[i] == std::string_view("--version") || argv[i] == std::string_view("-v")) return true;
  return false;
}

QStringList LevelsOfCommandLine() {
  QCommandLineParser parser;
  parser.setApplicationDescription(
      QStringLiteral("Converts levels, exported from the Unreal editor as T3D text, to 3D scenes for the web."));
  parser.addHelpOption();
  parser.addVersionOption();
  parser.addPositionalArgument(QStringLiteral("LEVEL"), QStringLiteral("Levels to convert, or folders with levels"),
                               QStringLiteral("[LEVEL...]"));
  parser.process(*qApp);
  return parser.positionalArguments();
}

QIcon ProgramIcon() {
  QIcon icon;
  for (const char* size : {"16", "32", "48", "128"})
    icon.addFile(QStringLiteral(":/quarvel-%1.png").arg(QLatin1String(size)));
  return icon;
}

} // namespace

int main(int argc, char** argv) {
  if (WantsVersion(argc, argv)) {
    std::cout << "quarvel-desktop " QUARVEL_VERSION << std::endl;
    return 0;
  }
  QApplication program(argc, argv);
  QApplication::setApplicationName(QStringLiteral("quarvel-desktop"));
  QApplication::setApplicationDisplayName(QStringLiteral("Quarvel"));
  QApplication::setApplicationVersion(QStringLiteral(QUARVEL_VERSION));
  QApplication::setDesktopFileName(QStringLiteral("quarvel-desktop"));
  Q_INIT_RESOURCE(desktop);
  QApplication::setWindowIcon(ProgramIcon());
  const QStringList levels = LevelsOfCommandLine();
  quarvel::DesktopServices services;
  quarvel::FormMain window(quarvel::SettingsLocation(QApplication::applicationDirPath()), services);
  if (!levels.isEmpty()) window.TakePaths(levels);
  window.show();
  return QApplication::exec();
}
