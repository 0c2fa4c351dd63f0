#include "actors/script_writer.h"
#include "actors/sounds.h"
#include "math/number_text.h"

#include <algorithm>

namespace quarvel {

namespace {

std::vector<std::string> SoundsOf(const DynamicAmbientSoundRecord& record) {
  std::vector<std::string> sounds;
  for (const std::string& sound : record.Sounds)
    if (!SoundFileName(sound).empty()) sounds.push_back(sound);
  return sounds;
}

/// When sounds are picked, as far as the actor says something usable. Seconds.
struct PickTimes {
  double Probability, Shortest, Longest;
};

PickTimes TimesOf(SceneContext& context, const DynamicAmbientSoundRecord& record) {
  if (record.minReCheckTime < 0 || record.maxReCheckTime < 0 || record.playProbability < 0)
    context.Findings.Add(FindingCode::RandomSoundOutOfRange, record.Header.Name);
  return {std::max(record.playProbability, 0.0), std::max(record.minReCheckTime, 0.0),
          std::max(record.maxReCheckTime, 0.0)};
}

std::string OutputName(std::size_t number) { return "sound" + std::to_string(number) + "_changed"; }

void WriteFields(const SceneNode& script, const DynamicAmbientSoundRecord& record, const PickTimes& times,
                 std::size_t numSounds) {
  const bool conforming = script.Writer().Conforming();
  // By default the document has a probability's usual value where the times belong.
  const DocumentField usual{{}, conforming ? "" : ".6"};
  WriteScriptField(script, "eventIn  SFTime  set_testsound");
  for (std::size_t k = 1; k <= numSounds; ++k)
    WriteScriptField(script, "eventOut SFTime  " + OutputName(k));
  WriteScriptField(script, "eventOut SFTime  interval_changed");
  WriteScriptField(script, "eventOut SFBool  enable_changed");
  WriteScriptField(script, "field SFFloat playProbability " + (conforming ? FormatFlt(times.Probability) : ".6"));
  WriteScriptField(script, "field SFInt32 numSounds " + std::to_string(numSounds));
  WriteScriptField(script, "field SFFloat minReCheckTime " + FormatFlt(times.Shortest), usual);
  WriteScriptField(script, "field SFFloat maxReCheckTime " + FormatFlt(times.Longest), usual);
  WriteScriptField(script, "field SFFloat rePlayTime 1");
  WriteScriptField(script, "field SFInt32 lastSound -1");
  WriteScriptField(script, std::string("field SFBool  bDontRepeat ") + (record.bDontRepeat ? "TRUE" : "FALSE"));
  WriteScriptField(script, std::string("field SFBool  bInitiallyOn ") + (record.bInitiallyOn ? "TRUE" : "FALSE"));
}

class CodeMaker {
 public:
  CodeMaker(std::size_t numSounds, bool conforming) : numSounds_(numSounds), conforming_(conforming) {}

  std::vector<std::string> Make() {
    AddInitialize();
    AddTest();
    return std::move(code_);
  }

 private:
  void Add(std::initializer_list<const char*> lines) { code_.insert(code_.end(), lines.begin(), lines.end()); }

  /// Rounding reaches one index too far, for which there is no sound, and the first only half as often as the others.
  const char* Pick() const {
    return conforming_ ? "Math.floor(Math.random() * numSounds);" : "Math.round(Math.random() * numSounds);";
  }

  void AddChoice(const std::string& value) {
    code_.emplace_back("        if (i==0)");
    for (std::size_t k = 1; k <= numSounds_; ++k) {
      if (k > 1) code_.push_back("        else if (i==" + std::to_string(k - 1) + ")");
      code_.push_back("            " + OutputName(k) + " = " + value + ";");
    }
    code_.emplace_back("        lastSound = i;");
  }

  void AddInitialize() {
    Add({"function initialize(value,time){", "    if (bInitiallyOn){"});
    code_.push_back(std::string(conforming_ ? "        var i = " : "        i = ") + Pick());
    if (conforming_)
      Add({"        var t = new Date().getTime() / 1000;"});
    else
      Add({"        date1 = new Date();", "        time1 = date1.getTime();", "        var t = new SFTime(time1);"});
    AddChoice("t");
    Add({"    }", "}"});
  }

  void AddTest() {
    Add({"function set_testsound(value,time) {", "    if (Math.random() < playProbability){"});
    code_.push_back(std::string("        var i = ") + Pick());
    Add({"        while( i == lastSound && bDontRepeat && numSounds > 1 )"});
    code_.push_back(std::string("            i = ") + Pick());
    AddChoice("value");
    Add({"    }", "    rePlayTime = (maxReCheckTime-minReCheckTime)*Math.random() + minReCheckTime;",
         "    enable_changed = false;", "    interval_changed = rePlayTime;", "    enable_changed = true;", "  }"});
  }

  std::size_t numSounds_;
  bool conforming_;
  std::vector<std::string> code_;
};

void WriteRandomScript(SceneWriter& scene, const DynamicAmbientSoundRecord& record, const PickTimes& times,
                       const std::string& name, std::size_t numSounds) {
  SceneNode script = scene.Open("", "Script", name);
  WriteFields(script, record, times, numSounds);
  script.Code(CodeMaker(numSounds, scene.Conforming()).Make(), "", " ");
  if (!scene.Conforming()) scene.NoteQuirk("the way in which scripts of random sounds ask for the time");
}

/// Writes the sounds at the actor's place. Returns the names of their clips.
std::vector<std::string> WriteClips(SceneContext& context, const DynamicAmbientSoundRecord& record,
                                    const std::vector<std::string>& sounds, const std::string& group) {
  std::vector<std::string> clips;
  const SceneNode place = OpenSoundPlace(context, record.Location);
  SoundSource source;
  source.Block = record.Sound;
  source.Name = record.Header.Name;
  source.Loop = false;
  source.StartedElsewhere = true;
  source.InitiallyOn = record.bInitiallyOn;
  for (const std::string& sound : sounds) {
    source.Block.AmbientSound = sound;
    source.BaseName = group + "_" + std::to_string(clips.size() + 1);
    clips.push_back(WriteSound(context, source));
  }
  return clips;
}

} // namespace

void WriteRandomSounds(SceneContext& context, const DynamicAmbientSoundRecord& record) {
  const std::vector<std::string> sounds = SoundsOf(record);
  if (sounds.empty()) return context.Findings.Count(FindingCode::RandomSoundsWithoutSound);
  const PickTimes times = TimesOf(context, record);
  SceneWriter& scene = context.Scene;
  const std::string group = TakeActorName(context, record.Header, "DYNAMBSOUND_");
  const std::string timer = "TIMER" + group, script = "SCRIPT" + group;
  WriteTimeSensor(scene, timer, times.Shortest == 0 ? 1 : times.Shortest, Cycles::Endless);
  WriteRandomScript(scene, record, times, script, sounds.size());
  const std::vector<std::string> clips = WriteClips(context, record, sounds, group);
  AddRoute(scene, script, "interval_changed", timer, "set_cycleInterval");
  AddRoute(scene, script, "enable_changed", timer, "set_enabled");
  AddRoute(scene, timer, "cycleTime", script, "set_testsound");
  for (std::size_t k = 1; k <= clips.size(); ++k)
    AddRoute(scene, script, OutputName(k), clips[k - 1], "startTime");
}

} // namespace quarvel
