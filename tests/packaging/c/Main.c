/* Somebody else's program in C, from what is installed alone: it runs all 27 operations.
 *
 * Usage: c CONTAINER RESOURCES    ends with 1, after telling what is wrong, when an answer is not the expected one */
#include <stdio.h>

#include "Check.h"

const char* container;
const char* resources;

int main(int argc, char** argv) {
  tavlo_logger logger = {0};
  if (argc != 3) return 2;
  container = argv[1];
  resources = argv[2];
  logger.size = sizeof logger;
  logger.printLog = logLine;
  isNumber("install the logger", tavlo_logger_install(&logger), TAVLO_OK);
  isNumber("the library's version is that of the headers", tavlo_version_number(), TAVLO_VERSION_NUMBER);
  isText("and reads so", tavlo_version(), TAVLO_VERSION);

  checkBoundary();
  checkRequests();
  checkCache();
  checkServices();

  tavlo_logger_install(NULL);
  tavlo_platform_install(NULL);
  if (failures == 0) puts("27 operations answer as they should");
  return failures != 0;
}
