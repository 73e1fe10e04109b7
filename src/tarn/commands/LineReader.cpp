#include "tarn/commands/LineReader.h"

#include <histedit.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <filesystem>
#include <new>

#include "tarn/Diagnostic.h"
#include "tarn/commands/Interrupt.h"

namespace tarn {
namespace {

class PlainReader : public LineReader {
 public:
  std::optional<std::string> Read(const std::string&) override {
    std::string line;
    int c = std::getc(stdin);
    if (c == EOF) {
      return std::nullopt;
    }
    for (; c != EOF && c != '\n'; c = line.size() < sMaxLine ? std::getc(stdin) : '\n') {
      line += static_cast<char>(c);
    }
    return line;
  }

 private:
  // An input without line ends must not fill the memory.
  static constexpr std::size_t sMaxLine = std::size_t{1} << 20U;
};

std::filesystem::path GetHistoryPath() {
  const auto read = [](const char* name) {
    const char* value = std::getenv(name);
    return std::filesystem::path(value == nullptr ? "" : value);
  };
  // A relative directory is to be taken for none (XDG base directory rules).
  if (const std::filesystem::path state = read("XDG_STATE_HOME"); state.is_absolute()) {
    return state / "tarn" / "history";
  }
  const std::filesystem::path home = read("HOME");
  return home.is_absolute() ? home / ".local" / "state" / "tarn" / "history" : std::filesystem::path();
}

// Holds back the signals that interrupt.
class SignalBlock {
 public:
  explicit SignalBlock(sigset_t& before) : fBefore(before) {
    sigset_t held;
    sigemptyset(&held);
    sigaddset(&held, SIGINT);
    sigaddset(&held, SIGTERM);
    sigprocmask(SIG_BLOCK, &held, &fBefore);
  }
  SignalBlock(const SignalBlock&) = delete;
  SignalBlock& operator=(const SignalBlock&) = delete;
  ~SignalBlock() { sigprocmask(SIG_SETMASK, &fBefore, nullptr); }

 private:
  sigset_t& fBefore;
};

class TerminalReader : public LineReader {
 public:
  explicit TerminalReader(Completer completer)
      : fCompleter(std::move(completer)),
        fHistory(history_init()),
        fEditor(el_init("tarn", stdin, stdout, stderr)),
        fHistoryPath(GetHistoryPath()) {
    if (fHistory == nullptr || fEditor == nullptr) {
      throw std::bad_alloc();
    }
    HistEvent event{};
    history(fHistory.get(), &event, H_SETSIZE, sHistorySize);
    history(fHistory.get(), &event, H_SETUNIQUE, 1);
    history(fHistory.get(), &event, H_LOAD, fHistoryPath.c_str());
    EditLine* const editor = fEditor.get();
    el_set(editor, EL_CLIENTDATA, this);
    el_set(editor, EL_PROMPT, GetPrompt);
    el_set(editor, EL_GETCFN, ReadCharacter);
    el_set(editor, EL_EDITOR, "emacs");
    el_set(editor, EL_HIST, history, fHistory.get());
    // The names are kept as they are passed; el_set would pass copies that nobody frees.
    el_wset(editor, EL_ADDFN, L"tarn-complete", L"Complete the word", CompleteWord);
    el_set(editor, EL_BIND, "^I", "tarn-complete", nullptr);
    el_source(editor, nullptr);
  }

  ~TerminalReader() override {
    if (!fHasLines || fHistoryPath.empty()) {
      return;
    }
    std::error_code unwritten;
    std::filesystem::create_directories(fHistoryPath.parent_path(), unwritten);
    HistEvent event{};
    history(fHistory.get(), &event, H_SAVE, fHistoryPath.c_str());
  }

