#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <stdexcept>

#include "platform/linux/Container.h"
#include "tests/platform/linux/FaultySyscalls.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;
using linux_platform::Container;
using testing::ElementsAre;

// A system whose environment, password database and running executable are given.
class System final : public linux_platform::Syscalls {
 public:
  std::map<std::string, std::string> variables;
  std::optional<std::string> passwordHome;
  std::optional<std::string> executable = "/usr/bin/player";
  std::string existingFile;
  int passwordQuestions = 0;

  std::optional<std::string> environment(const char* name) override {
    const auto variable = variables.find(name);
    return variable == variables.end() ? std::nullopt : std::optional(variable->second);
  }
  std::optional<std::string> passwordDatabaseHome() override {
    ++passwordQuestions;
    return passwordHome;
  }
  std::optional<std::string> readlink(const char* path) override {
    return path == std::string("/proc/self/exe") ? executable : std::nullopt;
  }
  int stat(const char* path, struct stat*) override { return path == existingFile ? 0 : -1; }
};

struct Home {
  std::string name;
  std::map<std::string, std::string> variables;
  std::optional<std::string> passwordHome;
  std::string folder;  // "" for none
};

class ContainerHome : public testing::TestWithParam<Home> {};

INSTANTIATE_TEST_SUITE_P(
    Environments, ContainerHome,
    testing::Values(Home{"DataHome", {{"XDG_DATA_HOME", "/data"}, {"HOME", "/home/u"}}, "/pw", "/data/app"},
                    Home{"RelativeDataHomeDoesNotCount",
                         {{"XDG_DATA_HOME", "data"}, {"HOME", "/home/u"}},
                         "/pw",
                         "/home/u/.local/share/app"},
                    Home{"EmptyDataHomeDoesNotCount",
                         {{"XDG_DATA_HOME", ""}, {"HOME", "/home/u"}},
                         "/pw",
                         "/home/u/.local/share/app"},
                    Home{"HomeAlone", {{"HOME", "/home/u"}}, "/pw", "/home/u/.local/share/app"},
                    Home{"RelativeHomeDoesNotCount", {{"HOME", "u"}}, "/pw", "/pw/.local/share/app"},
                    Home{"EmptyHomeDoesNotCount", {{"HOME", ""}}, "/pw", "/pw/.local/share/app"},
                    Home{"PasswordDatabase", {}, "/pw", "/pw/.local/share/app"},
                    Home{"RelativePasswordHomeDoesNotCount", {}, "pw", ""}, Home{"Nothing", {}, std::nullopt, ""}),
    [](const auto& row) { return row.param.name; });

TEST_P(ContainerHome, NamesTheFolder) {
  System system;
  system.variables = GetParam().variables;
  system.passwordHome = GetParam().passwordHome;

  const auto container = Container::locate(std::nullopt, "app", system);

  EXPECT_EQ(container ? container->folder().string() : "", GetParam().folder);
}

TEST(Container, APasswordDatabaseIsAskedOnlyWhenTheEnvironmentSaysNothing) {
  System system;
  system.variables = {{"HOME", "/home/u"}};

  const auto container = Container::locate(std::nullopt, "app", system);

  ASSERT_TRUE(container);
  EXPECT_EQ(system.passwordQuestions, 0);
}

TEST(Container, HoldsTheseNames) {
  const auto container = Container::locate("/box", "org.example.app");

  ASSERT_TRUE(container);
  EXPECT_EQ(container->folder(), "/box");
  EXPECT_EQ(container->domain(), "org.example.app");
  EXPECT_EQ(container->documents(), "/box/Documents");
  EXPECT_EQ(container->library(), "/box/Library");
  EXPECT_EQ(container->preferences(), "/box/Library/Preferences");
  EXPECT_EQ(container->settingsFile(), "/box/Library/Preferences/org.example.app.plist");
  EXPECT_EQ(container->temporary(), "/box/tmp");
}

