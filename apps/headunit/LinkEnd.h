#pragma once

#include <optional>
#include <string>
#include <vector>

namespace headunit {

/// Why a link ended.
struct LinkEnd {
  bool clean = false;
  std::string side;    ///< at whose door a fault lies: "phone", "head unit", "connection"
  std::string what;    ///< a sentence without its full stop
  std::string advice;  ///< what to do about it; empty after a clean end

  std::string words() const;  ///< "The phone: WHAT; ADVICE"

  static LinkEnd cleanly(const std::string& what) { return {true, {}, what, {}}; }
};

/// What a failed authentication comes of, as far as the library's last log lines tell.
LinkEnd explainAuthenticationFailure(const std::vector<std::string>& logLines);

/// What a link comes of that the library calls beyond repair after its authentication.
LinkEnd explainBrokenStream(const std::vector<std::string>& logLines);

}  // namespace headunit
