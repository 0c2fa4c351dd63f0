#include "scene/avatar.h"

namespace quarvel {

namespace {

// The two scenes differ on purpose unless they are to conform.
constexpr const char* textSpeed = "1.5";
constexpr const char* documentSpeed = "5.3";

} // namespace

void WriteAvatarSize(SceneNode& navigation, const char* line) {
  navigation.List(line, PerScene{".5, 1.6, 0.75", ".5 1.6 0.75"}, ListLayout::OneLine);
}

void WriteAvatarSpeed(SceneNode& navigation, const char* line) {
  navigation.Field(line, PerScene{navigation.Writer().Conforming() ? documentSpeed : textSpeed, documentSpeed});
}

} // namespace quarvel
