#include "headunit/DriveFields.h"

#include <fmt/format.h>

#include <algorithm>

#include "headunit/Printable.h"

namespace headunit {
namespace {

using Kind = JsonNode::Kind;

[[noreturn]] void complain(const JsonNode& node, const std::string& reason) {
  throw JsonProblem(node.line, reason);
}

void expect(const JsonNode& node, const std::string& name, Kind kind, const char* kindName) {
  if (node.kind != kind) complain(node, fmt::format("\"{}\" must be {}", name, kindName));
}

}  // namespace

DriveFields::DriveFields(const JsonNode& node, std::string name) : node_(node), name_(std::move(name)) {
  expect(node, name_, Kind::object, "an object");
  std::set<std::string> seen;
  for (const auto& [key, value] : node.members) {
    if (!seen.insert(key).second)
      complain(value, fmt::format("\"{}\" stands twice in {}", printable(key), name_));
  }
}

const JsonNode* DriveFields::any(const std::string& key) {
  taken_.insert(key);
  const auto found = std::find_if(node_.members.begin(), node_.members.end(),
                                  [&key](const auto& member) { return member.first == key; });
  return found == node_.members.end() ? nullptr : &found->second;
}

const JsonNode* DriveFields::take(const std::string& key, Kind kind, const char* kindName) {
  const JsonNode* const value = any(key);
  if (value != nullptr) expect(*value, key, kind, kindName);
  return value;
}

std::optional<double> DriveFields::number(const std::string& key, const Range& range) {
  const JsonNode* const value = any(key);
  if (value == nullptr) return {};
  return numberIn(*value, key, range);
}

std::optional<bool> DriveFields::flag(const std::string& key) {
  const JsonNode* const value = any(key);
  if (value == nullptr) return {};
  return flagIn(*value, key);
}

const JsonNode* DriveFields::object(const std::string& key) { return take(key, Kind::object, "an object"); }

const JsonNode* DriveFields::list(const std::string& key) { return take(key, Kind::list, "a list"); }

double DriveFields::requiredNumber(const std::string& key, const Range& range) {
  const std::optional<double> value = number(key, range);
  if (!value) complain(node_, fmt::format("{} needs \"{}\"", name_, key));
  return *value;
}

void DriveFields::finish() const {
  for (const auto& [key, value] : node_.members) {
    if (taken_.count(key) > 0) continue;
    std::string known;
    for (const std::string& name : taken_) known += (known.empty() ? "" : ", ") + name;
    complain(value, fmt::format("there is no \"{}\" in {}; it may have: {}", printable(key), name_, known));
  }
}

double numberIn(const JsonNode& node, const std::string& name, const Range& range) {
  expect(node, name, Kind::number, "a number");
  if (node.number >= range.least && node.number <= range.most) return node.number;
  complain(node, fmt::format("\"{}\" is {}, and must be from {} to {}{}{}", name, node.number, range.least,
                             range.most, *range.unit == '\0' ? "" : " ", range.unit));
}

bool flagIn(const JsonNode& node, const std::string& name) {
  expect(node, name, Kind::boolean, "true or false");
  return node.boolean;
}

std::vector<double> numbersIn(const JsonNode& node, const std::string& name, const Range& range) {
  expect(node, name, Kind::list, "a list");
  std::vector<double> numbers;
  for (const JsonNode& item : node.items) numbers.push_back(numberIn(item, name, range));
  return numbers;
}

std::vector<bool> flagsIn(const JsonNode& node, const std::string& name) {
  expect(node, name, Kind::list, "a list");
  std::vector<bool> flags;
  for (const JsonNode& item : node.items) flags.push_back(flagIn(item, name));
  return flags;
}

std::size_t wordIn(const JsonNode& node, const std::string& name, const std::vector<std::string>& words) {
  const auto found = std::find(words.begin(), words.end(), node.text);
  if (node.kind == Kind::text && found != words.end()) return static_cast<std::size_t>(found - words.begin());
  std::string allowed;
  for (const std::string& word : words) allowed += (allowed.empty() ? "\"" : ", \"") + word + "\"";
  complain(node, fmt::format("\"{}\" must be one of {}", name, allowed));
}

}  // namespace headunit