  std::optional<std::string> Read(const std::string& prompt) override {
    fPrompt = prompt;
    el_resize(fEditor.get());
    int count = 0;
    const SignalBlock block(fUnblocked);
    const char* text = IsInterrupted() ? nullptr : el_gets(fEditor.get(), &count);
    if (text == nullptr || count <= 0) {
      std::puts("");
      return std::nullopt;
    }
    std::string line(text, static_cast<std::size_t>(count));
    if (line.ends_with('\n')) {
      line.pop_back();
    }
    if (line.find_first_not_of(" \t") != std::string::npos) {
      HistEvent event{};
      history(fHistory.get(), &event, H_ENTER, line.c_str());
      fHasLines = true;
    }
    return line;
  }

 private:
  static constexpr int sHistorySize = 1000;

  static TerminalReader& Get(EditLine* editor) {
    void* reader = nullptr;
    el_get(editor, EL_CLIENTDATA, &reader);
    return *static_cast<TerminalReader*>(reader);
  }

  // A signal comes through only while this waits, or it would be noticed no sooner than the next key.
  static int ReadCharacter(EditLine* editor, wchar_t* character) {
    std::mbstate_t state{};
    for (;;) {
      pollfd ready{STDIN_FILENO, POLLIN, 0};
      if (ppoll(&ready, 1, nullptr, &Get(editor).fUnblocked) < 0) {
        if (errno != EINTR || IsInterrupted()) {
          return -1;
        }
        continue;
      }
      char byte = 0;
      const ssize_t got = read(STDIN_FILENO, &byte, 1);
      if (got <= 0) {
        return static_cast<int>(got);
      }
      const std::size_t length = std::mbrtowc(character, &byte, 1, &state);
      if (length <= 1) {
        return 1;
      }
      if (length == static_cast<std::size_t>(-1)) {  // no character begins so
        state = {};
      }
    }
  }

  static char* GetPrompt(EditLine* editor) { return Get(editor).fPrompt.data(); }

  // Inserts what all candidates have in common, or lists them when that is nothing.
  static unsigned char CompleteWord(EditLine* editor, int) {
    const LineInfo* line = el_line(editor);
    const std::string_view before(line->buffer, static_cast<std::size_t>(line->cursor - line->buffer));
    const Completion completion = Get(editor).fCompleter(before);
    const std::vector<std::string>& candidates = completion.fCandidates;
    if (candidates.empty()) {
      return CC_REFRESH_BEEP;
    }
    std::string common = candidates.front();
    for (const std::string& candidate : candidates) {
      common.resize(static_cast<std::size_t>(std::ranges::mismatch(common, candidate).in1 - common.begin()));
    }
    std::string more = common.substr(before.size() - completion.fStart);
    if (candidates.size() == 1 && !common.ends_with('/')) {
      more += ' ';
    }
    if (!more.empty()) {
      return el_insertstr(editor, more.c_str()) == 0 ? CC_REFRESH : CC_REFRESH_BEEP;
    }
    std::string list;
    for (const std::string& candidate : candidates) {
      list += (list.empty() ? "\n" : "  ") + MakePrintable(candidate);
    }
    std::puts(list.c_str());
    return CC_REDISPLAY;
  }

  struct Closer {
    void operator()(EditLine* editor) const noexcept { el_end(editor); }
    void operator()(History* lines) const noexcept { history_end(lines); }
  };

  Completer fCompleter;
  std::unique_ptr<History, Closer> fHistory;
  std::unique_ptr<EditLine, Closer> fEditor;
  std::filesystem::path fHistoryPath;
  std::string fPrompt;
  sigset_t fUnblocked{};  // the signals that were blocked before a line was awaited
  bool fHasLines = false;
};

}  // namespace

std::unique_ptr<LineReader> MakePlainReader() {
  return std::make_unique<PlainReader>();
}

std::unique_ptr<LineReader> MakeTerminalReader(LineReader::Completer completer) {
  // Characters of several bytes are edited as one.
  std::setlocale(LC_CTYPE, "");
  return std::make_unique<TerminalReader>(std::move(completer));
}

}  // namespace tarn
