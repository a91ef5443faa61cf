// tavlo locate and tavlo doctor with the desktop's own position daemon, on a bus of the test's own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <string>
#include <vector>

#include "tests/cli/ChildProgram.h"
#include "tests/support/GeoClueWorld.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::cli::test {
namespace {

using tavlo::test::GeoClueWorld;

constexpr const char* kNothing =
    "position  (null), (null)\naddress   (null)\nsent      lat=(null)\nsent      long=(null)\n"
    "sent      address=(null)\n";

// On the world's bus, which is the system's of this process.
class LocateDesktop : public testing::Test {
 protected:
  LocateDesktop() {
    tavlo::test::writeFile(folder_ / "t.json",
                           R"({"places": [{"latitude": 28.6, "longitude": 77.2, "locality": "New Delhi"}]})");
  }
  [[nodiscard]] Result tavlo(const std::vector<std::string>& words, Setting setting = {}) const {
    setting.environment["DBUS_SYSTEM_BUS_ADDRESS"] = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
    setting.folder = folder_.path().string();
    return run(words, setting);
  }

  const tavlo::test::TemporaryFolder folder_;
  GeoClueWorld world_;
};

TEST_F(LocateDesktop, WaitingAsksForPermissionAndFindsTheReceiversPosition) {
  world_.run("daemon");
  world_.run("agent");
  world_.run("at 2836.8340,N,07712.5400,E");

  const Result located = tavlo({"locate", "--wait", "--geocoder", "table:t.json", "--why", "--quiet"});

  EXPECT_EQ(located, (Result{0,
                             "position  28.613900, 77.209000\n"
                             "address   {\"city\":\"New Delhi\"}\n"
                             "sent      lat=28.613900\n"
                             "sent      long=77.209000\n"
                             "sent      address=%7B%22city%22%3A%22New%20Delhi%22%7D\n"
                             "\n"
                             "step          what\n"
                             "services      on\n"
                             "permission    3: allowed always\n"
                             "position      28.613900, 77.209000\n"
                             "look-up       of the position as read again: 28.613900, 77.209000\n"
                             "answer        one placemark\n"
                             "key state     administrativeArea is not known, so the key is left out\n"
                             "key locality  subLocality is not known, so the key is left out\n"
                             "key area      thoroughfare is not known, so the key is left out\n"
                             "key pin       postalCode is not known, so the key is left out\n"
                             "key city      \"New Delhi\" from locality\n"
                             "key country   country is not known, so the key is left out\n",
                             ""}));
}

TEST_F(LocateDesktop, WithoutWaitingNobodyIsAsked) {
  world_.run("daemon");
  world_.run("agent");
  world_.run("at 2836.8340,N,07712.5400,E");

  EXPECT_EQ(tavlo({"locate"}), (Result{0, kNothing,
                                       "location authorization: 0\n"
                                       "tavlo: note: the permission is 0, nobody was asked yet; --wait asks for it, or "
                                       "give a position with --fixed LAT,LON\n"}));
}

// Without an agent nobody decides. By the time that the program is on the bus, it is ready to be interrupted.
TEST_F(LocateDesktop, InterruptionEndsTheWaitForADecision) {
  world_.run("daemon");
  const std::string peers = world_.ask("peers");

  const Result located = tavlo({"locate", "--wait", "--timeout", "3600"}, {.afterStart = [&](int child) {
                                 while (world_.ask("peers") == peers) {
                                 }
                                 ::kill(child, SIGINT);
                               }});

  EXPECT_EQ(located,
            (Result{1, kNothing, "tavlo: interrupted before an answer to the request for permission; run it again\n"}));
}

TEST_F(LocateDesktop, DoctorFindsTheService) {
  world_.run("daemon");

  EXPECT_THAT(tavlo({"doctor"}).out,
              testing::HasSubstr(
                  "\nok     position      the position service is on the system's bus; tavlo locate --wait asks it\n"));
}

}  // namespace
}  // namespace tavlo::cli::test
