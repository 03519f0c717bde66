#include "headunit/LocatedJson.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

#include "headunit/Printable.h"

namespace headunit {
namespace {

using nlohmann::json;

// More than anybody means, and few enough for what goes through the tree by recursion.
constexpr std::size_t DEEPEST = 100;

/// How far the parser has come.
struct Trace {
  const char* lastRead;
  bool wantedMore = false;  ///< it has looked for a character behind the last one
};

/// Walks through the text and leaves behind where it has been.
class TracedCharacter {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  TracedCharacter(const char* at, Trace* trace) : at_(at), trace_(trace) {}
  const char& operator*() const { return *(trace_->lastRead = at_); }
  TracedCharacter& operator++() {
    ++at_;
    return *this;
  }
  TracedCharacter operator++(int) { return {at_++, trace_}; }
  // The parser compares with the end only, before each character that it takes.
  bool operator==(const TracedCharacter& other) const {
    const bool isAtEnd = at_ == other.at_;
    trace_->wantedMore = isAtEnd;
    return isAtEnd;
  }
  bool operator!=(const TracedCharacter& other) const { return !(*this == other); }

 private:
  const char* at_;
  Trace* trace_;
};

/// Builds the tree from the parser's events. The members of an object carry their key until their value is
/// there.
class TreeBuilder {
 public:
  TreeBuilder(const char* begin, const Trace* trace) : counted_(begin), trace_(trace) {}

  bool null() { return put({}); }
  bool boolean(bool value) {
    JsonNode node;
    node.kind = JsonNode::Kind::boolean;
    node.boolean = value;
    return put(std::move(node));
  }
  bool number_integer(json::number_integer_t value) { return number(static_cast<double>(value)); }
  bool number_unsigned(json::number_unsigned_t value) { return number(static_cast<double>(value)); }
  bool number_float(json::number_float_t value, const std::string&) { return number(value); }
  bool string(std::string& value) {
    JsonNode node;
    node.kind = JsonNode::Kind::text;
    node.text = std::move(value);
    return put(std::move(node));
  }
  bool binary(json::binary_t&) { return false; }
  bool start_object(std::size_t) { return open(JsonNode::Kind::object); }
  bool start_array(std::size_t) { return open(JsonNode::Kind::list); }
  bool end_object() { return close(); }
  bool end_array() { return close(); }
  bool key(std::string& name) {
    keys_.back() = std::move(name);
    return true;
  }
  bool parse_error(std::size_t, const std::string& lastToken, const json::exception& error) {
    throw JsonProblem(line(), reasonFor(printable(lastToken), error));
  }

  JsonNode takeRoot() { return std::move(root_); }

 private:
  // A number is known to end only by what follows it, so the last character read does not count yet.
  int line() {
    line_ += static_cast<int>(std::count(counted_, trace_->lastRead, '\n'));
    counted_ = trace_->lastRead;
    return line_;
  }

  std::string reasonFor(const std::string& lastToken, const json::exception& error) const {
    if (dynamic_cast<const json::out_of_range*>(&error) != nullptr)
      return "the number " + lastToken + " is too large";
    if (trace_->wantedMore && !isComplete_) return "the file ends too soon";
    return "this is not JSON, at or before '" + lastToken + "'";
  }

  bool number(double value) {
    JsonNode node;
    node.kind = JsonNode::Kind::number;
    node.number = value;
    return put(std::move(node));
  }

  bool open(JsonNode::Kind kind) {
    JsonNode node;
    node.kind = kind;
    node.line = line();
    if (open_.size() == DEEPEST) throw JsonProblem(node.line, "lists and objects are nested too deeply");
    open_.push_back(std::move(node));
    keys_.emplace_back();
    return true;
  }

  bool close() {
    JsonNode node = std::move(open_.back());
    open_.pop_back();
    keys_.pop_back();
    return add(std::move(node));
  }

  bool put(JsonNode node) {
    node.line = line();
    return add(std::move(node));
  }

  bool add(JsonNode node) {
    if (open_.empty()) {
      root_ = std::move(node);
      isComplete_ = true;
    } else if (open_.back().kind == JsonNode::Kind::list) {
      open_.back().items.push_back(std::move(node));
    } else {
      open_.back().members.emplace_back(keys_.back(), std::move(node));
    }
    return true;
  }

  const char* counted_;
  const Trace* const trace_;
  int line_ = 1;
  std::vector<JsonNode> open_;
  std::vector<std::string> keys_;
  JsonNode root_;
  bool isComplete_ = false;
};

}  // namespace

JsonNode parseLocatedJson(const std::string& text) {
  const char* const begin = text.data();
  Trace trace{begin};
  TreeBuilder builder(begin, &trace);
  json::sax_parse(TracedCharacter(begin, &trace), TracedCharacter(begin + text.size(), &trace), &builder);
  return builder.takeRoot();
}

}  // namespace headunit
