#ifndef PHONE_VERIFY_STRANGER_H
#define PHONE_VERIFY_STRANGER_H

#include "phone/Credentials.h"

namespace phone::verify {

/// Credentials that trust whom `known` trusts, and whose own certificate nobody has signed but itself.
Credentials strangerLike(const Credentials& known);

}  // namespace phone::verify

#endif
