#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "flatzinc/Model.h"
#include "framework/VokTarnChoices.h"

namespace fzn {

// What the search annotations of a problem say: groups of variables with orders, and at the end all other variables.
// A group of a warm start looks after given values alone, so its variables are among those others, too.
//
// Variables  `impact` ranks as `first_fail`.
// Order      Search annotations that stand side by side, which have no order, are taken from last to first: that is
//            how the model's author wrote them.
class SearchAnnotations {
 public:
  // The value of the network that stands for a variable of the model.
  using Values = std::function<VokTarnValueId(std::size_t variable)>;

  // Names that are not known go to GetUnknown; their groups fall to the last group, or their choices to the default.
  SearchAnnotations(const Model& model, std::size_t valueCount, const Values& values);

  const std::vector<VokTarnChoices::Group>& GetGroups() const noexcept { return fGroups; }
  const std::vector<std::string>& GetUnknown() const noexcept { return fUnknown; }
  // Whether an annotation asks for restarts, of whatever sequence.
  bool Restarts() const noexcept { return fRestarts; }
  // All values that the problem's variables stand for, those that the annotations name first, each once.
  const std::vector<VokTarnValueId>& GetAll() const noexcept { return fAll; }

 private:
  void AddAnnotation(const Model& model, const Argument& annotation, const Values& values, unsigned depth);
  void AddSearch(const Model& model, const Call& call, const Values& values);
  void AddWarmStart(const Model& model, const Call& call, const Values& values);
  void AddOthers(const Model& model, std::size_t valueCount, const Values& values);
  template <class Order, std::size_t size>
  Order Find(const std::pair<const char*, Order> (&table)[size], const std::string& name, Order otherwise);

  std::vector<VokTarnChoices::Group> fGroups;
  std::vector<VokTarnValueId> fAll;
  std::vector<std::string> fUnknown;
  bool fRestarts = false;
};

}  // namespace fzn
