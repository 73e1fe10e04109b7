// Runs a program on a terminal of its own, as a person at a keyboard would.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

// The program's standard input, output and error are one terminal; lines come out with "\r\n", and what is written to
// it is echoed unless the program turns that off. A program that still runs is killed with this object. The deadlines
// are for programs that hang: nothing waits longer than it must.
class PseudoTerminal {
 public:
  using Milliseconds = std::chrono::milliseconds;
  static constexpr Milliseconds sDeadline{60000};
  static constexpr int sStillRuns = 1000;

  PseudoTerminal(const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) {
      argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    winsize size{};
    size.ws_row = 25;
    size.ws_col = 120;
    fChild = forkpty(&fTerminal, nullptr, nullptr, &size);
    if (fChild == 0) {
      execv(program.c_str(), argv.data());
      _exit(127);
    }
    if (fChild > 0) {
      fcntl(fTerminal, F_SETFD, FD_CLOEXEC);
    }
  }
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;
  ~PseudoTerminal() {
    if (fChild > 0) {
      kill(fChild, SIGKILL);
      waitpid(fChild, nullptr, 0);
    }
    if (fTerminal >= 0) {
      close(fTerminal);
    }
  }

  // What is typed: "\x03" is Ctrl-C, "\x04" the end of the input at the start of a line.
  void Write(std::string_view bytes) {
    while (!bytes.empty()) {
      const ssize_t written = write(fTerminal, bytes.data(), bytes.size());
      if (written < 0 && errno != EINTR) {
        return;
      }
      bytes.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
  }

  // Reads until the text stands in the output behind the one that was found last. False when it does not come.
  bool WaitForText(const std::string& text, Milliseconds deadline = sDeadline) {
    const auto end = Clock::now() + deadline;
    for (;;) {
      if (const std::size_t at = fOutput.find(text, fSeen); at != std::string::npos) {
        fSeen = at + text.size();
        return true;
      }
      if (!Read(end)) {
        return false;
      }
    }
  }

  // Reads to the end. The exit code, minus the number of the signal that ended the program, or sStillRuns.
  int WaitForExit(Milliseconds deadline = sDeadline) {
    const auto end = Clock::now() + deadline;
    while (Read(end)) {
    }
    int status = 0;
    while (fChild > 0 && waitpid(fChild, &status, WNOHANG) == 0) {
      if (Clock::now() >= end) {
        return sStillRuns;
      }
      std::this_thread::sleep_for(Milliseconds(1));
    }
    fChild = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

  // All that has been read so far.
  const std::string& GetOutput() const { return fOutput; }

 private:
  using Clock = std::chrono::steady_clock;

  // Waits for more output. False at its end and at the deadline.
  bool Read(Clock::time_point end) {
    for (;;) {
      const auto left = std::chrono::duration_cast<Milliseconds>(end - Clock::now()).count();
      pollfd ready{fTerminal, POLLIN, 0};
      const int polled = left <= 0 ? 0 : poll(&ready, 1, static_cast<int>(left));
      if (polled == 0) {
        return false;
      }
      char buffer[4096];
      const ssize_t got = polled < 0 ? -1 : read(fTerminal, buffer, sizeof buffer);
      if (got > 0) {
        fOutput.append(buffer, static_cast<std::size_t>(got));
        return true;
      }
      if (got == 0 || errno != EINTR) {  // the last one who had the terminal open has closed it
        return false;
      }
    }
  }

  int fTerminal = -1;
  pid_t fChild = -1;
  std::string fOutput;
  std::size_t fSeen = 0;
};
