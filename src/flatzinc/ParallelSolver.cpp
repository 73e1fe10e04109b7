#include "flatzinc/ParallelSolver.h"

#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>

namespace fzn {
namespace {

// Parts for each process: enough to keep all busy until the end, as the paper finds.
constexpr std::size_t kPartsPerProcess = 30;
constexpr unsigned kMostProcesses = 256;
constexpr int kPollMilliseconds = 10;
// How often a process tells how far it is.
constexpr unsigned kPollsPerReport = 1024;

// What goes through a pipe: this, and then as many numbers.
struct Header {
  enum Kind : std::uint32_t { Found, Finished, Undecided };
  std::uint32_t fKind;
  std::uint32_t fCount;
};

// False when nobody listens any more.
bool WriteAll(int pipe, const void* data, std::size_t size) {
  const char* next = static_cast<const char*>(data);
  while (size != 0) {
    const ssize_t written = write(pipe, next, size);
    if (written < 0 && errno != EINTR) {
      return false;
    }
    if (written > 0) {
      next += written;
      size -= static_cast<std::size_t>(written);
    }
  }
  return true;
}

void Send(int pipe, Header::Kind kind, std::span<const std::int64_t> numbers) {
  const Header header{kind, static_cast<std::uint32_t>(numbers.size())};
  if (!WriteAll(pipe, &header, sizeof header) || !WriteAll(pipe, numbers.data(), numbers.size_bytes())) {
    _exit(1);
  }
}

}  // namespace

// Written by all processes.
struct ParallelSolver::Shared {
  // What a process has done since it was started.
  struct Progress {
    std::atomic<std::uint64_t> fNodes;
    std::atomic<std::uint64_t> fFailures;
    std::atomic<std::uint64_t> fRestarts;
    std::atomic<std::uint64_t> fPropagations;
    std::atomic<std::uint64_t> fDepth;
  };

