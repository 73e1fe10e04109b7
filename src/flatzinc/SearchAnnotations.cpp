#include "flatzinc/SearchAnnotations.h"

#include <algorithm>
#include <limits>
#include <span>
#include <utility>

namespace fzn {
namespace {

// Annotations deeper than this are not search annotations of a sane model.
constexpr unsigned kDeepest = 100;

std::string GetText(const Model& model, const Argument& argument) {
  switch (argument.fKind) {
    case Argument::Kind::Text:
      return model.fTexts[static_cast<std::size_t>(argument.fNumber)];
    case Argument::Kind::Call:
      return std::string(model.GetName(model.fCalls[static_cast<std::size_t>(argument.fNumber)]));
    default:
      return {};
  }
}

}  // namespace

SearchAnnotations::SearchAnnotations(const Model& model, std::size_t valueCount, const Values& values) {
  const std::vector<Argument>& annotations = model.fSolve.fAnnotations;
  for (auto annotation = annotations.rbegin(); annotation != annotations.rend(); ++annotation) {
    AddAnnotation(model, *annotation, values, 0);
  }
  AddOthers(model, valueCount, values);
}

void SearchAnnotations::AddAnnotation(const Model& model, const Argument& annotation, const Values& values,
                                      unsigned depth) {
  if (annotation.fKind != Argument::Kind::Call || depth > kDeepest) {
    if (const std::string text = GetText(model, annotation); !text.empty() && text != "restart_none") {
      fUnknown.push_back(text);
    }
    return;
  }
  const Call& call = model.fCalls[static_cast<std::size_t>(annotation.fNumber)];
  const std::string_view name = model.GetName(call);
  const std::span<const Argument> arguments = model.GetArguments(call);
  if (name == "seq_search" && !arguments.empty() && arguments[0].fKind == Argument::Kind::List) {
    for (std::uint32_t i = 0; i < arguments[0].fCount; ++i) {
      AddAnnotation(model, model.fArguments[static_cast<std::size_t>(arguments[0].fNumber) + i], values, depth + 1);
    }
  } else if ((name == "int_search" || name == "bool_search") && arguments.size() >= 3) {
    AddSearch(model, call, values);
  } else if ((name == "warm_start" || name == "warm_start_int" || name == "warm_start_bool") && arguments.size() >= 2) {
    AddWarmStart(model, call, values);
  } else if (name.starts_with("restart_")) {
    fRestarts = true;
  } else {
    fUnknown.emplace_back(name);
  }
}

template <class Order, std::size_t size>
Order SearchAnnotations::Find(const std::pair<const char*, Order> (&table)[size], const std::string& name,
                              Order otherwise) {
  const auto* const row =
      std::find_if(std::begin(table), std::end(table), [&name](const auto& pair) { return name == pair.first; });
  if (row == std::end(table)) {
    fUnknown.push_back(name);
    return otherwise;
  }
  return row->second;
}

void SearchAnnotations::AddSearch(const Model& model, const Call& call, const Values& values) {
  static constexpr std::pair<const char*, VokTarnVariableOrder> kVariableOrders[] = {
      {"input_order", VokTarnVariableOrder::InputOrder},
      {"first_fail", VokTarnVariableOrder::FirstFail},
      {"anti_first_fail", VokTarnVariableOrder::AntiFirstFail},
      {"smallest", VokTarnVariableOrder::Smallest},
      {"largest", VokTarnVariableOrder::Largest},
      {"occurrence", VokTarnVariableOrder::Occurrence},
      {"most_constrained", VokTarnVariableOrder::MostConstrained},
      {"max_regret", VokTarnVariableOrder::MaxRegret},
      {"dom_w_deg", VokTarnVariableOrder::Weighted},
      {"impact", VokTarnVariableOrder::FirstFail}};
  static constexpr std::pair<const char*, VokTarnValueOrder> kValueOrders[] = {
      {"indomain_min", VokTarnValueOrder::Min},
      {"indomain", VokTarnValueOrder::Min},
      {"indomain_max", VokTarnValueOrder::Max},
      {"indomain_median", VokTarnValueOrder::Median},
      {"indomain_middle", VokTarnValueOrder::Middle},
      {"indomain_split", VokTarnValueOrder::HalveMin},
      {"indomain_reverse_split", VokTarnValueOrder::HalveMax},
      {"indomain_interval", VokTarnValueOrder::Interval},
      {"indomain_random", VokTarnValueOrder::Random},
      {"indomain_split_random", VokTarnValueOrder::HalveRandom},
      {"outdomain_min", VokTarnValueOrder::OutMin},
      {"outdomain_max", VokTarnValueOrder::OutMax},
      {"outdomain_median", VokTarnValueOrder::OutMedian},
      {"outdomain_random", VokTarnValueOrder::OutRandom}};
  const std::span<const Argument> arguments = model.GetArguments(call);
  if (arguments[0].fKind != Argument::Kind::Array) {
    return;  // an empty list has no kind of its own
  }
  VokTarnChoices::Group group{{},
                              Find(kVariableOrders, GetText(model, arguments[1]), VokTarnVariableOrder::InputOrder),
                              Find(kValueOrders, GetText(model, arguments[2]), VokTarnValueOrder::Min),
                              {}};
  for (const Term& term : model.GetTerms(arguments[0])) {
    if (term.fIsVariable) {
      group.fVariables.push_back(values(static_cast<std::size_t>(term.fNumber)));
    }
  }
  fGroups.push_back(std::move(group));
}

// The variables get the values first that are given for them.
void SearchAnnotations::AddWarmStart(const Model& model, const Call& call, const Values& values) {
  const std::span<const Argument> arguments = model.GetArguments(call);
  if (arguments[0].fKind != Argument::Kind::Array || arguments[1].fKind != Argument::Kind::Array) {
    return;
  }
  const std::span<const Term> variables = model.GetTerms(arguments[0]);
  const std::span<const Term> given = model.GetTerms(arguments[1]);
  VokTarnChoices::Group group{{}, VokTarnVariableOrder::InputOrder, VokTarnValueOrder::Min, {}};
  for (std::size_t i = 0; i < std::min(variables.size(), given.size()); ++i) {
    if (variables[i].fIsVariable && !given[i].fIsVariable && given[i].fNumber >= std::numeric_limits<VokLong>::min() &&
        given[i].fNumber <= std::numeric_limits<VokLong>::max()) {
      group.fVariables.push_back(values(static_cast<std::size_t>(variables[i].fNumber)));
      group.fGiven.push_back(static_cast<VokLong>(given[i].fNumber));
    }
  }
  fGroups.push_back(std::move(group));
}

// Variables that no annotation decides: first those of the author, then those that the compiler has made, at the end
// those that others determine.
void SearchAnnotations::AddOthers(const Model& model, std::size_t valueCount, const Values& values) {
  const auto isNew = [](std::vector<char>& isKnown, VokTarnValueId id) { return std::exchange(isKnown[id], 1) == 0; };
  std::vector<char> isListed(valueCount);
  std::vector<char> isDecided(valueCount);
  const auto list = [&](VokTarnValueId id) {
    if (isNew(isListed, id)) {
      fAll.push_back(id);
    }
  };
  for (const VokTarnChoices::Group& group : fGroups) {
    std::ranges::for_each(group.fVariables, list);
    if (group.fGiven.empty()) {
      std::ranges::for_each(group.fVariables, [&](VokTarnValueId id) { isDecided[id] = 1; });
    }
  }
  for (int turn = 0; turn < 3; ++turn) {
    VokTarnChoices::Group group{{}, VokTarnVariableOrder::Weighted, VokTarnValueOrder::Min, {}};
    group.fMostCompared = VokTarnChoices::sMostScanned;
    for (std::size_t i = 0; i < model.fVariables.size(); ++i) {
      const Variable& variable = model.fVariables[i];
      const int own = variable.fIsDefined ? 2 : variable.fIsIntroduced ? 1 : 0;
      if (own == turn && isNew(isDecided, values(i))) {
        list(values(i));
        group.fVariables.push_back(values(i));
      }
    }
    fGroups.push_back(std::move(group));
  }
}

}  // namespace fzn
