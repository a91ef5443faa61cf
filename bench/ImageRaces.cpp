#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "bench/Areas.h"
#include "bench/Records.h"
#include "bench/peers/LibPng.h"
#include "bench/peers/Peers.h"
#include "platform/linux/PngImages.h"

namespace tavlo::bench {
namespace {

namespace fs = std::filesystem;

struct DecodedImage {
  std::shared_ptr<const platform::Image> image;
};

std::string answerOf(const DecodedImage& decoded) {
  if (!decoded.image) return "no image";
  const auto pixels = decoded.image->pixels();
  return answerOf(peers::Pixels{
      .width = decoded.image->width(), .height = decoded.image->height(), .rgba = {pixels.begin(), pixels.end()}});
}

// A file that is there from make() on, to the end.
class TemporaryFile {
 public:
  TemporaryFile() = default;
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    std::error_code ignored;
    fs::remove(path_, ignored);
  }

  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_ = (fs::temp_directory_path() / ("tavlo-bench-" + std::to_string(::getpid()) + ".png")).string();
};

// Smooth in three samples and rough in one, as a picture of the player's buttons with a photograph behind it is.
peers::Pixels picture(std::size_t side) {
  peers::Pixels pixels{.width = side, .height = side, .rgba = {}};
  pixels.rgba.reserve(4 * side * side);
  for (std::size_t i = 0; i < side * side; ++i) {
    const std::size_t x = i % side;
    const std::size_t y = i / side;
    for (const std::size_t sample : {x / 2, y / 2, (x + y) / 4 + scattered(i) % 5, 255 - (x ^ y) % 256}) {
      pixels.rgba.push_back(static_cast<std::uint8_t>(sample));
    }
  }
  return pixels;
}

[[maybe_unused]] Race& addDecoding(Races& races, const std::string& name, const std::string& path) {
  Race& race = races.add("PNG decode", name);
  race.ours([=] { return DecodedImage{linux_platform::PngImages().imageWithContentsOfFile(path)}; });
  if constexpr (peers::kLibPng) {
    race.peer("libpng, simplified", [=] { return peers::pngRead(path); });
    race.peer("libpng", [=] { return peers::pngReadInFull(path); });
    race.atMost(1.1);
  }
  return race;
}

}  // namespace

void addImages(Races& races) {
  if constexpr (peers::kLibPng) {
    addDecoding(races, "mute.png", TAVLO_RESOURCES "/TavloSDKResource.bundle/mute.png");
    const auto file = std::make_shared<TemporaryFile>();
    addDecoding(races, "512 x 512 pixels", file->path()).setUp([=, side = races.sized(512)] {
      peers::pngWrite(file->path(), picture(side));
    });
  }
}

}  // namespace tavlo::bench
