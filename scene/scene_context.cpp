#include "scene/scene_context.h"

namespace quarvel {

namespace {

TextEncoding EncodingOf(const ConversionSettings& settings) {
  if (settings.OptionFlux) return TextEncoding::X3DClassic;
  return settings.OptionContact ? TextEncoding::Contact : TextEncoding::Vrml97;
}

} // namespace

SceneContext::SceneContext(TextFile& file, const ConversionSettings& settings, ResourceFiles& resources,
                           RunInterface& user, Report& findings, std::string litColor)
    : Settings(settings), Resources(resources), User(user), Findings(findings), Space(settings.TextScale),
      Scene(file, EncodingOf(settings), settings.CheckConforming),
      Materials(Scene, resources, settings, std::move(litColor)), Meshes(Scene, resources, settings, Space) {}

std::string TakeActorName(SceneContext& context, const ActorHeader& header, std::string_view prefix) {
  const std::string& name = header.Name.empty() ? header.Class : header.Name;
  return context.Scene.TakeName(MakeDefName(std::string(prefix) + name));
}

} // namespace quarvel
