#include "tests/numerics/formula/TreeText.h"

#include <bit>
#include <cmath>
#include <vector>

namespace morvelan::test {

using namespace numerics;

std::string ExactText(double value) {
  if (std::signbit(value)) return "(-" + ExactText(-value) + ")";
  int exponent = 0;
  auto mantissa = static_cast<std::int64_t>(std::ldexp(std::frexp(value, &exponent), 53));
  exponent -= 53;
  for (; mantissa != 0 && mantissa % 2 == 0; mantissa /= 2) ++exponent;
  if (mantissa == 0) return "0";
  const std::string digits = std::to_string(mantissa);
  if (exponent == 0) return digits;
  if (exponent > 0 && value < 0x1p53) return std::to_string(mantissa << exponent);
  if (exponent < 0 && exponent > -53) return "(" + digits + "/" + std::to_string(std::int64_t{1} << -exponent) + ")";
  return "(" + digits + "*2^" + std::to_string(exponent) + ")";
}

namespace {

constexpr std::string_view kOperators = " +-*/ ^";

std::string NodeText(const ExpressionNode& node, std::span<const std::string> children,
                     std::span<const std::string> variables) {
  if (node.kind == NodeKind::kConstant) return ExactText(node.value);
  if (node.kind == NodeKind::kVariable) return '"' + variables[static_cast<std::size_t>(node.index)] + '"';
  if (node.kind == NodeKind::kNegation) return "(-" + children[0] + ")";
  if (node.kind <= NodeKind::kPower && node.kind != NodeKind::kUnresolvedCall)
    return "(" + children[0] + kOperators[static_cast<std::size_t>(node.kind)] + children[1] + ")";
  const NodeKind kind = node.kind == NodeKind::kUnresolvedCall ? FunctionKind(node.index) : node.kind;
  std::string text(DisplayName(kind));
  for (std::size_t i = 0; i < children.size(); ++i) text += (i == 0 ? "(" : ",") + children[i];
  return text + (children.empty() ? "()" : ")");
}

}  // namespace

std::string TreeText(const ExpressionTree& tree, std::span<const std::string> variables) {
  std::vector<std::string> texts;
  for (const ExpressionNode& node : tree.nodes) {
    const std::size_t first = texts.size() - node.childCount;
    std::string text = NodeText(node, std::span(texts).subspan(first), variables);
    texts.resize(first);
    texts.push_back(std::move(text));
  }
  return texts.back();
}

ExpressionTree Resolved(ExpressionTree tree) {
  for (ExpressionNode& node : tree.nodes)
    if (node.kind == NodeKind::kUnresolvedCall) node.kind = FunctionKind(node.index);
  return tree;
}

bool SameValue(double a, double b) {
  return (std::isnan(a) && std::isnan(b)) || std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

}  // namespace morvelan::test
