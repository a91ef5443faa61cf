/* A host app in C: a session package, a log on standard error, and the files of one folder.
 *
 *   gcc -std=c99 -o player main.c $(pkg-config --cflags --libs tavlo-c)
 *   ./player /data/player */
#include <stdio.h>
#include <tavlo.h>

static void print(void* user, tavlo_text message) {
  fwrite(message.data, 1, message.size, user);
  fputc('\n', user);
}

static int failed(void) {
  fprintf(stderr, "%s\n", tavlo_last_error());
  return 1;
}

int main(int argc, char** argv) {
  tavlo_platform platform = {0};
  tavlo_logger logger = {0};
  tavlo_session* session;
  tavlo_string text;
  if (argc != 2) {
    fprintf(stderr, "Usage: %s FOLDER\n", argv[0]);
    return 2;
  }

  /* Where the component keeps its files, and who hears what it has to say. */
  platform.size = sizeof platform;
  platform.container = tavlo_text_of(argv[1]);
  if (tavlo_platform_install(&platform) != TAVLO_OK) return failed();
  logger.size = sizeof logger;
  logger.user = stderr;
  logger.printLog = print;
  if (tavlo_logger_install(&logger) != TAVLO_OK) return failed();

  /* What the requests report. What is not set is sent as "(null)". */
  session = tavlo_session_new();
  if (!session) return failed();
  tavlo_session_set_text(session, TAVLO_PACKAGE_device_model, tavlo_text_of("Phone 3"));
  tavlo_session_set_limitAdTrackingEnabled(session, true);
  tavlo_session_install(session);
  tavlo_session_free(session);
  tavlo_setAppIdToUserDefault(tavlo_text_of("app & co"));

  if (tavlo_getInAppNotificationAdditionalRequest(&text) != TAVLO_OK) return failed();
  puts(text.data);
  tavlo_string_free(&text);

  /* TAVLO_OK and no text: there is no such file. */
  if (tavlo_getCacheVideoDataPath(tavlo_text_of("https://cdn.example.com/clip.mp4"), &text) != TAVLO_OK)
    return failed();
  puts(text.data ? text.data : "not cached");
  tavlo_string_free(&text);
  return 0;
}