TEST(Container, AGivenFolderNeedsNoHomeAndIsMadeAbsoluteWithoutATrailingSlash) {
  System system;

  EXPECT_EQ(Container::locate("/box/", "app", system)->folder(), "/box");
  EXPECT_EQ(Container::locate("box", "app", system)->folder(), fs::current_path() / "box");
}

TEST(Container, AGivenFolderThatIsNoPathIsAnError) {
  const auto message = [](const fs::path& folder) -> std::string {
    try {
      static_cast<void>(Container::locate(folder, "app"));
    } catch (const std::invalid_argument& error) {
      return error.what();
    }
    return "none";
  };

  EXPECT_EQ(message(""), "the container is an empty path");
  EXPECT_EQ(message(std::string("/a\0b", 4)), "the container's path holds a NUL");
}

TEST(ContainerDeathTest, ARelativeFolderBelowAFolderThatIsGoneIsAnErrorThatSaysSo) {
  const auto locateBelowNothing = [] {
    const test::TemporaryFolder gone;
    fs::current_path(gone.path());
    fs::remove(gone.path());
    try {
      static_cast<void>(Container::locate("box", "app"));
    } catch (const std::invalid_argument& error) {
      std::fputs(error.what(), stderr);
      std::_Exit(7);
    }
    std::_Exit(0);
  };

  EXPECT_EXIT(locateBelowNothing(), testing::ExitedWithCode(7),
              "the container box cannot be made absolute \\(.*\\): give an absolute path");
}

TEST(Container, AGivenDomainThatIsNoFileNameIsAnErrorThatSaysSo) {
  for (const std::string& domain : {std::string("a/b"), std::string("/"), std::string("."), std::string(".."),
                                    std::string("a\0b", 3), std::string(241, 'x')}) {
    try {
      static_cast<void>(Container::locate("/box", domain));
      FAIL() << domain;
    } catch (const std::invalid_argument& error) {
      EXPECT_STREQ(error.what(), ("the domain \"" + domain +
                                  "\" is no file name: it must have 1 to 240 bytes, no \"/\" and no NUL, and be "
                                  "neither \".\" nor \"..\"")
                                     .c_str());
    }
  }
}

TEST(Container, DomainsWithDotsBlanksAndTheLargestLengthAreFine) {
  for (const std::string& domain :
       {std::string("..."), std::string(".a"), std::string("a b"), std::string("ü"), std::string(240, 'x')}) {
    EXPECT_EQ(Container::locate("/box", domain)->domain(), domain);
  }
}

struct Executable {
  std::string name;
  std::optional<std::string> link;
  std::string existingFile;
  std::string domain;  // "" for none
};

class DefaultDomain : public testing::TestWithParam<Executable> {};

INSTANTIATE_TEST_SUITE_P(Executables, DefaultDomain,
                         testing::Values(Executable{"Plain", "/opt/x/player", "", "player"},
                                         Executable{"RemovedWhileItRuns", "/opt/player (deleted)", "", "player"},
                                         Executable{"ReallySoNamed", "/opt/player (deleted)", "/opt/player (deleted)",
                                                    "player (deleted)"},
                                         Executable{"NotReadable", std::nullopt, "", ""},
                                         Executable{"TooLong", "/opt/" + std::string(241, 'x'), "", ""}),
                         [](const auto& row) { return row.param.name; });

TEST_P(DefaultDomain, IsTheExecutablesName) {
  System system;
  system.executable = GetParam().link;
  system.existingFile = GetParam().existingFile;

  const auto container = Container::locate("/box", "", system);

  EXPECT_EQ(container ? container->domain() : "", GetParam().domain);
}

// ---- Making the folders ----

class ContainerFolders : public testing::Test {
 protected:
  [[nodiscard]] bool make(Container::Durable durable) {
    return container_.makeFolder(container_.preferences(), durable, syscalls_);
  }

  TemporaryFolder folder_;
  Container container_ = *Container::locate(folder_ / "above/box", "app");
  FaultySyscalls syscalls_{folder_.path().string()};
};

