#pragma once

#include <array>
#include <optional>
#include <string>

namespace headunit {

/// PEM texts, not file names.
struct Credentials {
  std::string root;
  std::string certificate;
  std::string key;
};

/// The files of a folder that hold them, in the order above.
std::array<std::string, 3> credentialFiles(const std::string& folder);

/// Reads `root.pem`, `headunit.pem` and `headunit.key` of a folder, and checks that certificate and key
/// belong together. Nothing on failure, with a whole sentence on what is wrong and what to do in `*error`.
std::optional<Credentials> loadCredentials(const std::string& folder, std::string* error);

/// A sentence on what a phone may object to (the certificate has expired, is not valid yet, or is not signed
/// by the root), or an empty text. It is the phone that judges, and by its own clock: such credentials can
/// still be used.
std::string doubtsAbout(const Credentials& credentials);

}  // namespace headunit
