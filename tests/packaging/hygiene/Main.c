/* The component amid names that are taken. Usage: hostile CONTAINER    prints what it answers */
#include <stdio.h>
#include <tavlo.h>

static void print(void* user, tavlo_text message) {
  (void)user;
  printf("log: %.*s\n", (int)message.size, message.data);
}

static void say(tavlo_string* text) {
  puts(text->data ? text->data : "absent");
  tavlo_string_free(text);
}

int main(int argc, char** argv) {
  tavlo_logger logger = {0};
  tavlo_platform platform = {0};
  tavlo_text archive;
  tavlo_value* value = tavlo_value_from_text(tavlo_text_of("abc"));
  tavlo_string text;
  if (argc != 2) return 2;
  logger.size = sizeof logger;
  logger.printLog = print;
  platform.size = sizeof platform;
  platform.container = tavlo_text_of(argv[1]);
  if (tavlo_logger_install(&logger) != TAVLO_OK || tavlo_platform_install(&platform) != TAVLO_OK) return 1;

  tavlo_md5(value, &text);
  say(&text);
  tavlo_value_text_form(value, &text);
  say(&text);
  tavlo_url_encode(tavlo_text_of("a b"), &text);
  say(&text);
  tavlo_setAppIdToUserDefault(tavlo_text_of("id"));
  tavlo_getAppIdFromUserDefault(&text);
  say(&text);
  tavlo_getUserInfoRequestString(&text);
  say(&text);
  tavlo_getCacheBannerImagePath(tavlo_text_of(" "), &text);
  say(&text);
  tavlo_archive_encode(value, &text);
  tavlo_value_free(value);
  archive.data = text.data;
  archive.size = text.size;
  tavlo_archive_decode(archive, &value);
  tavlo_string_free(&text);
  tavlo_md5(value, &text);
  say(&text);
  tavlo_value_free(value);
  tavlo_md5(NULL, NULL);
  puts(tavlo_last_error());
  return 0;
}
