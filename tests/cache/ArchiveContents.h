// What a value holds as one line of text, as tests/oracles/keyed_archive.py writes it: without sharing, sets and
// maps sorted. Only for values whose sharing does not multiply.
#pragma once

#include <string>

#include "common/Value.h"

namespace tavlo::test {

[[nodiscard]] std::string archiveContents(const std::optional<Value>& value);

}  // namespace tavlo::test
