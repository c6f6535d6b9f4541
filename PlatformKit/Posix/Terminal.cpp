#include "PlatformKit/Posix/Terminal.h"

#include <cstdlib>
#include <string_view>

#include <fcntl.h>
#include <langinfo.h>
#include <locale.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace PlatformKit {
namespace {

int descriptor(OutputStream stream) {
  return stream == OutputStream::standardOutput ? STDOUT_FILENO : STDERR_FILENO;
}

}  // namespace

void openMissingStandardStreams() {
  // A new descriptor takes the lowest free number, so in this order each fills its own gap.
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    // Output cannot be written there, so that what is lost is noticed.
    if (fcntl(stream, F_GETFD) < 0) static_cast<void>(open("/dev/null", O_RDONLY));
  }
}

bool isTerminal(OutputStream stream) {
  const char* kind = std::getenv("TERM");  // NOLINT(concurrency-mt-unsafe): nobody sets it
  return isatty(descriptor(stream)) == 1 && kind != nullptr && std::string_view(kind) != "dumb";
}

std::size_t terminalWidth(OutputStream stream) {
  winsize size{};
  if (ioctl(descriptor(stream), TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 80;
  return size.ws_col;
}

bool environmentIsUtf8() {
  // A locale of its own: the program's numbers and dates stay those of the "C" locale.
  const locale_t locale = newlocale(LC_CTYPE_MASK, "", static_cast<locale_t>(nullptr));
  if (locale == static_cast<locale_t>(nullptr)) return false;
  const bool utf8 = std::string_view(nl_langinfo_l(CODESET, locale)) == "UTF-8";
  freelocale(locale);
  return utf8;
}

}  // namespace PlatformKit
