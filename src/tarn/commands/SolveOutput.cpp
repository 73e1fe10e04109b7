#include "tarn/commands/SolveOutput.h"

#include <algorithm>
#include <iomanip>
#include <locale>
#include <ostream>
#include <string_view>

#include "framework/VokTarnBoolean.h"
#include "tarn/Diagnostic.h"
#include "tarn/Printer.h"
#include "tarn/TextStream.h"

namespace tarn {
namespace {

// The text as a JSON string. Bytes that are not UTF-8 are replaced: JSON has no place for them.
std::string QuoteJson(std::string_view text) {
  const auto isSpecial = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '"' || c == '\\'; };
  TextWriter quoted;
  quoted << '"' << std::hex << std::setfill('0');
  while (!text.empty()) {
    const auto special = std::find_if(text.begin(), text.end(), isSpecial);
    quoted << MakePrintable({text.begin(), special});
    if (special != text.end()) {
      quoted << "\\u" << std::setw(4) << static_cast<unsigned>(*special);
    }
    text = {special == text.end() ? special : special + 1, text.end()};
  }
  quoted << '"';
  return quoted.str();
}

// A value that has one possible value: a number, a truth value, or its text form.
std::string FormatJson(const VokTarnAny& value) {
  if (value.IsDerivedFrom(VokTarnInteger::sIdent) != 0) {
    return std::to_string(static_cast<const VokTarnInteger&>(value).GetLowerBound());
  }
  if (value.IsDerivedFrom(VokTarnBoolean::sIdent) != 0) {
    return static_cast<const VokTarnBoolean&>(value).IsPossible(1) != 0 ? "true" : "false";
  }
  TextWriter text;
  text.imbue(std::locale::classic());
  value.PrintOn(text);
  return QuoteJson(text.str());
}

const char* GetStatus(Answer answer) {
  switch (answer) {
    case Answer::Satisfied:
      return "SATISFIED";
    case Answer::AllSolutions:
      return "ALL_SOLUTIONS";
    case Answer::Optimal:
      return "OPTIMAL";
    case Answer::Unsatisfiable:
      return "UNSATISFIABLE";
    default:
      return "UNKNOWN";
  }
}

const char* GetText(Answer answer) {
  switch (answer) {
    case Answer::Satisfied:
      return "";
    case Answer::Unsatisfiable:
      return sUnsatisfiable;
    case Answer::Unknown:
      return sUnknown;
    default:
      return sExhausted;
  }
}

}  // namespace

void PrintSolution(Session& session, const std::optional<VokLong>& objective, Format format, std::ostream& out) {
  if (format == Format::Text) {
    PrintVariables(session, out);
    out << sSolutionEnd << std::flush;
    return;
  }
  out << R"({"type":"solution","values":{)";
  const std::vector<Model::Variable>& variables = session.GetModel().GetVariables();
  for (std::size_t i = 0; i < variables.size(); ++i) {
    out << (i == 0 ? "" : ",") << QuoteJson(variables[i].fName) << ':'
        << FormatJson(session.GetNetwork().GetValue(session.GetVariables()[i]));
  }
  out << '}';
  if (objective) {
    out << R"(,"objective":)" << *objective;
  }
  out << "}\n" << std::flush;
}

void PrintResult(Answer answer, const std::string& stoppedBy, const std::vector<Figure>& figures, Format format,
                 std::ostream& out) {
  if (format == Format::Text) {
    out << GetText(answer);
    return;
  }
  out << R"({"type":"result","status":")" << GetStatus(answer) << '"';
  if (!stoppedBy.empty()) {
    out << R"(,"stoppedBy":)" << QuoteJson(stoppedBy);
  }
  if (!figures.empty()) {
    out << R"(,"statistics":)";
    char before = '{';
    for (const Figure& figure : figures) {
      out << before << '"' << figure.fKey << "\":" << figure.fNumber;
      before = ',';
    }
    out << '}';
  }
  out << "}\n";
}

void PrintFigures(const std::vector<Figure>& figures, std::ostream& err) {
  for (const Figure& figure : figures) {
    err << std::left << std::setw(14) << std::string(figure.fLabel) + ':' << figure.fNumber << figure.fUnit << '\n';
  }
}

void PrintStopNote(const std::string& stoppedBy, std::ostream& err) {
  err << "tarn: stopped by " << stoppedBy << '\n';
}

std::string GetName(StopReason reason) {
  switch (reason) {
    case StopReason::Signal:
      return "a signal";
    case StopReason::Time:
      return "the time limit";
    case StopReason::Memory:
      return "the memory limit";
    default:
      return {};
  }
}

}  // namespace tarn
