// The geocoding service of nominatim.py, for as long as this object lives.
//
//   Nominatim service;
//   linux_platform::make({.geocoding = {.url = service.url("good")}});
#pragma once

#include <cstdlib>
#include <string>

#include "tests/support/ChildScript.h"

namespace tavlo::test {

class Nominatim {
 public:
  Nominatim() : port_(script_.readLine()) { ::unsetenv("http_proxy"); }

  [[nodiscard]] std::string url(const std::string& behaviour) const {
    return "http://127.0.0.1:" + port_ + "/" + behaviour;
  }
  // The next one that it has got, awaited.
  [[nodiscard]] std::string request() { return script_.readLine(); }

 private:
  ChildScript script_{"nominatim.py", {}};
  std::string port_;
};

}  // namespace tavlo::test
