/* Functions and objects of a C program. None of them is what anybody else may mean by the name. */
#define HOSTILE(name)     \
  const char* name(void); \
  const char* name(void) { return 0; }
HOSTILE(md5)
HOSTILE(urlEncode)
HOSTILE(encode)
HOSTILE(decode)
HOSTILE(install)
HOSTILE(current)
HOSTILE(make)
HOSTILE(trim)
HOSTILE(failed)
HOSTILE(ignored)
HOSTILE(copyFromMemory)
HOSTILE(check)
HOSTILE(guarded)
HOSTILE(borrowed)
HOSTILE(give)
HOSTILE(lastError)
HOSTILE(isUtf8)
HOSTILE(fileUrl)
HOSTILE(appendText)
HOSTILE(textForm)
HOSTILE(printLog)
HOSTILE(addressJson)
HOSTILE(locationManager)
HOSTILE(currentLocation)
HOSTILE(sharedInstance)
HOSTILE(TavloUtility)
HOSTILE(TavloPackage)
HOSTILE(Logger)
HOSTILE(Value)
HOSTILE(Text)

int defaultFactory = 7;
int error = 7;
int platform = 7;
