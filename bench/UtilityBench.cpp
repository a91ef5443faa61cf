// The encoder, the digest and the URL grammar.
#include <benchmark/benchmark.h>

#include <string>

#include "TavloUtility.h"
#include "request/UrlEncode.h"

namespace tavlo::bench {
namespace {

constexpr std::int64_t kKibi = 1024;

// A text of that many bytes, made of copies of a pattern.
std::string textOf(std::int64_t bytes, const std::string& pattern) {
  std::string text;
  while (text.size() < static_cast<std::size_t>(bytes)) text += pattern;
  text.resize(static_cast<std::size_t>(bytes));
  return text;
}

void urlEncodeOf(benchmark::State& state, const std::string& pattern) {
  const Text text = textOf(state.range(0), pattern);
  for (auto iteration : state) benchmark::DoNotOptimize(urlEncode(text));
  state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK_CAPTURE(urlEncodeOf, unreserved, "abcdefghij-0123456789")->Arg(16)->Arg(256)->Arg(64 * kKibi);
BENCHMARK_CAPTURE(urlEncodeOf, mixed, "Player of M\xC3\xBCller & co ")->Arg(16)->Arg(256)->Arg(64 * kKibi);
BENCHMARK_CAPTURE(urlEncodeOf, reserved, "&=/ ?#")->Arg(16)->Arg(256)->Arg(64 * kKibi);

void md5(benchmark::State& state) {
  const std::optional<Value> text = Value(textOf(state.range(0), "https://host/clip.mp4?"));
  for (auto iteration : state) benchmark::DoNotOptimize(TavloUtility::md5(text));
  state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(md5)->Arg(0)->Arg(64)->Arg(kKibi)->Arg(kKibi* kKibi);

void extensionOf(benchmark::State& state, const std::string& url) {
  const Text text = url;
  for (auto iteration : state) benchmark::DoNotOptimize(TavloUtility::getFileExtensionFromUrl(text));
}
BENCHMARK_CAPTURE(extensionOf, usual, "https://media.example.org/ads/2024/clip-17.mp4?token=abc#start");
BENCHMARK_CAPTURE(extensionOf, encoded, "https://media.example.org/ads/caf%C3%A9%20clip.m%704");
BENCHMARK_CAPTURE(extensionOf, rejected, "https://media.example.org/ads/clip 17.mp4");

}  // namespace
}  // namespace tavlo::bench
