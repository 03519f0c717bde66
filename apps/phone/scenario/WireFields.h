#ifndef PHONE_SCENARIO_WIREFIELDS_H
#define PHONE_SCENARIO_WIREFIELDS_H

#include <nlohmann/json.hpp>
#include <string>

#include "phone/Bytes.h"

namespace phone::scenario {

/// Records as a scenario writes them: an object from field number to value. A whole number or a truth value
/// is a varint (a negative one in ten bytes, as int32 and int64 have it), a text is itself, an object is a
/// record, a list is a field that repeats, and {"hex": "..."} is bytes.
///
/// Throws std::invalid_argument, with a sentence, for anything else.
Bytes encodeFields(const nlohmann::json& fields);

/// Whether `body` has every field that `wanted` names, with that value; a list must be matched by the field's
/// values in their order. Fields that are not named do not matter.
bool hasFields(const Bytes& body, const nlohmann::json& wanted);

/// A record as hasFields() reads it, written as a scenario would. Nothing tells a record inside it from
/// bytes, so both are bytes here. What is no record is told as bytes, and what is long is cut.
std::string fieldsInWords(const Bytes& body);

/// "1f 8b", with or without spaces. Throws std::invalid_argument.
Bytes bytesOfHex(const std::string& text);

}  // namespace phone::scenario

#endif
