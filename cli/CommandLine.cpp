#include "cli/CommandLine.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <functional>
#include <string_view>
#include <utility>

#include "TavloVersion.h"
#include "cli/ArgumentNames.h"
#include "cli/CacheCommandLine.h"
#include "cli/CacheHelpTexts.h"
#include "cli/DescribeApp.h"
#include "cli/Errors.h"
#include "cli/HelpTexts.h"
#include "cli/ServiceCommandLine.h"
#include "cli/ServiceHelpTexts.h"

namespace tavlo::cli {
namespace {

// The library takes "++" for the end of a subcommand and splits "[a,b]" at its commas. Texts that could be
// either wear a mark while they pass through it.
constexpr char kMark = '\x01';

std::string marked(const std::string& argument) {
  const bool isSpecial = argument == "++" || argument.starts_with('[') || argument.starts_with(kMark);
  return isSpecial ? kMark + argument : argument;
}

std::string unmarked(const std::string& argument) {
  return argument.starts_with(kMark) ? argument.substr(1) : argument;
}

std::vector<std::string> textsOf(const CLI::Option& option) {
  std::vector<std::string> texts;
  for (const std::string& result : option.results()) texts.push_back(unmarked(result));
  return texts;
}

std::optional<std::string> textOf(const CLI::Option& option) {
  return option.count() == 0 ? std::nullopt : std::optional(unmarked(option.results().front()));
}

// The program's commands and options, and what each means once the arguments are read.
class Parser {
 public:
  Parser() : root_(help::kProgram, "tavlo") {
    root_.footer(help::kProgramFooter);
    root_.require_subcommand(1);
    root_.set_version_flag("--version", "tavlo " TAVLO_VERSION, "Print the version and exit");
    addGlobals();
    addRequest();
    addIdentifiers();
    addTexts();
    addContract();
    addEvents();
    addCache();
    addCommand(root_, "log", help::kLog, help::kLogFooter).require_subcommand(1);
    for (const ServiceCommandRow& row : serviceCommands()) addService(row);
    addMaker(addCommand(root_, "use", help::kUse, help::kUseFooter), [] { return RecordUse{}; });
    addMaker(addCommand(root_, "demo", help::kDemo, help::kDemoFooter), [] { return Demo{}; });
  }

  [[nodiscard]] CommandDescription description() const { return describe(root_, choices_); }

  Invocation parse(std::span<const std::string> arguments) {
    std::vector<std::string> reversed;  // as the library wants them
    std::transform(arguments.rbegin(), arguments.rend(), std::back_inserter(reversed), marked);
    try {
      root_.parse(std::move(reversed));
      return {.globals = globals(), .command = command()};
    } catch (const CLI::CallForHelp&) {
      return {.globals = {}, .command = Help{root_.help()}};
    } catch (const CLI::CallForVersion& version) {
      return {.globals = {}, .command = Help{version.what() + std::string("\n")}};
    } catch (const CLI::ParseError& error) {
      throw UsageError(whatIsWrong(error.what()), commandWords());
    } catch (const UsageError& error) {
      throw UsageError(error.what(), commandWords());
    }
  }

 private:
  // A word that nothing takes is told before what is missing: it is often what should have been there.
  [[nodiscard]] std::string whatIsWrong(std::string message) const {
    for (const std::string& word : root_.remaining(true)) {
      if (word == "--") continue;
      message = "\"" + word + "\" is unexpected here";
      break;
    }
    std::erase(message, kMark);
    return message;
  }

  // The command as far as the arguments name one: "tavlo id set".
  [[nodiscard]] std::string commandWords() const {
    std::string words = root_.get_name();
    for (const CLI::App* app = &root_; !app->get_subcommands().empty();) {
      app = app->get_subcommands().front();
      words += " " + app->get_name();
    }
    return words;
  }

  static CLI::App& addCommand(CLI::App& parent, const char* name, const char* description, const char* footer) {
    CLI::App& command = *parent.add_subcommand(name, description);
    command.fallthrough();  // global options after it
    command.footer(footer);
    return command;
  }

  static CLI::Option& addArgument(CLI::App& command, const char* name, const std::string& description) {
    return *command.add_option(name, description)->required();
  }

  void addMaker(CLI::App& command, std::function<Command()> make) { makers_.emplace_back(&command, std::move(make)); }