  std::atomic<std::uint64_t> fNextPart;
  std::atomic<std::int64_t> fBest;
  std::array<Progress, kMostProcesses> fProgress;
};

ParallelSolver::ParallelSolver(Builder& builder, const Options& options, std::function<bool()> interrupt,
                               std::vector<std::string>& unknown)
    : fBuilder(builder),
      fOptions(options),
      fInterrupt(std::move(interrupt)),
      fObjective(SearchSolver::FindObjective(builder)),
      fSearch(builder, options, unknown) {
  fSearch.End();
}

ParallelSolver::~ParallelSolver() {
  for (const Worker& worker : fWorkers) {
    kill(worker.fProcess, SIGKILL);
    waitpid(worker.fProcess, nullptr, 0);
    if (worker.fPipe >= 0) {
      close(worker.fPipe);
    }
  }
  if (fShared != nullptr) {
    munmap(fShared, sizeof(Shared));
  }
}

bool ParallelSolver::IsWorse(std::int64_t objective) const {
  return fBest && (fObjective->fSense == VokTarnSearch::Sense::Minimize ? objective >= *fBest : objective <= *fBest);
}

Solver::Status ParallelSolver::Next() {
  if (!fIsStarted) {
    const VokTarnNetwork::Outcome root = fBuilder.GetNetwork().Propagate();
    if (root == VokTarnNetwork::Outcome::Interrupted) {
      return Status::Stopped;
    }
    if (root == VokTarnNetwork::Outcome::Failed) {
      return fBuilder.GetNetwork().IsMemoryShort() ? Status::Undecided : Status::Exhausted;
    }
    Split();
    Start();
    fIsStarted = true;
  }
  while (fFound.empty()) {
    std::vector<pollfd> polls;
    for (const Worker& worker : fWorkers) {
      polls.push_back({worker.fPipe, POLLIN, 0});  // negative numbers are passed over
    }
    if (std::all_of(fWorkers.begin(), fWorkers.end(), [](const Worker& worker) { return worker.fPipe < 0; })) {
      return fIsUndecided ? Status::Undecided : Status::Exhausted;
    }
    if (fInterrupt()) {
      return Status::Stopped;
    }
    poll(polls.data(), polls.size(), kPollMilliseconds);
    for (std::size_t i = 0; i < polls.size(); ++i) {
      if (polls[i].revents != 0) {
        Receive(fWorkers[i]);
      }
    }
  }
  fSolution = std::move(fFound.front());
  fFound.pop_front();
  return Status::Solution;
}

// Splits all parts in two, level by level, until there are enough of them or none can be split. They stay in the order
// in which one search would come to them: what it finds early bounds the rest.
void ParallelSolver::Split() {
  VokTarnNetwork& network = fBuilder.GetNetwork();
  if (fObjective) {
    const VokTarnValueId id = fObjective->fValue;
    fBound = fObjective->fSense == VokTarnSearch::Sense::Minimize ? network.GetLower(id) : network.GetUpper(id);
  }
  const std::size_t wanted = kPartsPerProcess * fOptions.fProcesses;
  fParts = {{}};
  for (std::size_t before = 0; before < fParts.size() && fParts.size() < wanted && !fInterrupt();) {
    before = fParts.size();
    std::vector<Part> halves;
    for (const Part& part : fParts) {
      AddHalves(part, halves);
    }
    fParts = std::move(halves);
  }
}

// Two parts in place of one; the part itself when nothing is open in it, none when it has no solution.
void ParallelSolver::AddHalves(const Part& part, std::vector<Part>& halves) {
  VokTarnNetwork& network = fBuilder.GetNetwork();
  network.PushLevel();
  if (Apply(part)) {
    halves.push_back(part);
    fSearch.GetChoices().Forget();
    VokTarnAtom branch{};
    if (fSearch.GetChoices().Choose(network, 0, branch)) {
      halves.push_back(part);
      halves[halves.size() - 2].push_back(branch);
      halves.back().push_back(branch.Negate());
    }
  }
  network.PopLevel();
}

// False when the part has no solution, as far as propagation sees.
bool ParallelSolver::Apply(const Part& part) {
  VokTarnNetwork& network = fBuilder.GetNetwork();
  for (const VokTarnAtom& branch : part) {
    network.Keep(branch);
    if (network.Propagate() == VokTarnNetwork::Outcome::Failed) {
      return false;
    }
  }
  return true;
}

void ParallelSolver::Start() {
  const auto check = [](bool isRight) {
    if (!isRight) {
      throw std::system_error(errno, std::generic_category(), "cannot start the processes of a parallel search");
    }
  };
  void* place = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  check(place != MAP_FAILED);
  fShared = new (place) Shared();
  fShared->fBest = std::numeric_limits<std::int64_t>::max();
  const pid_t parent = getpid();
  const unsigned count = std::min({fOptions.fProcesses, kMostProcesses, static_cast<unsigned>(fParts.size())});
  for (unsigned i = 0; i < count; ++i) {
    std::array<int, 2> ends{};
    check(pipe(ends.data()) == 0);
    const pid_t process = fork();
    if (process == 0) {
      close(ends[0]);
      // Signals of the terminal go to all processes; this one is told by its end.
      for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGALRM}) {
        std::signal(signal, SIG_IGN);
      }
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      if (getppid() != parent) {
        _exit(1);
      }
      Work(i, ends[1]);
    }
    close(ends[1]);
    if (process < 0) {
      close(ends[0]);
      check(false);
    }
    fWorkers.push_back({process, ends[0], {}});
  }
}

// Tells how far the process is; what had been done `before` it was started is told by the one that started it.
void ParallelSolver::Report(unsigned index, const Statistics& before) {
  Shared::Progress& own = fShared->fProgress[index];
  const Statistics now = fSearch.GetStatistics();
  own.fNodes = now.fNodes - before.fNodes;
  own.fFailures = now.fFailures - before.fFailures;
  own.fRestarts = now.fRestarts - before.fRestarts;
  own.fPropagations = now.fPropagations - before.fPropagations;
  own.fDepth = now.fDepth;
}

