// The one renderer of all wire contracts. Each row's source is read once, when the row is written.
#pragma once

#include <optional>
#include <string>

#include "common/Value.h"
#include "request/Contracts.h"

namespace tavlo {

// The pairs of a joined or appended contract as one query text. `package` may be nullptr: every text of it is
// then absent, its truth value false and its integers 0.
[[nodiscard]] std::string renderQuery(const Contract& contract, const TavloPackage* package);

// The keys of a contract as values, which all maps that are rendered of it can share.
[[nodiscard]] ValueList keysOf(const Contract& contract);

// The pairs of a map contract, under the keys of keysOf(), as a map in the contract's order.
[[nodiscard]] ValueMap renderMap(const Contract& contract, const ValueList& keys, const TavloPackage* package);

// One pair read once and rendered, for those who explain a request.
struct RenderedPair {
  Text raw;  // the source's value in its text form, before the encoder; absent where the source's is
  std::string sent;
};

// For a pair of any rendering but Rendering::list.
[[nodiscard]] RenderedPair explain(const Pair& pair, const TavloPackage* package);

}  // namespace tavlo