TEST_F(ContainerFolders, AllAreMadeForTheUserAlone) {
  EXPECT_TRUE(container_.makeFolders());

  for (const char* const name : {"above", "above/box", "above/box/Documents", "above/box/Library",
                                 "above/box/Library/Preferences", "above/box/tmp"}) {
    const auto status = fs::status(folder_ / name);
    EXPECT_TRUE(fs::is_directory(status)) << name;
    EXPECT_EQ(status.permissions(), fs::perms(0700)) << name;
  }
  EXPECT_TRUE(container_.makeFolders());
}

TEST_F(ContainerFolders, NoFolderIsMadeInAnotherBeforeThatOnesNameIsDurable) {
  const std::string above = folder_.path().parent_path().string();

  ASSERT_TRUE(container_.makeFolder(container_.library(), Container::Durable::fresh, syscalls_));

  EXPECT_THAT(syscalls_.calls(),
              ElementsAre("stat above/box", "stat above", "stat .", "open " + above, "fsync " + above, "close " + above,
                          "mkdir above", "open .", "fsync .", "close .",                  //
                          "mkdir above/box", "open above", "fsync above", "close above",  //
                          "stat above/box/Library", "stat above/box", "open above", "fsync above", "close above",
                          "mkdir above/box/Library", "open above/box", "fsync above/box", "close above/box"));
}

// The process that made them may have died before it made their names durable.
TEST_F(ContainerFolders, NamesThatWereThereAreMadeDurableUnlessTheCallerDidSo) {
  ASSERT_TRUE(make(Container::Durable::all));
  syscalls_.forget();

  ASSERT_TRUE(make(Container::Durable::all));
  EXPECT_EQ(syscalls_.count("fsync above"), 3U);

  syscalls_.forget();
  ASSERT_TRUE(make(Container::Durable::fresh));
  EXPECT_EQ(syscalls_.count("fsync"), 0U);
}

TEST_F(ContainerFolders, AParentThatCannotBeReadIsNoFailureForAFolderThatIsThere) {
  fs::create_directories(container_.folder());
  syscalls_.setHook(failing("open above", EACCES));

  EXPECT_TRUE(make(Container::Durable::all));
}

TEST_F(ContainerFolders, AFolderThatAnotherProcessMakesMeanwhileIsFine) {
  fs::create_directory(folder_ / "above");
  syscalls_.setHook([&](const std::string& call) {
    if (call == "mkdir above/box") fs::create_directory(container_.folder());
    return 0;
  });

  EXPECT_TRUE(make(Container::Durable::all));
}

TEST_F(ContainerFolders, ALinkThatLeadsNowhereIsAFailure) {
  fs::create_directory(folder_ / "above");
  fs::create_symlink("nowhere", container_.folder());

  EXPECT_FALSE(make(Container::Durable::all));
}

TEST_F(ContainerFolders, AParentThatCannotBeReadIsAFailureForANewFolder) {
  fs::create_directory(folder_ / "above");
  syscalls_.setHook(failing("open above", EACCES));

  EXPECT_FALSE(make(Container::Durable::all));
}

TEST_F(ContainerFolders, AnyOtherErrorOfAParentIsAFailure) {
  fs::create_directories(container_.folder());
  for (const std::string call : {"open above", "fsync above"}) {
    syscalls_.setHook(failing(call, EIO));
    EXPECT_FALSE(make(Container::Durable::all)) << call;
  }
}

TEST_F(ContainerFolders, AFileInTheWayIsAFailureAndStays) {
  for (const std::string name : {"above", "above/box", "above/box/Library", "above/box/Library/Preferences"}) {
    fs::remove_all(folder_ / "above");
    fs::create_directories((folder_ / name).parent_path());
    writeFile(folder_ / name, "a file");

    EXPECT_FALSE(make(Container::Durable::all)) << name;
    EXPECT_EQ(readFile(folder_ / name), "a file");
  }
}

}  // namespace
}  // namespace tavlo::test