void ParallelSolver::Work(unsigned index, int pipe) {
  const Statistics before = fSearch.GetStatistics();
  // The best objective is told as one to be minimized.
  fBuilder.GetNetwork().SetInterrupt([this, index, before, polls = 0U]() mutable {
    if (++polls % kPollsPerReport == 0) {
      Report(index, before);
    }
    const std::int64_t best = fShared->fBest.load(std::memory_order_relaxed);
    if (best != std::numeric_limits<std::int64_t>::max()) {
      fSearch.NoteKnown(static_cast<VokLong>(fObjective->fSense == VokTarnSearch::Sense::Minimize ? best : -best));
    }
    return false;
  });
  fIsUndecided = false;
  try {
    for (std::uint64_t next = fShared->fNextPart++; next < fParts.size(); next = fShared->fNextPart++) {
      fBuilder.GetNetwork().PushLevel();
      if (Apply(fParts[next])) {
        SearchPart(pipe);
      }
      fBuilder.GetNetwork().PopLevel();
      Report(index, before);
    }
  } catch (...) {
    fIsUndecided = true;
  }
  Send(pipe, fIsUndecided || fBuilder.GetNetwork().IsMemoryShort() ? Header::Undecided : Header::Finished, {});
  _exit(0);
}

void ParallelSolver::SearchPart(int pipe) {
  fSearch.Begin();
  Status status = Status::Solution;
  while (status == Status::Solution) {
    status = fSearch.Next();
    if (status != Status::Solution) {
      continue;
    }
    if (const std::optional<VokLong> objective = fSearch.GetSearch().GetBest()) {
      const std::int64_t value =
          fObjective->fSense == VokTarnSearch::Sense::Minimize ? *objective : -std::int64_t{*objective};
      std::int64_t best = fShared->fBest;
      while (value < best && !fShared->fBest.compare_exchange_weak(best, value)) {
      }
    }
    Send(pipe, Header::Found, fSearch.GetSolution());
  }
  fIsUndecided = fIsUndecided || status != Status::Exhausted;
  fSearch.End();
}

// Reads what is there. A process that has ended without saying that it was done leaves the search open.
void ParallelSolver::Receive(Worker& worker) {
  std::array<char, 65536> block{};
  const ssize_t size = read(worker.fPipe, block.data(), block.size());
  if (size < 0 && errno == EINTR) {
    return;
  }
  if (size > 0) {
    worker.fBuffer.insert(worker.fBuffer.end(), block.begin(), block.begin() + size);
    while (worker.fPipe >= 0 && TakeMessage(worker)) {
    }
    return;
  }
  fIsUndecided = true;
  close(worker.fPipe);
  worker.fPipe = -1;
}

// False when the message is not complete.
bool ParallelSolver::TakeMessage(Worker& worker) {
  Header header{};
  if (worker.fBuffer.size() < sizeof header) {
    return false;
  }
  std::memcpy(&header, worker.fBuffer.data(), sizeof header);
  const std::size_t size = sizeof header + header.fCount * sizeof(std::int64_t);
  if (worker.fBuffer.size() < size) {
    return false;
  }
  if (header.fKind == Header::Found) {
    std::vector<std::int64_t> solution(header.fCount);
    std::memcpy(solution.data(), worker.fBuffer.data() + sizeof header, header.fCount * sizeof(std::int64_t));
    const Term& objective = fBuilder.GetModel().fSolve.fObjective;
    const std::int64_t value =
        objective.fIsVariable ? solution[static_cast<std::size_t>(objective.fNumber)] : objective.fNumber;
    if (!fObjective) {
      fFound.push_back(std::move(solution));
    } else if (!IsWorse(value)) {
      fBest = value;
      fFound.push_back(std::move(solution));
    }
  } else {
    fIsUndecided = fIsUndecided || header.fKind != Header::Finished;
    close(worker.fPipe);
    worker.fPipe = -1;
  }
  worker.fBuffer.erase(worker.fBuffer.begin(), worker.fBuffer.begin() + static_cast<std::ptrdiff_t>(size));
  return true;
}

Solver::Statistics ParallelSolver::GetStatistics() const {
  Statistics sum = fSearch.GetStatistics();
  if (fShared != nullptr) {
    for (const Shared::Progress& own : fShared->fProgress) {
      sum.fNodes += own.fNodes;
      sum.fFailures += own.fFailures;
      sum.fRestarts += own.fRestarts;
      sum.fPropagations += own.fPropagations;
      sum.fDepth = std::max<std::uint64_t>(sum.fDepth, own.fDepth);
    }
  }
  return sum;
}

}  // namespace fzn
