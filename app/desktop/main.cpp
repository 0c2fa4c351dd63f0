#include "app/desktop/desktop_services.h"
#include "app/desktop/form_main.h"
#include "app/desktop/settings_location.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <algorithm>
#include <string_view>

namespace {

void DescribeCommandLine(QCommandLineParser& parser) {
  parser.setApplicationDescription(
      QStringLiteral("Converts levels, exported from the Unreal editor as T3D text, to 3D scenes for the web."));
  parser.addHelpOption();
  parser.addVersionOption();
  parser.addPositionalArgument(QStringLiteral("LEVEL"), QStringLiteral("Levels to convert, or folders with levels"),
                               QStringLiteral("[LEVEL...]"));
}

void NameProgram() {
  QCoreApplication::setApplicationName(QStringLiteral("quarvel-desktop"));
  QCoreApplication::setApplicationVersion(QStringLiteral(QUARVEL_VERSION));
}

/// Answers what needs no window, also where there is no display. Ends the program then.
void AnswerWithoutDisplay(int argc, char** argv) {
  constexpr std::string_view questions[] = {"-h", "--help", "--help-all", "-v", "--version"};
  const auto isQuestion = [&](std::string_view word) {
    return std::find(std::begin(questions), std::end(questions), word) != std::end(questions);
  };
  if (std::none_of(argv + 1, argv + argc, isQuestion)) return;
  const QCoreApplication program(argc, argv);
  NameProgram();
  QCommandLineParser parser;
  DescribeCommandLine(parser);
  parser.process(program);
}

QStringList LevelsOfCommandLine() {
  QCommandLineParser parser;
  DescribeCommandLine(parser);
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
  AnswerWithoutDisplay(argc, argv);
  QApplication program(argc, argv);
  NameProgram();
  QApplication::setApplicationDisplayName(QStringLiteral("Quarvel"));
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
