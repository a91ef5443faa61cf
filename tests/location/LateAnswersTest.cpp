// Four fetches and their four answers in every order, each answer of every kind: whichever comes last counts.
#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <string>
#include <vector>

#include "TavloUtility.h"
#include "tests/support/LocationPlatform.h"
#include "tests/support/Scale.h"

namespace tavlo {
namespace {

constexpr std::size_t kFetches = 4;

enum class Answer { placemark, errorWithList, absentList, emptyList, never };
constexpr std::size_t kAnswers = 5;

using Answers = std::array<Answer, kFetches>;

struct Event {
  bool isAnswer = false;
  std::size_t number = 0;
};
using Order = std::vector<Event>;

// All orders in which each answer follows its own fetch.
void addOrders(std::vector<Order>& orders, Order& order, std::size_t fetched, unsigned answered) {
  if (order.size() == 2 * kFetches) return orders.push_back(order);
  if (fetched < kFetches) {
    order.push_back({.isAnswer = false, .number = fetched});
    addOrders(orders, order, fetched + 1, answered);
    order.pop_back();
  }
  for (std::size_t number = 0; number < fetched; ++number) {
    if ((answered >> number & 1U) != 0) continue;
    order.push_back({.isAnswer = true, .number = number});
    addOrders(orders, order, fetched, answered | 1U << number);
    order.pop_back();
  }
}

std::vector<Order> allOrders() {
  std::vector<Order> orders;
  Order order;
  addOrders(orders, order, 0, 0);
  return orders;
}

Answers answersOf(std::size_t number) {
  Answers answers{};
  for (Answer& answer : answers) {
    answer = static_cast<Answer>(number % kAnswers);
    number /= kAnswers;
  }
  return answers;
}

platform::Placemarks placemarks(std::size_t number) { return {{.locality = "city " + std::to_string(number)}}; }

// The address after all of it.
std::string model(const Order& order, const Answers& answers) {
  std::string address;
  for (const auto& [isAnswer, number] : order) {
    if (!isAnswer) address = "";
    if (isAnswer && answers[number] == Answer::placemark)
      address = R"({"city":"city )" + std::to_string(number) + "\"}";
    if (isAnswer && answers[number] == Answer::absentList) address = "{}";
  }
  return address;
}

// Whether the handler threw what an empty list throws, and nothing else did.
bool give(const test::LocationWorld& world, std::size_t lookUp, std::size_t number, Answer answer) {
  try {
    switch (answer) {
      case Answer::placemark: world->answer(lookUp, placemarks(number)); break;
      case Answer::errorWithList: world->answer(lookUp, placemarks(number), "failed"); break;
      case Answer::absentList: world->answer(lookUp, std::nullopt); break;
      case Answer::emptyList: world->answer(lookUp, platform::Placemarks()); break;
      case Answer::never: break;
    }
  } catch (const std::out_of_range&) {
    return true;
  }
  return false;
}

TEST(LateAnswers, TheLastOneCountsInEveryOrder) {
  const test::LocationWorld world;
  const std::vector<Order> orders = allOrders();
  std::size_t runs = 0;
  ASSERT_EQ(orders.size(), 105U);
  const std::size_t step = test::atFullFigures() ? 1 : 23;  // coprime to 5, so that each kind comes in each place

  for (const Order& order : orders) {
    for (std::size_t number = 0; number < 625; number += step) {
      const Answers answers = answersOf(number);
      const std::size_t first = world->lookUps();
      for (const Event& event : order) {
        if (!event.isAnswer) {
          TavloUtility::fetchCurrentLocation();
        } else {
          const Answer answer = answers[event.number];
          ASSERT_EQ(give(world, first + event.number, event.number, answer), answer == Answer::emptyList);
        }
      }
      ASSERT_EQ(world.address(), model(order, answers));
      static_cast<void>(world->takeCalls());
      ++runs;
    }
  }

  EXPECT_EQ(runs, test::atFullFigures() ? 65'625U : 2'940U);
  test::reached("T12", std::to_string(runs) + " of 65625 orders as the model says");
}

}  // namespace
}  // namespace tavlo
