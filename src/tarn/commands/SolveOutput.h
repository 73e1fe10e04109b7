// What `solve` prints of its answers, as text or as JSON.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "tarn/Session.h"
#include "tarn/commands/Interrupt.h"

namespace tarn {

enum class Format { Text, Json };

enum class Answer {
  Satisfied,      // solutions, perhaps not all
  AllSolutions,   // solutions, and there is no further one
  Optimal,        // solutions, and there is no better one than the last
  Unsatisfiable,  // there is no solution
  Unknown
};

// One number of the statistics.
struct Figure {
  const char* fLabel;  // as text
  const char* fKey;    // in JSON
  std::string fNumber;
  const char* fUnit;
};

void PrintSolution(Session& session, const std::optional<VokLong>& objective, Format format, std::ostream& out);
// `stoppedBy` names what ended the search before its end; empty when nothing did.
void PrintResult(Answer answer, const std::string& stoppedBy, const std::vector<Figure>& figures, Format format,
                 std::ostream& out);
// One line for each figure.
void PrintFigures(const std::vector<Figure>& figures, std::ostream& err);
// "tarn: stopped by the time limit"
void PrintStopNote(const std::string& stoppedBy, std::ostream& err);

// The name of a reason, as it stands in the result and in the note.
std::string GetName(StopReason reason);

}  // namespace tarn
