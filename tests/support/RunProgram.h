// Runs a program of the build tree and captures what it prints.
#pragma once

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

// A file in the temporary directory, removed with this object.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& content = {}) {
    char name[] = "/tmp/voktarn_test_XXXXXX";
    const int file = mkstemp(name);
    fPath = name;
    close(file);
    std::ofstream(fPath, std::ios::binary) << content;
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() { unlink(fPath.c_str()); }

  const std::string& GetPath() const { return fPath; }
  std::string Read() const {
    std::ifstream file(fPath, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::string fPath;
};

struct ProgramResult {
  int fExitCode = -1;  // minus the number of the signal that ended it
  std::string fOut;
  std::string fErr;
};

struct ProgramInput {
  std::string fText;
  int fSignal = 0;  // sent to the program after fDelay
  std::chrono::milliseconds fDelay{};
};

inline ProgramResult RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                                const ProgramInput& input = {}) {
  const TemporaryFile in(input.fText);
  const TemporaryFile out;
  const TemporaryFile err;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, in.GetPath().c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, out.GetPath().c_str(), O_WRONLY | O_TRUNC, 0);
  posix_spawn_file_actions_addopen(&actions, 2, err.GetPath().c_str(), O_WRONLY | O_TRUNC, 0);
  std::vector<char*> argv{const_cast<char*>(program.c_str())};
  for (const std::string& argument : arguments) {
    argv.push_back(const_cast<char*>(argument.c_str()));
  }
  argv.push_back(nullptr);
  ProgramResult result;
  pid_t child = 0;
  const int failed = posix_spawn(&child, program.c_str(), &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) {
    return result;
  }
  if (input.fSignal != 0) {
    std::this_thread::sleep_for(input.fDelay);
    kill(child, input.fSignal);
  }
  int status = 0;
  waitpid(child, &status, 0);
  result.fExitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  result.fOut = out.Read();
  result.fErr = err.Read();
  return result;
}
