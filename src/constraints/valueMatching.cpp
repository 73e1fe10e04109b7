#include "constraints/valueMatching.h"

#include <algorithm>

VokTarnValueMatching::VokTarnValueMatching(std::vector<std::vector<std::int64_t>> domains)
    : fPossible(domains.size()), fPartner(domains.size(), sNone), fExists(true) {
  for (const std::vector<std::int64_t>& domain : domains) {
    fValues.insert(fValues.end(), domain.begin(), domain.end());
  }
  std::sort(fValues.begin(), fValues.end());
  fValues.erase(std::unique(fValues.begin(), fValues.end()), fValues.end());
  fOwner.assign(fValues.size(), sNone);
  for (std::size_t i = 0; i < domains.size(); ++i) {
    for (const std::int64_t v : domains[i]) {
      fPossible[i].push_back(
          static_cast<unsigned>(std::lower_bound(fValues.begin(), fValues.end(), v) - fValues.begin()));
    }
  }
  std::vector<unsigned> visited(fValues.size(), sNone);
  for (unsigned i = 0; i < fPossible.size() && fExists; ++i) {
    fExists = Augment(i, visited, i);
  }
}

// Finds a value for the variable, moving others to other values of theirs. `visited` holds the round in which a
// value was looked at last.
bool VokTarnValueMatching::Augment(unsigned variable, std::vector<unsigned>& visited, unsigned round) {
  for (const unsigned v : fPossible[variable]) {
    if (visited[v] == round) {
      continue;
    }
    visited[v] = round;
    if (fOwner[v] == sNone || Augment(fOwner[v], visited, round)) {
      fOwner[v] = variable;
      fPartner[variable] = v;
      return true;
    }
  }
  return false;
}

// Components are completed successors first, so what they lead to is known in time.
void VokTarnValueMatching::Visit(unsigned variable) {
  fOrder[variable] = fLowest[variable] = fVisited++;
  fStack.push_back(variable);
  bool leadsToFree = false;
  for (const unsigned v : fPossible[variable]) {
    const unsigned next = fOwner[v];
    if (next == sNone) {
      leadsToFree = true;
      continue;
    }
    if (fOrder[next] == sNone) {
      Visit(next);
    }
    if (fComponent[next] == sNone) {
      fLowest[variable] = std::min(fLowest[variable], fLowest[next]);
    }
    leadsToFree = leadsToFree || fLeadsToFree[next];
  }
  fLeadsToFree[variable] = leadsToFree;
  if (fLowest[variable] != fOrder[variable]) {
    return;
  }
  const auto first = std::find(fStack.begin(), fStack.end(), variable);
  const bool any = std::any_of(first, fStack.end(), [this](unsigned member) { return fLeadsToFree[member]; });
  for (auto member = first; member != fStack.end(); ++member) {
    fComponent[*member] = variable;
    fLeadsToFree[*member] = any;
  }
  fStack.erase(first, fStack.end());
}

std::vector<std::pair<unsigned, std::int64_t>> VokTarnValueMatching::FindUnsupported() {
  const std::size_t n = fPossible.size();
  fOrder.assign(n, sNone);
  fLowest.assign(n, sNone);
  fComponent.assign(n, sNone);
  fLeadsToFree.assign(n, false);
  for (unsigned i = 0; i < n; ++i) {
    if (fOrder[i] == sNone) {
      Visit(i);
    }
  }
  std::vector<std::pair<unsigned, std::int64_t>> unsupported;
  for (unsigned i = 0; i < n; ++i) {
    for (const unsigned v : fPossible[i]) {
      const unsigned owner = fOwner[v];
      if (owner != sNone && owner != i && fComponent[owner] != fComponent[i] && !fLeadsToFree[owner]) {
        unsupported.emplace_back(i, fValues[v]);
      }
    }
  }
  return unsupported;
}
