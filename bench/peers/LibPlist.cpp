#include "bench/peers/LibPlist.h"

#include <plist/plist.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <stdexcept>
#include <unordered_map>

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

namespace {

std::vector<plist_t> itemsOf(plist_t array) {
  std::vector<plist_t> items;
  items.reserve(plist_array_get_size(array));
  forEachItem(array, [&](plist_t item) { items.push_back(item); });
  return items;
}

enum class Form : std::uint8_t { unknown, list, map, date, other };

class Objects {
 public:
  explicit Objects(plist_t archive)
      : objects_(itemsOf(plist_dict_get_item(archive, "$objects"))), forms_(objects_.size()) {}

  [[nodiscard]] plist_t at(plist_t reference) const { return objects_.at(number(reference, &plist_get_uid_val)); }

  [[nodiscard]] Form formOf(plist_t object) {
    if (plist_get_node_type(object) != PLIST_DICT) return Form::other;
    const std::uint64_t index = number(plist_dict_get_item(object, "$class"), &plist_get_uid_val);
    Form& form = forms_.at(index);
    if (form == Form::unknown) {
      const char* const name = plist_get_string_ptr(plist_dict_get_item(objects_.at(index), "$classname"), nullptr);
      form = std::strcmp(name, "NSArray") == 0        ? Form::list
             : std::strcmp(name, "NSDictionary") == 0 ? Form::map
             : std::strcmp(name, "NSDate") == 0       ? Form::date
                                                      : Form::other;
    }
    return form;
  }

  [[nodiscard]] plist_t value(plist_t reference) {
    const plist_t object = at(reference);
    return formOf(object) == Form::date ? plist_dict_get_item(object, "NS.time") : object;
  }

 private:
  std::vector<plist_t> objects_;
  std::vector<Form> forms_;
};

}  // namespace

PlistRecords plistRecords(std::string_view archive) {
  PlistRecords list{.archive = plistFromBinary(archive), .records = {}};
  const plist_t root = list.archive.root.get();
  Objects objects(root);
  const plist_t top = objects.at(plist_dict_get_item(plist_dict_get_item(root, "$top"), "root"));
  if (objects.formOf(top) != Form::list) throw std::runtime_error("the root is no list");
  const std::vector<plist_t> references = itemsOf(plist_dict_get_item(top, "NS.objects"));
  list.records.reserve(references.size());
  for (const plist_t reference : references) {
    const plist_t map = objects.at(reference);
    if (objects.formOf(map) != Form::map) throw std::runtime_error("a record is no map");
    const std::vector<plist_t> keys = itemsOf(plist_dict_get_item(map, "NS.keys"));
    const std::vector<plist_t> values = itemsOf(plist_dict_get_item(map, "NS.objects"));
    PlistRecords::Record& record = list.records.emplace_back();
    record.reserve(keys.size());
    for (std::size_t i = 0; i < keys.size(); ++i) record.emplace_back(objects.at(keys[i]), objects.value(values.at(i)));
  }
  return list;
}

std::string answerOf(const PlistRecords& list) {
  Outline outline;
  outline.open('[');
  for (const PlistRecords::Record& record : list.records) {
    outline.open('{');
    for (const auto& [name, value] : record) {
      append(outline, name);
      append(outline, value);
    }
    outline.close('}');
  }
  outline.close(']');
  return outline.line();
}

namespace {

// Objects in the order in which they are met, each distinct plain one once.
class Table {
 public:
  Table() { add(plist_new_string("$null")); }

  [[nodiscard]] std::uint64_t plain(const Value& value) {
    if (const auto text = value.ifText()) {
      const auto [known, isNew] = texts_.try_emplace(*text, count_);
      if (isNew) add(plist_new_string(terminated_.assign(*text).c_str()));
      return known->second;
    }
    if (const Integer* const integer = value.ifInteger()) {
      const auto [known, isNew] = integers_.try_emplace(integer->low, count_);
      if (isNew) add(plist_new_uint(integer->low));
      return known->second;
    }
    if (const bool* const truth = value.ifBoolean()) {
      const auto [known, isNew] = truths_.try_emplace(*truth, count_);
      if (isNew) add(plist_new_bool(*truth ? 1 : 0));
      return known->second;
    }
    const auto [known, isNew] = dates_.try_emplace(value.ifDate()->seconds, count_);
    if (isNew) {
      const plist_t date = add(plist_new_dict());
      plist_dict_set_item(date, "NS.time", plist_new_real(value.ifDate()->seconds));
      plist_dict_set_item(date, "$class", plist_new_uid(classNamed("NSDate")));
    }
    return known->second;
  }

  std::uint64_t record(const ValueMap& map) {
    const std::uint64_t number = count_;
    const plist_t object = add(plist_new_dict());
    const plist_t keys = plist_new_array();
    const plist_t values = plist_new_array();
    for (const auto& [key, value] : map) plist_array_append_item(keys, plist_new_uid(plain(key)));
    for (const auto& [key, value] : map) plist_array_append_item(values, plist_new_uid(plain(value)));
    plist_dict_set_item(object, "NS.keys", keys);
    plist_dict_set_item(object, "NS.objects", values);
    plist_dict_set_item(object, "$class", plist_new_uid(classNamed("NSDictionary")));
    return number;
  }

  plist_t add(plist_t object) {
    plist_array_append_item(objects_, object);
    ++count_;
    return object;
  }

  [[nodiscard]] std::uint64_t classNamed(const char* name) {
    const auto [known, isNew] = classes_.try_emplace(name, count_);
    if (isNew) {
      const plist_t object = add(plist_new_dict());
      const plist_t classes = plist_new_array();
      plist_array_append_item(classes, plist_new_string(name));
      plist_array_append_item(classes, plist_new_string("NSObject"));
      plist_dict_set_item(object, "$classname", plist_new_string(name));
      plist_dict_set_item(object, "$classes", classes);
    }
    return known->second;
  }

  [[nodiscard]] plist_t take() const { return objects_; }

 private:
  plist_t objects_ = plist_new_array();
  std::uint64_t count_ = 0;
  std::unordered_map<std::string_view, std::uint64_t> texts_;
  std::string terminated_;
  std::unordered_map<std::uint64_t, std::uint64_t> integers_;
  std::unordered_map<bool, std::uint64_t> truths_;
  std::unordered_map<double, std::uint64_t> dates_;
  std::map<std::string_view, std::uint64_t> classes_;
};

}  // namespace

std::string plistArchive(const Value& list) {
  Table table;
  const plist_t root = table.add(plist_new_dict());
  const plist_t items = plist_new_array();
  for (const Value& record : *list.ifList()) {
    plist_array_append_item(items, plist_new_uid(table.record(*record.ifMap())));
  }
  plist_dict_set_item(root, "NS.objects", items);
  plist_dict_set_item(root, "$class", plist_new_uid(table.classNamed("NSArray")));

  const plist_t archive = plist_new_dict();
  const plist_t top = plist_new_dict();
  plist_dict_set_item(top, "root", plist_new_uid(1));
  plist_dict_set_item(archive, "$version", plist_new_uint(100'000));
  plist_dict_set_item(archive, "$archiver", plist_new_string("NSKeyedArchiver"));
  plist_dict_set_item(archive, "$top", top);
  plist_dict_set_item(archive, "$objects", table.take());
  char* bytes = nullptr;
  std::uint32_t size = 0;
  plist_to_bin(archive, &bytes, &size);
  std::string result(bytes, size);
  plist_to_bin_free(bytes);
  plist_free(archive);
  return result;
}

}  // namespace tavlo::bench::peers
