#include "actors/actor_context.h"

#include "math/number_text.h"

namespace quarvel {

std::string PositionText(const ActorContext& context, const Vector3& location) {
  const Vector3 position = ToSceneAxes(context.Scene.ConversionMatrix, location);
  return FormatVec(ScaleVector(position, context.Settings.TextScale));
}

std::string TakeActorName(ActorContext& context, const ActorHeader& header, std::string_view prefix) {
  const std::string& name = header.Name.empty() ? header.Class : header.Name;
  return context.Scene.TakeName(MakeDefName(std::string(prefix) + name));
}

} // namespace quarvel
