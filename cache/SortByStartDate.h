// The order of cached records: by the value under "startdate", earliest first.
//
// Values   records are maps and objects of named classes, whose field "startdate" counts; a record of any other
//          kind has no date. Dates and numbers order by time and by number, integers and reals together, texts
//          by code point. Dates of mixed kinds order by kind: the null object, truth values (false first),
//          numbers, dates, texts, data, URLs, references, lists, sets, maps, objects, and within a kind as
//          Value's own order says, which tells equal numbers of different kinds apart: integer, real, narrow
//          real. Equal ones keep the order in which they came.
// Absent   records without a date, or with nothing at all (Uid{0}) for one, come first.
// Bounds   each record is looked into once; what dates share is compared once, and a set or a map in them is
//          sorted once, as common/ValueComparison.h says.
// Threads  a pure function.
// Throws   nothing but std::bad_alloc.
#pragma once

#include "common/Value.h"

namespace tavlo {

// The same records, each sharing its contents with the one it came from.
[[nodiscard]] ValueList sortedByStartDate(const ValueList& records);

}  // namespace tavlo