  void addGlobals() {
    container_ = root_.add_option("--container", "Where everything that is kept lies")->type_name("DIR");
    domain_ = root_.add_option("--domain", "The settings' name in it, tavlo when not given")->type_name("NAME");
    color_ = root_.add_option("--color", "auto (only on a terminal), always or never")->type_name("WHEN");
    choices_[color_] = namesOf(kColorNames);
    root_.add_flag("--quiet", quiet_, "No notes and no console lines; errors stay");
    root_.add_flag("--json", json_, "Answers as JSON");
  }

  void addRequest() {
    CLI::App& command = addCommand(root_, "request", help::kRequest, help::kRequestFooter);
    const CLI::Option& name = addArgument(command, "NAME", "ad, in-app, user or tracker");
    choices_[&name] = namesOf(kContracts);
    const CLI::Option* session =
        command.add_option("--session", "A session file, - for standard input")->type_name("FILE");
    const CLI::Option* pretty = command.add_flag("--pretty")->description("A table that explains each value");
    addMaker(command, [&name, session, pretty] {
      return MakeRequest{.contract = &named(kContracts, *textOf(name), "the request"),
                         .session = textOf(*session),
                         .pretty = pretty->count() > 0};
    });
  }

  void addIdentifiers() {
    CLI::App& id = addCommand(root_, "id", help::kId, help::kIdFooter);
    id.require_subcommand(1);

    CLI::App& get = addCommand(id, "get", help::kIdGet, help::kIdGetFooter);
    const CLI::Option& read = addArgument(get, "KEY", "app, optional or security");
    choices_[&read] = namesOf(kIdentifierNames);
    const CLI::Option* reveal = get.add_flag("--reveal")->description("The security key as it is, not masked");
    addMaker(get, [&read, reveal] {
      return GetIdentifier{.identifier = identifierOf(read), .reveal = reveal->count() > 0};
    });

    CLI::App& set = addCommand(id, "set", help::kIdSet, help::kIdSetFooter);
    const CLI::Option& written = addArgument(set, "KEY", "app, optional or security");
    choices_[&written] = namesOf(kIdentifierNames);
    const CLI::Option& value = addArgument(set, "VALUE", "Any text but an empty one");
    addMaker(set, [&written, &value] {
      return SetIdentifier{.identifier = identifierOf(written), .value = *textOf(value)};
    });

    CLI::App& show = addCommand(id, "show", help::kIdShow, help::kIdShowFooter);
    const CLI::Option* revealAll = show.add_flag("--reveal")->description("The security key as it is, not masked");
    addMaker(show, [revealAll] { return ShowIdentifiers{.reveal = revealAll->count() > 0}; });
  }

  static Identifier identifierOf(const CLI::Option& key) {
    return named(kIdentifierNames, *textOf(key), "the key").value;
  }

  void addTexts() {
    struct Row {
      TextOperationName operation;
      const char* name;
      const char* description;
      const char* footer;
    };
    constexpr auto kRows = std::to_array<Row>({
        {TextOperationName::md5, "md5", help::kMd5, help::kMd5Footer},
        {TextOperationName::extension, "extension", help::kExtension, help::kExtensionFooter},
        {TextOperationName::encode, "encode", help::kEncode, help::kEncodeFooter},
    });
    for (const Row& row : kRows) {
      CLI::App& command = addCommand(root_, row.name, row.description, row.footer);
      const CLI::Option* texts = command.add_option("TEXT", "None: the lines of standard input")
                                     ->expected(1, CLI::detail::expected_max_vector_size)
                                     ->allow_extra_args();
      addMaker(command, [operation = row.operation, texts] {
        return TransformTexts{.operation = operation, .texts = textsOf(*texts)};
      });
    }
  }

  void addContract() {
    CLI::App& command = addCommand(root_, "contract", help::kContract, help::kContractFooter);
    const CLI::Option* name = command.add_option("NAME", "ad, in-app, user or tracker");
    const CLI::Option* format = command.add_option("--format", "table, json or markdown")->type_name("FORMAT");
    choices_[name] = namesOf(kContracts);
    choices_[format] = namesOf(kFormatNames);
    addMaker(command, [name, format] {
      PrintContract print;
      if (const auto text = textOf(*name)) print.contract = &named(kContracts, *text, "the request");
      if (const auto text = textOf(*format)) print.format = named(kFormatNames, *text, "the format").value;
      return print;
    });
  }

