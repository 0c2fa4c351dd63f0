#pragma once

#include "scene/brush_placement.h"
#include "scene/materials.h"
#include "scene/node_writer.h"

namespace quarvel {

/// How fast panning textures move; 1 is the engine's own speed, negative values go the other way.
struct TexturePanSpeeds {
  double U = 1, V = 1;
};

/// What one cycle of an animated texture does to the `translation` of its TextureTransform.
struct TextureMovement {
  bool Circles = false; ///< around its place, instead of along a straight line
  TexturePoint Extent;  ///< of a line: the whole textures it moves by, so that it wraps unseen; of a circle: the radii
  double Seconds = 0;   ///< 0 when nothing moves
};

/// The movement of a shared transform. `image` is the one that defined it: the engine counts in texels (256 a side when
/// the size is unknown).
TextureMovement MovementOf(TextureMotion motion, const TextureFile& image, const TexturePanSpeeds& speeds);

/// Animates every shared texture transform that a surface of the run has defined: a TimeSensor, and an interpolator in
/// the document and in X3D text, a Script in VRML97 text, which has no interpolator for two components.
void WriteTextureAnimations(SceneWriter& scene, const MaterialWriter& materials, const TexturePanSpeeds& speeds);

} // namespace quarvel
