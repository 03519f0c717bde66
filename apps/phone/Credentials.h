#ifndef PHONE_CREDENTIALS_H
#define PHONE_CREDENTIALS_H

#include <array>
#include <optional>
#include <string>

namespace phone {

/// PEM texts, not file names.
struct Credentials {
  std::string root;         ///< Trust anchor; signs both sides.
  std::string certificate;  ///< The phone's own, further chain certificates behind it if there are any.
  std::string key;          ///< Without a passphrase.
};

/// The files of a folder of credentials.
std::array<std::string, 3> credentialFiles(const std::string& folder);

/// Reads `root.pem`, `phone.pem` and `phone.key` of a folder. Empty on failure, and `error` then names the
/// file and what to do.
std::optional<Credentials> loadCredentials(const std::string& folder, std::string* error);

/// A sentence on what a careful head unit will object to (the certificate has expired, is not valid yet, or
/// does not lead to the root), or an empty text. Such credentials can still be used.
std::string doubtsAbout(const Credentials& credentials);

}  // namespace phone

#endif
