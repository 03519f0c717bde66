#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "headunit/LocatedJson.h"

namespace headunit {

/// What a number in a drive may be.
struct Range {
  double least = 0;
  double most = 0;
  const char* unit = "";
};

/// The members of one object in a drive, taken out one after another; whatever is left over is a mistake. All
/// operations throw JsonProblem, with the line, for what is not as it should be.
class DriveFields {
 public:
  /// `name`: what the object is called in messages.
  DriveFields(const JsonNode& node, std::string name);

  // An absent member is none; one that is there must be right.
  std::optional<double> number(const std::string& key, const Range& range);
  std::optional<bool> flag(const std::string& key);
  const JsonNode* object(const std::string& key);
  const JsonNode* list(const std::string& key);
  const JsonNode* any(const std::string& key);

  /// A member that must be there.
  double requiredNumber(const std::string& key, const Range& range);

  /// To be called last: no member may be left.
  void finish() const;

  int line() const { return node_.line; }

 private:
  const JsonNode* take(const std::string& key, JsonNode::Kind kind, const char* kindName);

  const JsonNode& node_;
  const std::string name_;
  std::set<std::string> taken_;
};

/// Single values, wherever they stand; `name` is what they are called in messages.
double numberIn(const JsonNode& node, const std::string& name, const Range& range);
bool flagIn(const JsonNode& node, const std::string& name);
std::vector<double> numbersIn(const JsonNode& node, const std::string& name, const Range& range);
std::vector<bool> flagsIn(const JsonNode& node, const std::string& name);
/// One of the words in `words`, as its place there.
std::size_t wordIn(const JsonNode& node, const std::string& name, const std::vector<std::string>& words);

}  // namespace headunit
