#include "tarn/commands/Interrupt.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace {

// Watches a run that gets into the phase, does not listen to stops, and ends by itself only while it prints.
[[noreturn]] void IgnoreTheLimit(tarn::Phase phase) {
  tarn::LastWords words;
  words.fNote.fill("last words");
  words.fExitCode = 3;
  const double now = tarn::GetRunTime().count();
  tarn::StartWatch({now + 0.05, std::nullopt}, words);
  tarn::EnterPhase(phase);
  while (!tarn::IsInterrupted() || phase != tarn::Phase::Printing || tarn::GetRunTime().count() < now + 0.4) {
    pause();
  }
  std::_Exit(tarn::GetStopReason() == tarn::StopReason::Time ? 42 : 43);
}

TEST(Interrupt, TheWatchEndsARunThatDoesNotListenUnlessItPrints) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(IgnoreTheLimit(tarn::Phase::Reading), testing::ExitedWithCode(3), "last words");
  EXPECT_EXIT(IgnoreTheLimit(tarn::Phase::Searching), testing::ExitedWithCode(3), "last words");
  EXPECT_EXIT(IgnoreTheLimit(tarn::Phase::Printing), testing::ExitedWithCode(42), "^$");
}

}  // namespace
