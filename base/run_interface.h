#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

struct TexturePoint;

/// What a run tells its user and asks of them. The window and the command line implement it; a run calls it from its
/// own thread only.
class RunInterface {
 public:
  virtual ~RunInterface() = default;

  virtual void ShowPass(std::string_view /*text*/) {} ///< the label `LabelPos`
  /// The label `LabelProgress`: a text, and the number that belongs to it unless it is negative. Called for every face,
  /// so an implementation decides how often it draws.
  virtual void ShowItem(std::string_view /*text*/, long /*number*/ = -1) {}
  virtual void ShowFraction(double /*done*/) {}      ///< how much of the run is done, 0 to 1
  virtual void ShowUniqueMaterials(int /*count*/) {} ///< the label `LabelUniqueMaterials`

  /// Asked for every face: whether its texture is to be shown. It has a cost, so not for all of them.
  virtual bool WantsTextureMapping() { return false; }
  /// The preview `PictureTexture`: an image, which may be missing or none (an empty path), and the corners of the face
  /// on it.
  virtual void ShowTextureMapping(const std::filesystem::path& /*image*/,
                                  const std::vector<TexturePoint>& /*corners*/) {}

  virtual void ShowMessage(const std::string& /*text*/) {} ///< a message box; one line
  virtual void Beep() {}

  virtual void ProcessEvents() {}                ///< lets pending window events happen
  virtual bool RunActive() { return true; }      ///< false while the run is to pause
  virtual bool StopRequested() { return false; } ///< true when the run is to end
};

} // namespace quarvel
