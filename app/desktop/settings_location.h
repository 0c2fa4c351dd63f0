#pragma once

#include <QString>

namespace quarvel {

/// Where the settings are kept: "Quarvel.ini" in `programFolder`, or in the user's configuration folder, which is made,
/// where that is not writable.
QString SettingsLocation(const QString& programFolder);

} // namespace quarvel
