#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <future>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "host/AnswerThread.h"
#include "tests/support/Gate.h"
#include "tests/support/ThreadsAtOnce.h"

namespace tavlo::host {
namespace {

// What was posted before this call has run when it returns.
void waitForAnswers() {
  test::Gate done;
  ASSERT_TRUE(AnswerThread::post([&] { done.open(); }));
  done.wait();
}

TEST(AnswerThread, RunsAnswersOneAfterAnotherInTheirOrder) {
  std::vector<int> ran;  // by that thread alone

  for (int i = 0; i < 5; ++i) ASSERT_TRUE(AnswerThread::post([&ran, i] { ran.push_back(i); }));
  waitForAnswers();

  EXPECT_THAT(ran, testing::ElementsAre(0, 1, 2, 3, 4));
}

TEST(AnswerThread, RunsThemOnOneThreadThatIsNotTheCallers) {
  std::vector<std::thread::id> threads;

  for (int i = 0; i < 2; ++i) AnswerThread::post([&] { threads.push_back(std::this_thread::get_id()); });
  waitForAnswers();

  ASSERT_EQ(threads.size(), 2U);
  EXPECT_EQ(threads[0], threads[1]);
  EXPECT_NE(threads[0], std::this_thread::get_id());
}

TEST(AnswerThread, WhatAnAnswerThrowsEndsThatAnswerOnly) {
  std::vector<int> ran;

  AnswerThread::post([] { throw std::out_of_range("index 0 of nothing"); });
  AnswerThread::post([] { throw 7; });
  AnswerThread::post([&] { ran.push_back(3); });
  waitForAnswers();

  EXPECT_THAT(ran, testing::ElementsAre(3));
}

TEST(AnswerThread, AnAnswerMayPostAnother) {
  test::Gate done;

  AnswerThread::post([&] { AnswerThread::post([&] { done.open(); }); });

  done.wait();
}

TEST(AnswerThread, AnswersOfManyThreadsAllRun) {
  constexpr int kThreads = 8;
  constexpr int kEach = 1000;
  int ran = 0;

  test::onThreadsAtOnce(kThreads, [&](int) {
    for (int i = 0; i < kEach; ++i) AnswerThread::post([&] { ++ran; });
  });
  waitForAnswers();

  EXPECT_EQ(ran, kThreads * kEach);
}

// Gates that a thread may still wait at when the process ends are never destroyed.
[[noreturn]] void exitWhileAnAnswerDoesNotEnd() {
  static auto& begun = *new test::Gate;
  static auto& never = *new test::Gate;
  static_cast<void>(std::atexit([] {
    const bool posted = AnswerThread::post([] { std::fputs("ran after the exit", stderr); });
    std::fputs(posted ? "taken" : "refused", stderr);
  }));
  AnswerThread::post([] {
    begun.open();
    never.wait();
  });
  AnswerThread::post([] { std::fputs("ran after the exit", stderr); });
  begun.wait();
  std::exit(7);  // NOLINT(concurrency-mt-unsafe)
}

[[noreturn]] void exitFromAnAnswer() {
  static auto& never = *new test::Gate;
  AnswerThread::post([] { std::exit(7); });  // NOLINT(concurrency-mt-unsafe)
  never.wait();
  std::abort();
}

TEST(AnswerThreadDeathTest, ProcessExitsAlthoughAnAnswerDoesNotEndAndNoneBeginsAfterIt) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");

  EXPECT_EXIT(exitWhileAnAnswerDoesNotEnd(), testing::ExitedWithCode(7), "^refused$");
}

TEST(AnswerThreadDeathTest, AnAnswerMayEndTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");

  EXPECT_EXIT(exitFromAnAnswer(), testing::ExitedWithCode(7), "^$");
}

}  // namespace
}  // namespace tavlo::host
