#include "tarn/Sum.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

namespace tarn {
namespace {

// Coefficients are kept far within the integers, so that a negative one has its counterpart.
constexpr VokLong sGreatestCoefficient = 1'000'000'000;

bool IsListSum(const Node& node) {
  return node.fKind == Node::Kind::Call && node.fText == "sum" && !node.fHasBeside;
}

bool IsSign(const Node& node) {
  return node.fKind == Node::Kind::Binary && (node.fText == "+" || node.fText == "-");
}

// The expression and the number of which the node is the product, where it is one.
std::optional<Sum::Term> FindProduct(const Formula& formula, const Node& node) {
  if (node.fKind == Node::Kind::Unary && node.fText == "-") {
    return Sum::Term{node.fLeft, -1};
  }
  if (node.fKind != Node::Kind::Binary || node.fText != "*") {
    return std::nullopt;
  }
  for (const auto& [number, other] : {std::pair(node.fLeft, node.fRight), std::pair(node.fRight, node.fLeft)}) {
    const std::optional<VokLong> coefficient = ReadCoefficient(formula.fNodes[number]);
    if (coefficient && formula.fNodes[other].fKind != Node::Kind::Literal) {
      return Sum::Term{other, *coefficient};
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<VokLong> ReadCoefficient(const Node& node) {
  VokLong number = 0;
  const char* end = node.fText.data() + node.fText.size();
  const auto read = std::from_chars(node.fText.data(), end, number);
  const bool isNumber = node.fKind == Node::Kind::Literal && read.ec == std::errc() && read.ptr == end;
  return isNumber && number >= -sGreatestCoefficient && number <= sGreatestCoefficient ? std::optional(number)
                                                                                       : std::nullopt;
}

std::vector<Sum> FindSums(const Formula& formula) {
  std::vector<Sum> sums;
  std::vector<bool> isInner(formula.fNodes.size(), false);
  const auto addTerm = [&](Sum& sum, NodeIndex node, VokLong sign) {
    const std::optional<Sum::Term> product = FindProduct(formula, formula.fNodes[node]);
    if (product) {
      sum.fInner.push_back(node);
      const Node& written = formula.fNodes[node];
      if (written.fKind == Node::Kind::Binary) {
        sum.fInner.push_back(product->fNode == written.fLeft ? written.fRight : written.fLeft);
      }
    }
    sum.fTerms.push_back(product ? Sum::Term{product->fNode, sign * product->fCoefficient} : Sum::Term{node, sign});
  };
  for (auto top = static_cast<NodeIndex>(formula.fNodes.size()); top-- > 0;) {
    const Node& written = formula.fNodes[top];
    if (isInner[top] || (!IsSign(written) && !IsListSum(written))) {
      continue;
    }
    Sum sum;
    if (IsListSum(written)) {
      sum.fIsList = true;
      sum.fInner.push_back(top);
      for (NodeIndex member = written.fLeft; member < written.fRight; ++member) {
        addTerm(sum, formula.fMembers[member], 1);
      }
      std::ranges::sort(sum.fInner);
      sums.push_back(std::move(sum));
      continue;
    }
    NodeIndex node = top;
    for (; IsSign(formula.fNodes[node]); node = formula.fNodes[node].fLeft) {
      isInner[node] = true;
      sum.fInner.push_back(node);
      addTerm(sum, formula.fNodes[node].fRight, formula.fNodes[node].fText == "+" ? 1 : -1);
    }
    addTerm(sum, node, 1);
    std::ranges::reverse(sum.fTerms);
    std::ranges::sort(sum.fInner);
    sums.push_back(std::move(sum));
  }
  return sums;
}

}  // namespace tarn
