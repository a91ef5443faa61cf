// The names of a session package's texts, and the package that is ready to use.
#include <memory>

#include "c/Boundary.h"
#include "c/tavlo_host.h"
#include "host/SessionRecord.h"
#include "request/PackageReads.h"

namespace tavlo::c {
namespace {

#define TAVLO_SAME(name) static_assert(static_cast<tavlo_package_text>(PackageText::name) == TAVLO_PACKAGE_##name);
TAVLO_PACKAGE_TEXT_READS(TAVLO_SAME)
#undef TAVLO_SAME
static_assert(kPackageTextReads.size() == TAVLO_PACKAGE_TEXTS);

bool isText(tavlo_package_text which) { return which >= 0 && which < TAVLO_PACKAGE_TEXTS; }

using SessionPointer = std::shared_ptr<host::SessionRecord>;

host::SessionRecord& recordOf(const tavlo_session* session) {
  require(session, "the session");
  return **reinterpret_cast<const SessionPointer*>(session);
}

PackageText packageText(tavlo_package_text which) {
  if (!isText(which)) throw Misuse("a session package has no text " + std::to_string(which));
  return static_cast<PackageText>(which);
}

}  // namespace
}  // namespace tavlo::c

using tavlo::c::givingText;
using tavlo::c::guarded;
using tavlo::c::isText;
using tavlo::c::made;
using tavlo::c::packageText;
using tavlo::c::recordOf;
using tavlo::c::require;
using tavlo::c::SessionPointer;
using tavlo::c::textOf;

const char* tavlo_package_text_name(tavlo_package_text text) {
  return isText(text) ? tavlo::kPackageTextReads[static_cast<std::size_t>(text)].name.data() : nullptr;
}
tavlo_package_text tavlo_package_text_named(tavlo_text name) {
  if (!name.data) return -1;
  const auto text = tavlo::packageTextNamed({name.data, name.size});
  return text ? static_cast<tavlo_package_text>(*text) : -1;
}

tavlo_session* tavlo_session_new(void) {
  return made(__func__, [] {
    return reinterpret_cast<tavlo_session*>(new SessionPointer(std::make_shared<tavlo::host::SessionRecord>()));
  });
}
void tavlo_session_free(tavlo_session* session) { delete reinterpret_cast<SessionPointer*>(session); }

tavlo_status tavlo_session_install(tavlo_session* session) {
  return guarded(__func__, [=] {
    require(session, "the session");
    tavlo::TavloPackage::install(*reinterpret_cast<const SessionPointer*>(session));
  });
}
tavlo_status tavlo_session_set_text(tavlo_session* session, tavlo_package_text which, tavlo_text text) {
  return guarded(__func__, [=] { recordOf(session).set(packageText(which), textOf(text, "the text")); });
}
tavlo_status tavlo_session_text(const tavlo_session* session, tavlo_package_text which, tavlo_string* text) {
  return givingText(__func__, text, [=] { return recordOf(session).get(packageText(which)); });
}
tavlo_status tavlo_session_set_limitAdTrackingEnabled(tavlo_session* session, bool enabled) {
  return guarded(__func__, [=] { recordOf(session).setLimitAdTrackingEnabled(enabled); });
}
tavlo_status tavlo_session_set_resolution(tavlo_session* session, int32_t resolution) {
  return guarded(__func__, [=] { recordOf(session).setResolution(resolution); });
}
tavlo_status tavlo_session_set_preRoll(tavlo_session* session, int32_t preRoll) {
  return guarded(__func__, [=] { recordOf(session).setPreRoll(preRoll); });
}
