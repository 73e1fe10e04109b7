#include "tarn/commands/ProgressLine.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <ostream>

#include "tarn/commands/Interrupt.h"

namespace tarn {
namespace {

constexpr const char* sEraseLine = "\r\033[K";

std::size_t GetTerminalWidth() {
  winsize size{};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

}  // namespace

ProgressLine::ProgressLine(bool isWanted, std::ostream& err)
    : fErr(err), fIsOn(isWanted && isatty(STDERR_FILENO) == 1) {}

bool ProgressLine::IsDue() {
  return fIsOn && GetRunTime() >= fNext;
}

void ProgressLine::Show(const std::string& text) {
  fNext = GetRunTime() + std::chrono::milliseconds(200);
  fErr << sEraseLine << text.substr(0, GetTerminalWidth() - 1) << std::flush;
  fIsShown = true;
}

void ProgressLine::Clear() {
  if (fIsShown) {
    fErr << sEraseLine << std::flush;
    fIsShown = false;
  }
}

}  // namespace tarn
