#pragma once

#include "actors/scene_run.h"
#include "base/report.h"
#include "light/lit_surface.h"
#include "light/solid_matter.h"
#include "scene/level_surface.h"
#include "settings/conversion_settings.h"

#include <vector>

namespace quarvel {

/// The settings with which a level is converted: `CheckBakeLight` switches the headlight off, and is itself off, which
/// is reported, where there is no level to bake light into, or no lamp: then visitors carry the headlight.
ConversionSettings SettingsForLight(const ConversionSettings& settings, const T3DLevel& level, Report& findings);

/// Bakes the light of the run's scene into maps on its surfaces and writes them beside the scene; the run's context has
/// the light then, for all that is no surface of the level. `surfaces` are cut where a light map ends; `lit` is what
/// light sees of them, and `matter` what stands on them. Throws RunStopped, and std::runtime_error when a file cannot
/// be written.
void BakeLight(SceneRun& run, std::vector<LevelSurface>& surfaces, std::vector<LitSurface> lit, SolidMatter matter);

} // namespace quarvel
