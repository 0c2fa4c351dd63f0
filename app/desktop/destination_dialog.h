#pragma once

#include "app/desktop/option_controls.h"
#include "app/desktop/option_pages.h"

#include <QDialog>
#include <set>

namespace quarvel {

/// The folder options of one kind of files: whether and where copies go, and how the scene names them.
class DestinationDialog : public QDialog {
  Q_OBJECT

 public:
  DestinationDialog(ResourceKind kind, const ConversionSettings& settings, QWidget* parent);

  /// Sets the five options of the kind.
  void Read(ConversionSettings& settings) const { controls_.Read(settings); }
  /// Those that the user has set.
  const std::set<const OptionInfo*>& EditedOptions() const { return edited_; }

 private:
  QWidget* MakePlaceList(ResourceKind kind);

  OptionControls controls_;
  std::set<const OptionInfo*> edited_;
};

} // namespace quarvel
