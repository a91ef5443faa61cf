#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "bench/Areas.h"
#include "bench/peers/Peers.h"
#include "request/UrlEncode.h"

namespace tavlo::bench {
namespace {

std::string repeated(std::string_view pattern, std::size_t bytes) {
  std::string text;
  while (text.size() < bytes) text += pattern;
  text.resize(bytes);
  return text;
}

const std::array kTexts{
    std::pair{"12 B unreserved", std::string("network-1234")},
    std::pair{"36 B UUID", std::string("7D4E0F2A-93B1-4C58-A6D2-0E1F2A3B4C5D")},
    std::pair{"60 B sentence", std::string("Watch the new trailer, it starts in cinemas on Friday night.")},
    std::pair{"200 B JSON", repeated(R"({"id":17,"name":"clip one","tags":["a","b"],"ok":true},)", 200)},
    std::pair{"40 characters of Hindi", std::string("समाचार और मनोरंजन का नया ठिकाना यहाँ है।")},
    std::pair{"4 KiB unreserved", repeated("abcdefghij-0123456789.KLMNOP_~", 4096)},
    std::pair{"4 KiB mixed", repeated("Player of M\xC3\xBCller & co, level 7/9. ", 4096)},
};

// Our answer as it comes: no peer has to take a text out of an optional one either.
struct Answer {
  Text text;
};
std::string answerOf(const Answer& answer) { return answer.text.value(); }

}  // namespace

void addUrlEncode(Races& races) {
  for (const auto& [name, text] : kTexts) {
    Race& race = races.add("urlEncode", name).ours([text = Text(text)] { return Answer{urlEncode(text)}; });
    if constexpr (peers::kBoostUrl) {
      race.peer("Boost.URL", [text = text] { return peers::boostUrlEncode(text); });
      race.atMost(text.size() < 36 ? 0.6 : 0.4, "Boost.URL");
    }
    if constexpr (peers::kCurl) race.peer("libcurl", [text = text] { return peers::curlEscape(text); });
    if constexpr (peers::kGLib) race.peer("GLib", [text = text] { return peers::gLibEscape(text); });
    race.limit("a copy", [text = text] { return std::string(text); });
  }
}

}  // namespace tavlo::bench
