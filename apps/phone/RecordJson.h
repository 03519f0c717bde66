#ifndef PHONE_RECORDJSON_H
#define PHONE_RECORDJSON_H

#include <protos.pb.h>

#include <nlohmann/json.hpp>

namespace phone {

// What a record holds, each field that is set by its name. Enumerations are their numbers, bytes are text of
// two hexadecimal digits each.
nlohmann::ordered_json toJson(const SensorBatch& batch);
nlohmann::ordered_json toJson(const InputReport& report);

}  // namespace phone

#endif
