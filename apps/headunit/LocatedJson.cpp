#include "headunit/LocatedJson.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

namespace headunit {
namespace {

using nlohmann::json;

/// Walks through the text and leaves behind where it has been.
class TracedCharacter {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  TracedCharacter(const char* at, const char** lastRead) : at_(at), lastRead_(lastRead) {}
  const char& operator*() const { return *(*lastRead_ = at_); }
  TracedCharacter& operator++() {
    ++at_;
    return *this;
  }
  TracedCharacter operator++(int) { return {at_++, lastRead_}; }
  bool operator==(const TracedCharacter& other) const { return at_ == other.at_; }
  bool operator!=(const TracedCharacter& other) const { return at_ != other.at_; }

 private:
  const char* at_;
  const char** lastRead_;
};

/// Builds the tree from the parser's events. The members of an object carry their key until their value is
/// there.
class TreeBuilder {
 public:
  TreeBuilder(const char* begin, const char* const* lastRead) : counted_(begin), lastRead_(lastRead) {}

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
  bool parse_error(std::size_t, const std::string& lastToken, const json::exception&) {
    throw JsonProblem(line(), lastToken.empty() ? "the file ends too soon"
                                                : "this is not JSON, at or before '" + lastToken + "'");
  }

  JsonNode takeRoot() { return std::move(root_); }

 private:
  // A number is known to end only by what follows it, so the last character read does not count yet.
  int line() {
    line_ += static_cast<int>(std::count(counted_, *lastRead_, '\n'));
    counted_ = *lastRead_;
    return line_;
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
    } else if (open_.back().kind == JsonNode::Kind::list) {
      open_.back().items.push_back(std::move(node));
    } else {
      open_.back().members.emplace_back(keys_.back(), std::move(node));
    }
    return true;
  }

  const char* counted_;
  const char* const* lastRead_;
  int line_ = 1;
  std::vector<JsonNode> open_;
  std::vector<std::string> keys_;
  JsonNode root_;
};

}  // namespace

JsonNode parseLocatedJson(const std::string& text) {
  const char* const begin = text.data();
  const char* lastRead = begin;
  TreeBuilder builder(begin, &lastRead);
  json::sax_parse(TracedCharacter(begin, &lastRead), TracedCharacter(begin + text.size(), &lastRead),
                  &builder);
  return builder.takeRoot();
}

}  // namespace headunit
