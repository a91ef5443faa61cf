// What the words of the command line stand for.
#pragma once

#include <array>
#include <charconv>
#include <cstdint>
#include <string>

#include "cli/CommandLine.h"
#include "cli/Errors.h"
#include "cli/Named.h"

namespace tavlo::cli {

inline constexpr auto kIdentifierNames = std::to_array<Named<Identifier>>({
    {"app", Identifier::app},
    {"optional", Identifier::optional},
    {"security", Identifier::security},
    {"ApplicationId", Identifier::app},
    {"OptionalId", Identifier::optional},
    {"SecurityKey", Identifier::security},
});
inline constexpr auto kFormatNames = std::to_array<Named<ContractFormat>>(
    {{"table", ContractFormat::table}, {"json", ContractFormat::json}, {"markdown", ContractFormat::markdown}});
inline constexpr auto kColorNames =
    std::to_array<Named<Color>>({{"auto", Color::automatic}, {"always", Color::always}, {"never", Color::never}});

[[nodiscard]] inline std::int64_t countOf(const std::string& text) {
  std::int64_t count = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
  if (error == std::errc() && end == text.data() + text.size() && count >= 1) return count;
  throw UsageError("COUNT \"" + text + "\" is no integer from 1 to 9223372036854775807");
}

}  // namespace tavlo::cli
