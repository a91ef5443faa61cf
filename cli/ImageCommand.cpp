// image: the images of the player's sound toggle, as the SDK loads them from its resource bundle.
#include <memory>
#include <string>

#include "TavloUtility.h"
#include "cli/CacheSession.h"
#include "cli/Commands.h"
#include "cli/Errors.h"
#include "cli/ImagePreview.h"
#include "cli/Input.h"
#include "cli/Json.h"
#include "cli/NewFile.h"
#include "cli/Place.h"
#include "platform/linux/PngImages.h"

namespace tavlo::cli {
namespace {

constexpr bool kHasImages = TAVLO_LINUX_IMAGES;

linux_platform::Options outsideOf(const Run& run) {
  linux_platform::Options outside;
  outside.resources = Place(run.globals).resources();
  return outside;
}

// Looked for beside the operation, whose log lines are one load's.
struct Found {
  std::string bundlePath;
  std::shared_ptr<platform::Bundle> bundle;
  Text path;
};

Found find(const std::string& name, const Run& run) {
  Found found{.bundlePath = (Place(run.globals).resources() / kResourceBundleName).string(), .bundle = {}, .path = {}};
  found.bundle = platform::current()->bundles().bundleWithPath(found.bundlePath);
  if (found.bundle) found.path = found.bundle->pathForResourceOfType(name, "png");
  return found;
}

std::string whyAbsent(const std::string& name, const Found& found) {
  if (!kHasImages) return "this program was built without libpng, so no file is an image; build it with libpng";
  if (!found.bundle) return "there is no resource bundle " + found.bundlePath + "; put it there";
  if (!found.path) return "there is no file " + name + ".png in " + found.bundlePath + "; put it there";
  return "cannot read " + *found.path +
         " as an image; put a PNG file there of at most 16 MiB, 8192 pixels a side and 16777216 pixels in all";
}

void preview(const platform::Image& image, const Run& run) {
  const TableLook look = run.output.tableLook();
  if (!look.styled && !look.width) return;
  run.output.answer(imagePreview(image, look.styled ? PreviewLook::blocks : PreviewLook::characters,
                                 look.width.value_or(kWidestPreview)));
}

void answer(const std::string& name, const platform::Image& image, const std::string& path, const Run& run) {
  if (run.globals.json) {
    return run.output.answerLine(
        toJson(Value::map({{"name", name}, {"width", image.width()}, {"height", image.height()}, {"path", path}})));
  }
  preview(image, run);
  run.output.answerLine(name + "  " + std::to_string(image.width()) + " x " + std::to_string(image.height()) +
                        " pixels  " + harmless(path));
}

}  // namespace

void execute(const ShowImage& command, const Run& run) {
  const CacheSession session(run, outsideOf(run));
  const bool isVolume = command.image == SoundImage::volume;
  const std::string name = isVolume ? "volume" : "mute";
  const auto image = isVolume ? TavloUtility::getVolumeImage() : TavloUtility::getMuteImage();
  const Found found = find(name, run);
  if (!image || !found.path) {
    const std::string why = whyAbsent(name, found);
    if (command.out) throw Failure("there is no image to write: " + why);
    answerText(std::nullopt, run);
    return run.output.note(why);
  }
  if (!command.out) return answer(name, *image, *found.path, run);
  const std::string bytes = readInput(*found.path, linux_platform::PngImages::kLargestFile);
  if (*command.out == "-") return run.output.answer(bytes);
  writeNewFile(*command.out, bytes);
  answer(name, *image, *found.path, run);
}

}  // namespace tavlo::cli
