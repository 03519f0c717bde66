#pragma once

#include <ctime>
#include <string>

namespace test {

/// PEM texts of one side.
struct Identity {
  std::string certificate;
  std::string key;
};

/// Certificates and keys for TLS, made once for each process: EC P-256, valid from an hour ago on for a day
/// unless the name tells otherwise.
struct TestCredentials {
  std::string root;  ///< where the chains of all but the strangers end
  Identity phone;
  Identity headUnit;
  Identity expiredPhone;     ///< ran out at `expiry`
  Identity futurePhone;      ///< not valid before next year
  Identity indirectPhone;    ///< signed by an issuer whom root signed, and whose certificate follows its own
  Identity incompletePhone;  ///< the same without the issuer's certificate
  std::string strangerRoot;
  Identity strangerPhone;     ///< signed by strangerRoot
  Identity strangerHeadUnit;  ///< signed by strangerRoot
  std::string otherKey;       ///< belongs to no certificate
  time_t expiry = 0;          ///< yesterday
};

const TestCredentials& credentials();

}  // namespace test
