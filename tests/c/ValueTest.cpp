#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/c/Tables.h"

namespace tavlo::test {
namespace {

OwnedValue listOf(const std::vector<const tavlo_value*>& items) {
  return owned(tavlo_value_from_list(items.data(), items.size()));
}

int32_t orderOf(const tavlo_value* a, const tavlo_value* b) {
  int32_t order = 7;
  EXPECT_EQ(tavlo_value_compare(a, b, &order), TAVLO_OK);
  return order;
}

TEST(CValue, NumbersComeBackWhereTheyHaveRoom) {
  const auto huge = owned(tavlo_value_from_int128(1, 5));
  const auto least = owned(tavlo_value_from_int64(INT64_MIN));
  int64_t integer = 0;
  uint64_t natural = 0;
  int64_t high = 0;
  uint64_t low = 0;

  EXPECT_TRUE(tavlo_value_int128(huge.get(), &high, &low));
  EXPECT_EQ(high, 1);
  EXPECT_EQ(low, 5U);
  EXPECT_FALSE(tavlo_value_int64(huge.get(), &integer));
  EXPECT_FALSE(tavlo_value_uint64(huge.get(), &natural));
  EXPECT_TRUE(tavlo_value_int64(least.get(), &integer));
  EXPECT_EQ(integer, INT64_MIN);
  EXPECT_FALSE(tavlo_value_uint64(least.get(), &natural));
}

TEST(CValue, RealsKnowTheWidthTheyAreStoredIn) {
  const auto narrow = owned(tavlo_value_from_float(0.1F));
  const auto wide = owned(tavlo_value_from_double(0.1));
  double real = 0;

  EXPECT_TRUE(tavlo_value_is_float(narrow.get()));
  EXPECT_FALSE(tavlo_value_is_float(wide.get()));
  EXPECT_TRUE(tavlo_value_double(narrow.get(), &real));
  EXPECT_EQ(real, static_cast<double>(0.1F));
}

TEST(CValue, ReadersOfOtherKindsAnswerNothing) {
  const auto text = textValue("a");
  bool boolean = true;
  double real = 5;
  uint64_t index = 5;

  EXPECT_FALSE(tavlo_value_boolean(text.get(), &boolean));
  EXPECT_FALSE(tavlo_value_double(text.get(), &real));
  EXPECT_FALSE(tavlo_value_date(text.get(), &real));
  EXPECT_FALSE(tavlo_value_uid(text.get(), &index));
  EXPECT_EQ(tavlo_value_data(text.get()).data, nullptr);
  EXPECT_EQ(tavlo_value_url(text.get()).data, nullptr);
  EXPECT_EQ(tavlo_value_class_name(text.get()).data, nullptr);
  EXPECT_EQ(tavlo_value_url_base(text.get()), nullptr);
  EXPECT_EQ(tavlo_value_count(text.get()), 0U);
  EXPECT_EQ(tavlo_value_key(text.get(), 0), nullptr);
  EXPECT_EQ(tavlo_value_entry(text.get(), 0), nullptr);
  EXPECT_EQ(tavlo_value_find(text.get(), tavlo_text_of("a")), nullptr);
  EXPECT_TRUE(boolean);
  EXPECT_EQ(real, 5);
  EXPECT_EQ(index, 5U);
}

TEST(CValue, NoValueAndNoResultAreAnsweredWithNothing) {
  const auto yes = owned(tavlo_value_from_boolean(true));

  EXPECT_EQ(tavlo_value_kind(nullptr), TAVLO_KIND_ABSENT);
  EXPECT_FALSE(tavlo_value_boolean(nullptr, nullptr));
  EXPECT_FALSE(tavlo_value_boolean(yes.get(), nullptr));
  EXPECT_EQ(tavlo_value_text(nullptr).data, nullptr);
  EXPECT_EQ(tavlo_value_item(nullptr, 0), nullptr);
  EXPECT_EQ(tavlo_value_copy(nullptr), nullptr);
  EXPECT_EQ(textOf(tavlo_value_text_form, static_cast<const tavlo_value*>(nullptr)), "(null)");
}

TEST(CValue, EmptyTextAndDataAreNotAbsent) {
  const auto text = textValue("");
  const auto data = owned(tavlo_value_from_data(tavlo_text_of("")));

  EXPECT_NE(tavlo_value_text(text.get()).data, nullptr);
  EXPECT_NE(tavlo_value_data(data.get()).data, nullptr);
  EXPECT_EQ(tavlo_value_text(text.get()).size, 0U);
}

TEST(CValue, MapsKeepTheLastValueAtTheFirstPlace) {
  const auto a = textValue("a");
  const auto b = textValue("b");
  const auto one = owned(tavlo_value_from_int64(1));
  const std::array<const tavlo_value*, 3> keys = {a.get(), b.get(), a.get()};
  const std::array<const tavlo_value*, 3> values = {a.get(), b.get(), one.get()};

  const auto map = owned(tavlo_value_from_map(keys.data(), values.data(), 3));

  EXPECT_EQ(formOf(map), "{a = 1; b = b}");
  EXPECT_EQ(asString(tavlo_value_text(tavlo_value_key(map.get(), 1))), "b");
  EXPECT_EQ(tavlo_value_kind(tavlo_value_find(map.get(), tavlo_text_of("a"))), TAVLO_KIND_INTEGER);
  EXPECT_EQ(tavlo_value_find(map.get(), tavlo_text_of("c")), nullptr);
  EXPECT_EQ(tavlo_value_find(map.get(), tavlo_text_of(nullptr)), nullptr);
  EXPECT_EQ(tavlo_value_key(map.get(), 2), nullptr);
}

TEST(CValue, ObjectsAndUrlsComeBackInParts) {
  const auto fields = owned(tavlo_value_from_map(nullptr, nullptr, 0));
  const auto base = owned(tavlo_value_from_url(tavlo_text_of("http://h/"), nullptr));
  const auto url = owned(tavlo_value_from_url(tavlo_text_of("a"), base.get()));
  const auto object = owned(tavlo_value_from_object(tavlo_text_of("Person"), fields.get()));

  EXPECT_EQ(asString(tavlo_value_class_name(object.get())), "Person");
  EXPECT_EQ(tavlo_value_kind(object.get()), TAVLO_KIND_OBJECT);
  EXPECT_EQ(asString(tavlo_value_url(url.get())), "a");
  EXPECT_EQ(asString(tavlo_value_url(tavlo_value_url_base(url.get()))), "http://h/");
}

TEST(CValue, WrongPartsAreRefusedByName) {
  const auto text = textValue("a");

  EXPECT_EQ(tavlo_value_from_url(tavlo_text_of("a"), text.get()), nullptr);
  EXPECT_STREQ(tavlo_last_error(), "tavlo_value_from_url: the base must be a URL or a null pointer");
  EXPECT_EQ(tavlo_value_from_object(tavlo_text_of("A"), text.get()), nullptr);
  EXPECT_STREQ(tavlo_last_error(), "tavlo_value_from_object: the fields must be a map");
  EXPECT_EQ(tavlo_value_from_text(tavlo_text_of(nullptr)), nullptr);
  EXPECT_STREQ(tavlo_last_error(), "tavlo_value_from_text: the text must not be absent");
  EXPECT_EQ(tavlo_value_from_set(nullptr, 2), nullptr);
  EXPECT_STREQ(tavlo_last_error(), "tavlo_value_from_set: the array of items must not be a null pointer");
  EXPECT_EQ(tavlo_value_from_data({"a", SIZE_MAX}), nullptr);
  EXPECT_STREQ(tavlo_last_error(), "tavlo_value_from_data: the size of the bytes is beyond that of any text");
}

TEST(CValue, SharedItemsAreLookedIntoOnce) {
  OwnedValue value = textValue("a");

  for (int level = 0; level < 200; ++level) value = listOf({value.get(), value.get()});

  EXPECT_EQ(tavlo_value_count(value.get()), 2U);
  EXPECT_EQ(orderOf(tavlo_value_item(value.get(), 0), tavlo_value_item(value.get(), 1)), 0);
}

TEST(CValue, AMapAsAKeyCountsAsALevelToo) {
  OwnedValue value = textValue("a");
  const auto null = owned(tavlo_value_null());
  const tavlo_value* const none = null.get();
  int levels = 0;

  for (; levels < 2000; ++levels) {
    const tavlo_value* const key = value.get();
    auto outer = owned(tavlo_value_from_map(&key, &none, 1));
    if (!outer) break;
    value = std::move(outer);
  }

  EXPECT_EQ(levels, TAVLO_VALUE_DEEPEST);
}

TEST(CValue, CopiesOutliveWhatTheyWereReadFrom) {
  OwnedValue list = listOf({textValue("a text that is longer than what fits").get()});

  const auto copy = owned(tavlo_value_copy(tavlo_value_item(list.get(), 0)));
  list.reset();

  EXPECT_EQ(formOf(copy), "a text that is longer than what fits");
}

TEST(CValue, OrderIsTotal) {
  const auto one = owned(tavlo_value_from_int64(1));
  const auto half = owned(tavlo_value_from_double(0.5));

  EXPECT_EQ(orderOf(nullptr, nullptr), 0);
  EXPECT_EQ(orderOf(nullptr, one.get()), -1);
  EXPECT_EQ(orderOf(one.get(), nullptr), 1);
  EXPECT_EQ(orderOf(one.get(), half.get()), 1);
  EXPECT_EQ(tavlo_value_compare(nullptr, nullptr, nullptr), TAVLO_MISUSE);
}

TEST(CValue, WhatNoFileHoldsIsTold) {
  const auto uid = owned(tavlo_value_from_uid(3));
  const auto url = owned(tavlo_value_from_url(tavlo_text_of("a"), nullptr));
  tavlo_string bytes{};
  tavlo_value* value = nullptr;

  EXPECT_EQ(tavlo_archive_encode(uid.get(), &bytes), TAVLO_NO_ARCHIVE);
  EXPECT_EQ(tavlo_property_list_encode(url.get(), &bytes), TAVLO_NO_ARCHIVE);
  EXPECT_STREQ(tavlo_last_error(),
               "tavlo_property_list_encode: a property list holds no URL and no object of a class, and nothing nested "
               "deeper than 512 levels");
  EXPECT_EQ(tavlo_property_list_decode(tavlo_text_of("none"), &value), TAVLO_NO_ARCHIVE);
  EXPECT_EQ(tavlo_archive_decode(tavlo_text_of("none"), &value), TAVLO_NO_ARCHIVE);
  EXPECT_EQ(bytes.data, nullptr);
  EXPECT_EQ(value, nullptr);
}

TEST(CValue, AnArchiveOfNothingAtAllComesBackSo) {
  tavlo_string bytes{};
  ASSERT_EQ(tavlo_archive_encode(nullptr, &bytes), TAVLO_OK);
  tavlo_value* root = nullptr;

  EXPECT_EQ(tavlo_archive_decode({bytes.data, bytes.size}, &root), TAVLO_OK);
  EXPECT_EQ(root, nullptr);
  tavlo_string_free(&bytes);
  EXPECT_EQ(bytes.data, nullptr);
}

}  // namespace
}  // namespace tavlo::test
