#include "app/desktop/file_fields.h"

#include "app/desktop/level_names.h"
#include "app/desktop/qt_text.h"
#include "core/batch.h"

#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QPushButton>
#include <QStyle>
#include <utility>

namespace quarvel {

namespace {

constexpr int recentFiles = 12;
constexpr const char* recentSection = "QuarvelRecent";

std::string RecentKey(int number) { return "File" + std::to_string(number + 1); }

} // namespace

FileFields::FileFields(OptionControls& controls, DesktopServices& services, QWidget* parent)
    : QWidget(parent), controls_(controls), services_(services), input_(new QComboBox(this)),
      output_(new QLineEdit(this)) {
  input_->setEditable(true);
  input_->setInsertPolicy(QComboBox::NoInsert);
  input_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  input_->setMinimumContentsLength(30);
  input_->lineEdit()->setPlaceholderText(QStringLiteral("Drop a level here, or choose one: *.t3d"));
  controls.Add(*FindOption("ComboInFileName"), input_);
  controls.Add(*FindOption("TextOutFileName"), output_);
  QLabel* inputLabel = controls.MakeLabel(*FindOption("ComboInFileName"), this);
  QLabel* outputLabel = controls.MakeLabel(*FindOption("TextOutFileName"), this);
  inputLabel->setText(QStringLiteral("&Level:"));
  outputLabel->setText(QStringLiteral("&Scene:"));
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins({});
  grid->setColumnStretch(1, 1);
  grid->addWidget(inputLabel, 0, 0);
  grid->addWidget(input_, 0, 1);
  QPushButton* browseInput =
      MakeBrowseButton(QStringLiteral("CommandBrowseIn"), QStringLiteral("Choose levels (Ctrl+O)"));
  browseOutput_ = MakeBrowseButton(QStringLiteral("CommandBrowseOut"), QStringLiteral("Choose the scene to write"));
  grid->addWidget(browseInput, 0, 2);
  grid->addWidget(outputLabel, 1, 0);
  grid->addWidget(output_, 1, 1);
  grid->addWidget(browseOutput_, 1, 2);
  controls.AddCompanion("TextOutFileName", browseOutput_);
  setTabOrder(input_, browseInput);
  setTabOrder(browseInput, output_);
  setTabOrder(output_, browseOutput_);
  connect(input_, &QComboBox::currentTextChanged, this, [this] {
    FollowInput();
    emit InputChanged();
  });
  connect(browseInput, &QPushButton::clicked, this, &FileFields::BrowseInput);
  connect(browseOutput_, &QPushButton::clicked, this, &FileFields::BrowseOutput);
}

QPushButton* FileFields::MakeBrowseButton(const QString& name, const QString& tip) {
  auto* button = new QPushButton(style()->standardIcon(QStyle::SP_DirOpenIcon), QStringLiteral("Browse..."), this);
  button->setObjectName(name);
  button->setToolTip(tip);
  button->setStatusTip(tip);
  return button;
}

void FileFields::TakePaths(const QStringList& paths) {
  QString problem;
  const QString input = InputFor(paths, &problem);
  if (!input.isEmpty()) input_->setEditText(input);
  if (!problem.isEmpty()) emit Refused(problem);
}

void FileFields::BrowseInput() {
  const QStringList chosen = services_.ChooseLevels(this, FolderOf(Input()));
  if (!chosen.isEmpty()) TakePaths(chosen);
}

QString FileFields::Output() const { return IsListOfFiles(ToText(Input())) ? QString() : output_->text(); }

void FileFields::BrowseOutput() {
  const QString current = output_->text();
  QString chosen;
  if (NamesSeveralFiles(ToText(Input())))
    chosen = services_.ChooseFolder(this, QStringLiteral("Choose the folder for the scenes"),
                                    FolderOf(current.isEmpty() ? Input() : current));
  else
    chosen = services_.ChooseFileToSave(this, QStringLiteral("Choose the scene to write"),
                                        current.isEmpty() ? FolderOf(Input()) : current,
                                        QStringLiteral("Scenes (*.wrl *.x3dv *.x3d);;All files (*)"));
  if (!chosen.isEmpty()) output_->setText(QDir::toNativeSeparators(chosen));
}

void FileFields::Adopt() {
  const QString follows = OutputFor(Input());
  outputGiven_ = output_->text() == follows ? follows : QString();
  ShowWhatOutputMeans();
}

void FileFields::FollowInput() {
  ShowWhatOutputMeans();
  const QString follows = OutputFor(Input());
  const QString current = output_->text();
  if (current.isEmpty() || current == outputGiven_) {
    outputGiven_ = follows;
    output_->setText(follows);
  } else if (!follows.isEmpty()) { // the user's folder stays
    const qsizetype folder = std::max(current.lastIndexOf(u'/'), current.lastIndexOf(QDir::separator())) + 1;
    if (folder > 0) output_->setText(current.left(folder) + QFileInfo(follows).fileName());
  }
}

void FileFields::ShowWhatOutputMeans() {
  const std::string input = ToText(Input());
  const bool isList = IsListOfFiles(input);
  output_->setPlaceholderText(isList                     ? QStringLiteral("in the folder of the list")
                              : NamesSeveralFiles(input) ? QStringLiteral("beside each level")
                                                         : QString());
  if (isList && !output_->text().isEmpty()) outputBeforeList_ = output_->text();
  if (isList) output_->clear();
  if (!isList && !outputBeforeList_.isEmpty()) output_->setText(std::exchange(outputBeforeList_, QString()));
  controls_.SetUsable("TextOutFileName", !isList);
}

void FileFields::Remember() {
  const QString text = Input();
  if (text.isEmpty() || input_->findText(text, Qt::MatchFixedString) >= 0) return;
  const QSignalBlocker quiet(input_);
  input_->insertItem(0, text);
  if (input_->count() > recentFiles) input_->removeItem(recentFiles);
  input_->setEditText(text);
}

void FileFields::LoadRecent(const SettingsStore& store) {
  const QSignalBlocker quiet(input_);
  for (int i = 0; i < recentFiles; ++i)
    if (const std::string file = store.ReadText(recentSection, RecentKey(i), ""); !file.empty())
      input_->addItem(ToQString(file));
}

void FileFields::SaveRecent(SettingsStore& store) const {
  for (int i = 0; i < input_->count() && i < recentFiles; ++i)
    store.WriteText(recentSection, RecentKey(i), ToText(input_->itemText(i)));
}

} // namespace quarvel
