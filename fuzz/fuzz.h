#pragma once
#include "platform/calendar/store.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>

// What the fuzz targets share. A broken promise ends the process, which is what the fuzzer takes for a
// finding.
namespace fuzz {

/// The zone of the machine and of the one who looks, whatever the fuzzing machine's own is.
inline constexpr const char* viewerZone = "Europe/Stockholm";

/// With signs in the place of what no terminal shows.
inline QByteArray visible(const QString& text) {
  QByteArray result;
  for (const QChar c : text) {
    if (c == u'\n')
      result += '\n';
    else if (c.unicode() < 0x20 || (c.unicode() >= 0x7F && !c.isLetterOrNumber()))
      result += "<" + QByteArray::number(c.unicode(), 16) + ">";
    else
      result += QString(c).toUtf8();
  }
  return result;
}

[[noreturn]] inline void broken(const char* promise, const QString& details, const char* file, int line) {
  std::fprintf(stderr, "\n%s:%d: broken promise: %s\n%s\n", file, line, promise,
               visible(details).constData());
  std::abort();
}

/// `condition` is what the code promises; `details` is a QString, made only when the promise is broken.
#define PROMISED(condition, details)                                             \
  do {                                                                           \
    if (!(condition)) ::fuzz::broken(#condition, (details), __FILE__, __LINE__); \
  } while (false)

/// One input may cost only so much of the processor's time (not of the clock's, so that a busy machine
/// changes nothing). The sanitizers make everything some ten times slower than it is for the user.
class Budget {
 public:
  explicit Budget(double seconds) : seconds_(seconds), begin_(used()) {}
  ~Budget() {
    const double took = used() - begin_;
    if (took <= seconds_) return;
    std::fprintf(stderr, "\nOne input took %.1f s of processor time, allowed are %.1f s.\n", took, seconds_);
    std::abort();
  }
  Budget(const Budget&) = delete;
  Budget& operator=(const Budget&) = delete;

 private:
  static double used() {
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
  }
  double seconds_;
  double begin_;
};

inline QString textOf(const platform::calendar::Item& item) {
  return QStringLiteral("%1 | %2 | %3 | %4 .. %5 | kind %6 | \"%7\"")
      .arg(item.key.place, item.key.uid, item.key.recurrenceId, item.start.toString(Qt::ISODateWithMs),
           item.end.toString(Qt::ISODateWithMs))
      .arg(static_cast<int>(item.kind))
      .arg(item.subject);
}

}  // namespace fuzz

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
