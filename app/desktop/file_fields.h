#pragma once

#include "app/desktop/desktop_services.h"
#include "app/desktop/option_controls.h"
#include "settings/settings_store.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QWidget>

namespace quarvel {

/// The input with its recent files, and the output, which follows the input until the user gives it a name of its own.
class FileFields : public QWidget {
  Q_OBJECT

 public:
  FileFields(OptionControls& controls, DesktopServices& services, QWidget* parent);

  QString Input() const { return input_->currentText(); }
  /// Where the scenes go, for `ListJobs`: the scenes of a list go to its own folder.
  QString Output() const;
  /// Files and folders that the user chose. Tells by `Refused` what cannot be taken.
  void TakePaths(const QStringList& paths);

  void BrowseInput();
  void BrowseOutput();

  /// To be called when the settings were shown: whether the output is the input's is then seen anew.
  void Adopt();
  /// Adds the input to the recent files unless it is among them.
  void Remember();
  void LoadRecent(const SettingsStore& store);
  void SaveRecent(SettingsStore& store) const;

 signals:
  void InputChanged();
  void Refused(const QString& why);

 private:
  QPushButton* MakeBrowseButton(const QString& name, const QString& tip);
  void FollowInput();
  void ShowWhatOutputMeans();

  OptionControls& controls_;
  DesktopServices& services_;
  QComboBox* input_;
  QLineEdit* output_;
  QPushButton* browseOutput_ = nullptr;
  QString outputBeforeList_; ///< what stood in the field that a list has no use for
  QString outputGiven_;      ///< what the output was last set to without the user's doing
};

} // namespace quarvel
