// The four requests, as the program prints and explains them. What they are made from is what is installed.
#pragma once

#include <string>
#include <vector>

#include "cli/Display.h"
#include "common/Text.h"
#include "common/Value.h"
#include "request/Contracts.h"

namespace tavlo::cli {

// What the operation of the contract answers: the query text, or the payload as one line of JSON.
[[nodiscard]] std::string requestText(const Contract& contract);

struct ExplainedPair {
  const Pair* pair = nullptr;
  Text raw;    // what was read, in its text form; of a list how many records there are
  Value sent;  // a text, or the list
};

[[nodiscard]] std::vector<ExplainedPair> explainRequest(const Contract& contract);

[[nodiscard]] std::string explanationTable(const std::vector<ExplainedPair>& pairs, const TableLook& look);
[[nodiscard]] Value explanationValue(const std::vector<ExplainedPair>& pairs);

}  // namespace tavlo::cli
