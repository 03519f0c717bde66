#ifndef PHONE_VERIFY_TYPENAMES_H
#define PHONE_VERIFY_TYPENAMES_H

#include <protos.pb.h>

#include <string>

namespace phone::verify {

/// How discovery lists the verification extension.
inline constexpr char verificationName[] =
    "com.corvane.drovia.projection.protocol.VantryVerificationVendorExtension";

/// "MESSAGE_SENSOR_BATCH (0x8003)", or the number alone if nobody gave it a name. The same number means
/// another message on each kind of service; `service` is null on the control channel.
std::string typeName(int type, const Service* service);

}  // namespace phone::verify

#endif
