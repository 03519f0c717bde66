#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace headunit {

/// A JSON value that knows the line that it ends in.
struct JsonNode {
  enum class Kind { null, boolean, number, text, list, object };

  Kind kind = Kind::null;
  int line = 1;
  bool boolean = false;
  double number = 0;
  std::string text;
  std::vector<JsonNode> items;                            ///< of a list
  std::vector<std::pair<std::string, JsonNode>> members;  ///< of an object, in order; keys may repeat
};

/// What is wrong with a file, and in which line.
class JsonProblem : public std::runtime_error {
 public:
  JsonProblem(int line, const std::string& reason) : std::runtime_error(reason), line_(line) {}
  int line() const { return line_; }

 private:
  int line_;
};

/// Throws JsonProblem for text that is not JSON, or is nested more deeply than any file of ours.
JsonNode parseLocatedJson(const std::string& text);

}  // namespace headunit
