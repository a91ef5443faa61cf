// Classes and functions of a C++ program, outside of any namespace, whose members would do harm in another's place.
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#define HOSTILE_CLASS(name)                                \
  class name {                                             \
   public:                                                 \
    name();                                                \
    virtual ~name();                                       \
    virtual void writeLine(std::string_view);              \
    static void install(void*);                            \
    static void* load();                                   \
                                                           \
   private:                                                \
    char own_[4096] = {};                                  \
  };                                                       \
  name::name() { own_[0] = 'x'; }                          \
  name::~name() { std::abort(); }                          \
  void name::writeLine(std::string_view) { std::abort(); } \
  void name::install(void*) { std::abort(); }              \
  void* name::load() { std::abort(); }

HOSTILE_CLASS(Logger)
HOSTILE_CLASS(Value)
HOSTILE_CLASS(ValueMap)
HOSTILE_CLASS(TavloPackage)
HOSTILE_CLASS(TavloException)
HOSTILE_CLASS(DataBaseHandler)
HOSTILE_CLASS(Platform)
HOSTILE_CLASS(LinuxPlatform)
HOSTILE_CLASS(Container)
HOSTILE_CLASS(Package)
HOSTILE_CLASS(Answer)
HOSTILE_CLASS(Misuse)
HOSTILE_CLASS(Renderer)
HOSTILE_CLASS(TextWriter)
HOSTILE_CLASS(Syscalls)
HOSTILE_CLASS(Slot)
HOSTILE_CLASS(Date)

using Text = std::optional<std::string>;
Text urlEncode(const Text&);
Text urlEncode(const Text&) { std::abort(); }
std::string md5(std::string_view);
std::string md5(std::string_view) { std::abort(); }
std::optional<std::string> encode(const std::string&);
std::optional<std::string> encode(const std::string&) { std::abort(); }
std::optional<std::string> decode(std::string_view);
std::optional<std::string> decode(std::string_view) { std::abort(); }
