#include "bench/peers/LibPlist.h"

#include <plist/plist.h>

#include <cstdint>
#include <cstdlib>
#include <functional>

#include "bench/Outline.h"

namespace tavlo::bench::peers {
namespace {

void append(Outline& outline, plist_t node);

// Calls with each key and value. Neither is copied.
void forEachEntry(plist_t dictionary, const std::function<void(plist_t, plist_t)>& call) {
  plist_dict_iter iterator = nullptr;
  plist_dict_new_iter(dictionary, &iterator);
  for (;;) {
    plist_t value = nullptr;
    plist_dict_next_item(dictionary, iterator, nullptr, &value);
    if (!value) break;
    call(plist_dict_item_get_key(value), value);
  }
  std::free(iterator);
}

void forEachItem(plist_t array, const std::function<void(plist_t)>& call) {
  plist_array_iter iterator = nullptr;
  plist_array_new_iter(array, &iterator);
  for (;;) {
    plist_t item = nullptr;
    plist_array_next_item(array, iterator, &item);
    if (!item) break;
    call(item);
  }
  std::free(iterator);
}

template <class Number>
Number number(plist_t node, void (*get)(plist_t, Number*)) {
  Number value{};
  get(node, &value);
  return value;
}

std::string keyOf(plist_t node) {
  char* key = nullptr;
  plist_get_key_val(node, &key);
  std::string copy = key;
  std::free(key);
  return copy;
}

double secondsOf(plist_t node) {
  std::int32_t seconds = 0;
  std::int32_t microseconds = 0;
  plist_get_date_val(node, &seconds, &microseconds);
  return seconds + microseconds / 1e6;
}

void appendMap(Outline& outline, plist_t node) {
  outline.open('{');
  forEachEntry(node, [&](plist_t key, plist_t value) {
    outline.text(keyOf(key));
    append(outline, value);
  });
  outline.close('}');
}

void append(Outline& outline, plist_t node) {
  std::uint64_t length = 0;
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: return outline.boolean(number(node, &plist_get_bool_val) != 0);
    case PLIST_UINT: return outline.integer(number(node, &plist_get_uint_val));
    case PLIST_REAL: return outline.real(number(node, &plist_get_real_val));
    case PLIST_DATE: return outline.date(secondsOf(node));
    case PLIST_UID: return outline.uid(number(node, &plist_get_uid_val));
    case PLIST_STRING: return outline.text({plist_get_string_ptr(node, &length), length});
    case PLIST_DATA: return outline.data({plist_get_data_ptr(node, &length), length});
    case PLIST_DICT: return appendMap(outline, node);
    case PLIST_ARRAY:
      outline.open('[');
      forEachItem(node, [&](plist_t item) { append(outline, item); });
      return outline.close(']');
    default: return outline.other();
  }
}

}  // namespace

void PlistFree::operator()(void* node) const { plist_free(node); }

Plist plistFromBinary(std::string_view bytes) {
  plist_t root = nullptr;
  plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
  return {.root = std::unique_ptr<void, PlistFree>(root)};
}

std::string answerOf(const Plist& list) {
  Outline outline;
  if (list.root) append(outline, list.root.get());
  return outline.line();
}

}  // namespace tavlo::bench::peers
