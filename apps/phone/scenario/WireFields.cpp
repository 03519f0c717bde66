#include "phone/scenario/WireFields.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <vector>

#include "phone/verify/Probe.h"

namespace phone::scenario {

namespace {

using nlohmann::json;

enum WireType : std::uint64_t { varint = 0, fixed64 = 1, delimited = 2, fixed32 = 5 };

bool isHex(const json& value) { return value.is_object() && value.size() == 1 && value.contains("hex"); }

std::uint64_t numberOf(const std::string& name) {
  const bool digits =
      !name.empty() && name.size() < 9 && name.find_first_not_of("0123456789") == std::string::npos;
  if (!digits || std::stoul(name) == 0) throw std::invalid_argument("\"" + name + "\" is no field number");
  return std::stoul(name);
}

bool isVarint(const json& value) { return value.is_number_integer() || value.is_boolean(); }

std::uint64_t varintOf(const json& value) {
  if (value.is_boolean()) return value.get<bool>() ? 1 : 0;
  return value.is_number_unsigned() ? value.get<std::uint64_t>()
                                    : static_cast<std::uint64_t>(value.get<std::int64_t>());
}

Bytes delimitedOf(const json& value) {
  if (isHex(value)) return bytesOfHex(value.at("hex").get<std::string>());
  if (value.is_object()) return encodeFields(value);
  if (!value.is_string())
    throw std::invalid_argument(
        "a field's value is a whole number, true, false, a text, a list or an object, not " + value.dump());
  const std::string text = value.get<std::string>();
  return Bytes(text.begin(), text.end());
}

void appendField(Bytes* to, std::uint64_t number, const json& value) {
  if (value.is_array()) {
    for (const json& one : value) appendField(to, number, one);
    return;
  }
  appendVarint(to, number << 3 | (isVarint(value) ? varint : delimited));
  if (isVarint(value)) return appendVarint(to, varintOf(value));
  const Bytes bytes = delimitedOf(value);
  appendVarint(to, bytes.size());
  append(to, bytes);
}

struct Field {
  std::uint64_t number = 0;
  WireType type = varint;
  std::uint64_t value = 0;
  Bytes bytes;
};

/// Takes a record apart, field by field.
class FieldReader {
 public:
  explicit FieldReader(const Bytes& body) : body_(body) {}

  /// Empty at the end, and where the record is damaged.
  std::optional<Field> next() {
    const std::size_t begin = at_;
    auto field = readField();
    if (!field) at_ = begin;
    return field;
  }
  bool isAtEnd() const { return at_ == body_.size(); }

 private:
  std::optional<Field> readField() {
    const auto key = readVarint();
    if (!key) return std::nullopt;
    Field field;
    field.number = *key >> 3;
    field.type = static_cast<WireType>(*key & 7);
    const auto value =
        field.type == varint || field.type == delimited ? readVarint() : std::optional<std::uint64_t>(0);
    if (!value) return std::nullopt;
    field.value = *value;
    const std::size_t size = field.type == delimited ? *value
                             : field.type == fixed64 ? 8
                             : field.type == fixed32 ? 4
                                                     : 0;
    if (size > body_.size() - at_) return std::nullopt;
    const auto begin = body_.begin() + static_cast<std::ptrdiff_t>(at_);
    field.bytes.assign(begin, begin + static_cast<std::ptrdiff_t>(size));
    at_ += size;
    return field;
  }

  std::optional<std::uint64_t> readVarint() {
    std::uint64_t value = 0;
    for (unsigned int shift = 0; at_ < body_.size() && shift < 64; shift += 7) {
      const std::uint8_t byte = body_[at_++];
      value |= std::uint64_t{byte & 0x7fU} << shift;
      if (byte <= 0x7f) return value;
    }
    return std::nullopt;
  }

  const Bytes& body_;
  std::size_t at_ = 0;
};

bool matches(const Field& field, const json& wanted) {
  if (isVarint(wanted)) return field.type == varint && field.value == varintOf(wanted);
  if (field.type != delimited) return false;
  if (wanted.is_object() && !isHex(wanted)) return hasFields(field.bytes, wanted);
  return field.bytes == delimitedOf(wanted);
}

bool isPrintable(const Bytes& bytes) {
  return !bytes.empty() && std::all_of(bytes.begin(), bytes.end(),
                                       [](std::uint8_t byte) { return byte >= 0x20 && byte < 0x7f; });
}

nlohmann::ordered_json valueOf(const Field& field) {
  if (field.type == varint) return static_cast<std::int64_t>(field.value);
  if (isPrintable(field.bytes)) return std::string(field.bytes.begin(), field.bytes.end());
  return {{"hex", verify::hex(field.bytes)}};
}

bool hasField(const std::vector<Field>& fields, std::uint64_t number, const json& wanted) {
  std::vector<const Field*> found;
  for (const Field& field : fields) {
    if (field.number == number) found.push_back(&field);
  }
  if (!wanted.is_array()) return !found.empty() && matches(*found.back(), wanted);
  if (found.size() != wanted.size()) return false;
  for (std::size_t i = 0; i < found.size(); ++i) {
    if (!matches(*found[i], wanted[i])) return false;
  }
  return true;
}

}  // namespace

Bytes encodeFields(const json& fields) {
  if (!fields.is_object()) throw std::invalid_argument("fields are an object from field number to value");
  Bytes body;
  for (const auto& [name, value] : fields.items()) appendField(&body, numberOf(name), value);
  return body;
}

bool hasFields(const Bytes& body, const json& wanted) {
  if (!wanted.is_object()) throw std::invalid_argument("fields are an object from field number to value");
  std::vector<Field> fields;
  FieldReader reader(body);
  while (auto field = reader.next()) fields.push_back(std::move(*field));
  for (const auto& [name, value] : wanted.items()) {
    if (!hasField(fields, numberOf(name), value)) return false;
  }
  return true;
}

std::string fieldsInWords(const Bytes& body) {
  constexpr std::size_t most = 300;
  nlohmann::ordered_json fields = nlohmann::ordered_json::object();
  FieldReader reader(body);
  while (auto field = reader.next()) {
    auto& value = fields[std::to_string(field->number)];
    if (value.is_null()) {
      value = valueOf(*field);
    } else {
      if (!value.is_array()) value = nlohmann::ordered_json::array({value});
      value.push_back(valueOf(*field));
    }
  }
  if (!reader.isAtEnd()) return "the bytes " + verify::hex(body);
  const std::string words = fields.dump();
  return words.size() <= most ? words : words.substr(0, most) + "...";
}

Bytes bytesOfHex(const std::string& text) {
  std::string digits;
  for (const char letter : text) {
    if (letter != ' ') digits += letter;
  }
  if (digits.size() % 2 != 0 || digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) {
    throw std::invalid_argument("\"" + text + "\" is no text of hexadecimal bytes");
  }
  Bytes bytes;
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    bytes.push_back(static_cast<std::uint8_t>(std::stoul(digits.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

}  // namespace phone::scenario
