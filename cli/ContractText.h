// How the rows of the wire contracts are called, in every table that shows them.
#pragma once

#include <string>
#include <string_view>

#include "request/Contracts.h"

namespace tavlo::cli {

// The operation that a pair's value is read from; "" for a constant.
[[nodiscard]] std::string_view sourceName(const Source& source);

// The operation, or the constant as it is sent.
[[nodiscard]] std::string sourceText(const Source& source);

// "41 pairs joined by "&"" and the like.
[[nodiscard]] std::string formText(const Contract& contract);

// "text", "truth value", "integer", "list" or "constant".
[[nodiscard]] std::string_view kindName(const Source& source);

// "encoded", "as is", "constant", "boolean", "integer" or "list".
[[nodiscard]] std::string_view renderingName(Rendering rendering);

// The pages that the program prints (ContractMarkdown.cpp).
[[nodiscard]] std::string contractMarkdown(const Contract& contract);
[[nodiscard]] std::string allContractsMarkdown();

}  // namespace tavlo::cli
