#include <cstdint>

#include "c/Boundary.h"

namespace tavlo::c {
namespace {

#define TAVLO_SAME(kind, number) static_assert(static_cast<tavlo_kind>(Value::Kind::kind) == TAVLO_KIND_##number);
TAVLO_SAME(null, NULL)
TAVLO_SAME(boolean, BOOLEAN)
TAVLO_SAME(integer, INTEGER)
TAVLO_SAME(real, REAL)
TAVLO_SAME(date, DATE)
TAVLO_SAME(text, TEXT)
TAVLO_SAME(data, DATA)
TAVLO_SAME(url, URL)
TAVLO_SAME(uid, UID)
TAVLO_SAME(list, LIST)
TAVLO_SAME(set, SET)
TAVLO_SAME(map, MAP)
TAVLO_SAME(object, OBJECT)
#undef TAVLO_SAME

// Puts what was read where it is wanted; false when one of both is not there.
template <class From, class To>
bool put(const From* from, To* to) {
  if (!from || !to) return false;
  *to = *from;
  return true;
}

const ValueList* itemsOf(const tavlo_value* handle) {
  if (!handle) return nullptr;
  const ValueList* const list = valueOf(handle)->ifList();
  return list ? list : valueOf(handle)->ifSet();
}

const ValueMap* entriesOf(const tavlo_value* handle) {
  if (!handle) return nullptr;
  const ValueObject* const object = valueOf(handle)->ifObject();
  return object ? &object->fields : valueOf(handle)->ifMap();
}

const Integer* integerOf(const tavlo_value* handle) { return handle ? valueOf(handle)->ifInteger() : nullptr; }
const Real* realOf(const tavlo_value* handle) { return handle ? valueOf(handle)->ifReal() : nullptr; }

const ValueMap::Entry* entryAt(const tavlo_value* handle, std::size_t index) {
  const ValueMap* const entries = entriesOf(handle);
  return entries && index < entries->size() ? &entries->begin()[static_cast<std::ptrdiff_t>(index)] : nullptr;
}

tavlo_text borrowedIf(const std::optional<std::string_view>& text) {
  static constexpr char kEmpty[] = "";  // a view of nothing may lead nowhere, and then it would be absent
  if (!text) return {.data = nullptr, .size = 0};
  return text->data() ? borrowed(*text) : tavlo_text{.data = kEmpty, .size = 0};
}

std::int32_t orderOf(const tavlo_value* a, const tavlo_value* b) {
  if (!a || !b) return static_cast<std::int32_t>(a != nullptr) - static_cast<std::int32_t>(b != nullptr);
  const auto order = *valueOf(a) <=> *valueOf(b);
  return order < 0 ? -1 : static_cast<std::int32_t>(order > 0);
}

}  // namespace
}  // namespace tavlo::c

using tavlo::c::borrowed;
using tavlo::c::borrowedIf;
using tavlo::c::entriesOf;
using tavlo::c::entryAt;
using tavlo::c::guarded;
using tavlo::c::handleOf;
using tavlo::c::integerOf;
using tavlo::c::itemsOf;
using tavlo::c::orderOf;
using tavlo::c::put;
using tavlo::c::realOf;
using tavlo::c::require;
using tavlo::c::valueOf;

tavlo_kind tavlo_value_kind(const tavlo_value* value) {
  return value ? static_cast<tavlo_kind>(valueOf(value)->kind()) : TAVLO_KIND_ABSENT;
}
bool tavlo_value_boolean(const tavlo_value* value, bool* boolean) {
  return value && put(valueOf(value)->ifBoolean(), boolean);
}
bool tavlo_value_int64(const tavlo_value* value, int64_t* integer) {
  const tavlo::Integer* const whole = integerOf(value);
  if (!whole || !whole->fitsSigned()) return false;
  const auto low = static_cast<int64_t>(whole->low);
  return put(&low, integer);
}
bool tavlo_value_uint64(const tavlo_value* value, uint64_t* integer) {
  const tavlo::Integer* const whole = integerOf(value);
  return whole && whole->fitsUnsigned() && put(&whole->low, integer);
}
bool tavlo_value_int128(const tavlo_value* value, int64_t* high, uint64_t* low) {
  const tavlo::Integer* const whole = integerOf(value);
  return whole && low && put(&whole->high, high) && put(&whole->low, low);
}
bool tavlo_value_double(const tavlo_value* value, double* real) {
  const tavlo::Real* const number = realOf(value);
  return number && put(&number->value, real);
}
bool tavlo_value_is_float(const tavlo_value* value) {
  const tavlo::Real* const number = realOf(value);
  return number && number->narrow;
}
bool tavlo_value_date(const tavlo_value* value, double* seconds) {
  const tavlo::Date* const date = value ? valueOf(value)->ifDate() : nullptr;
  return date && put(&date->seconds, seconds);
}
bool tavlo_value_uid(const tavlo_value* value, uint64_t* index) {
  const tavlo::Uid* const uid = value ? valueOf(value)->ifUid() : nullptr;
  return uid && put(&uid->index, index);
}

tavlo_text tavlo_value_text(const tavlo_value* value) {
  return borrowedIf(value ? valueOf(value)->ifText() : std::nullopt);
}
tavlo_text tavlo_value_data(const tavlo_value* value) {
  return borrowedIf(value ? valueOf(value)->ifData() : std::nullopt);
}
tavlo_text tavlo_value_url(const tavlo_value* value) {
  const tavlo::ValueUrl* const url = value ? valueOf(value)->ifUrl() : nullptr;
  return url ? borrowed(std::string_view(url->text)) : borrowedIf(std::nullopt);
}
tavlo_text tavlo_value_class_name(const tavlo_value* value) {
  const tavlo::ValueObject* const object = value ? valueOf(value)->ifObject() : nullptr;
  return object ? borrowed(std::string_view(object->className)) : borrowedIf(std::nullopt);
}
const tavlo_value* tavlo_value_url_base(const tavlo_value* value) {
  const tavlo::ValueUrl* const url = value ? valueOf(value)->ifUrl() : nullptr;
  return url && url->base ? handleOf(&*url->base) : nullptr;
}

size_t tavlo_value_count(const tavlo_value* value) {
  if (const tavlo::ValueList* const items = itemsOf(value)) return items->size();
  const tavlo::ValueMap* const entries = entriesOf(value);
  return entries ? entries->size() : 0;
}
const tavlo_value* tavlo_value_item(const tavlo_value* value, size_t index) {
  const tavlo::ValueList* const items = itemsOf(value);
  return items && index < items->size() ? handleOf(&(*items)[index]) : nullptr;
}
const tavlo_value* tavlo_value_key(const tavlo_value* value, size_t index) {
  const tavlo::ValueMap::Entry* const entry = entryAt(value, index);
  return entry ? handleOf(&entry->first) : nullptr;
}
const tavlo_value* tavlo_value_entry(const tavlo_value* value, size_t index) {
  const tavlo::ValueMap::Entry* const entry = entryAt(value, index);
  return entry ? handleOf(&entry->second) : nullptr;
}
const tavlo_value* tavlo_value_find(const tavlo_value* value, tavlo_text key) {
  const tavlo::ValueMap* const entries = entriesOf(value);
  if (!entries || !key.data || key.size > PTRDIFF_MAX) return nullptr;
  return handleOf(entries->find({key.data, key.size}));
}
tavlo_status tavlo_value_compare(const tavlo_value* a, const tavlo_value* b, int32_t* order) {
  if (order) *order = 0;
  return guarded(__func__, [=] {
    require(order, "the result");
    *order = orderOf(a, b);
  });
}