  void addEvents() {
    CLI::App& event = addCommand(root_, "event", help::kEvent, help::kEventFooter);
    event.require_subcommand(1);
    CLI::App& add = addCommand(event, "add", help::kEventAdd, help::kEventAddFooter);
    const CLI::Option& networkID = addArgument(add, "NETWORK", "The network's id");
    const CLI::Option& eventName = addArgument(add, "EVENT", "What happened");
    const CLI::Option* count = add.add_option("COUNT", "How often, 1 when not given");
    addMaker(add, [&networkID, &eventName, count] {
      AddEvent request{.networkID = *textOf(networkID), .event = *textOf(eventName)};
      if (const auto text = textOf(*count)) request.count = countOf(*text);
      return request;
    });
    addMaker(addCommand(event, "list", help::kEventList, help::kEventListFooter), [] { return ListEvents{}; });
    addMaker(addCommand(event, "clear", help::kEventClear, help::kEventClearFooter), [] { return ClearEvents{}; });
  }

  void addCache() {
    CLI::App& cache = addCommand(root_, "cache", help::kCache, help::kCacheFooter);
    cache.require_subcommand(1);
    for (const CacheCommandRow& row : cacheCommands()) {
      CLI::App& command = addCommand(cache, row.name, row.description, row.footer);
      std::vector<const CLI::Option*> arguments;
      for (const ArgumentRow& argument : row.arguments) {
        if (!argument.name) continue;
        CLI::Option& option = addArgument(command, argument.name, argument.description);
        if (argument.mayRepeat) option.expected(1, CLI::detail::expected_max_vector_size)->allow_extra_args();
        if (argument.choices) choices_[&option] = argument.choices();
        arguments.push_back(&option);
      }
      addMaker(command, [&row, arguments] {
        std::vector<std::string> words;
        for (const CLI::Option* argument : arguments) {
          const std::vector<std::string> texts = textsOf(*argument);
          words.insert(words.end(), texts.begin(), texts.end());
        }
        return row.make(words);
      });
    }
  }

  void addService(const ServiceCommandRow& row) {
    CLI::App& parent = row.group ? *root_.get_subcommand(row.group) : root_;
    CLI::App& command = addCommand(parent, row.name, row.description, row.footer);
    std::vector<const CLI::Option*> options;
    for (const OptionRow& option : row.options) {
      if (!option.name) continue;
      CLI::Option& added =
          option.type ? *command.add_option(option.name)->type_name(option.type) : *command.add_flag(option.name);
      options.push_back(added.description(option.description));
    }
    const CLI::Option* argument = nullptr;
    if (row.argument.name) argument = &addArgument(command, row.argument.name, row.argument.description);
    if (row.argument.choices) choices_[argument] = row.argument.choices();
    addMaker(command, [&row, options, argument] {
      Given given;
      if (argument) given.word = *textOf(*argument);
      for (const CLI::Option* option : options) {
        if (const auto text = textOf(*option)) given.options.emplace(option->get_name(), *text);
      }
      return row.make(given);
    });
  }

  [[nodiscard]] Globals globals() const {
    Globals globals{.container = textOf(*container_), .quiet = quiet_, .json = json_};
    if (const auto domain = textOf(*domain_)) globals.domain = *domain;
    if (const auto color = textOf(*color_)) globals.color = named(kColorNames, *color, "the colour").value;
    return globals;
  }

  [[nodiscard]] Command command() const {
    return std::ranges::find_if(makers_, [](const auto& maker) { return maker.first->parsed(); })->second();
  }

  CLI::App root_;
  CLI::Option* container_ = nullptr;
  CLI::Option* domain_ = nullptr;
  CLI::Option* color_ = nullptr;
  bool quiet_ = false;
  bool json_ = false;
  std::vector<std::pair<const CLI::App*, std::function<Command()>>> makers_;
  Choices<CLI::Option> choices_;
};

}  // namespace

Invocation parseCommandLine(std::span<const std::string> arguments) { return Parser().parse(arguments); }

CommandDescription describeCommandLine() { return Parser().description(); }

}  // namespace tavlo::cli
