#ifndef PHONE_SCENARIO_SERVICES_H
#define PHONE_SCENARIO_SERVICES_H

#include <protos.pb.h>

#include <string>

namespace phone::scenario {

/// Whether a scenario may call a service so: by its kind, by its id in digits, or "control".
bool isServiceName(const std::string& name);

/// Whether a scenario that says `name` can mean `service`.
bool isCalled(const Service& service, const std::string& name);

}  // namespace phone::scenario

#endif
