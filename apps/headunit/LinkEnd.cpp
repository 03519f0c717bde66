#include "headunit/LinkEnd.h"

#include <algorithm>

namespace headunit {
namespace {

constexpr const char* SAME_ROOT =
    "give both sides credentials of the same root that are in date (scripts/make-credentials makes them)";

// What stands behind `mark` in the newest line that has it; empty if none does.
std::string textBehind(const std::string& mark, const std::vector<std::string>& logLines) {
  for (auto line = logLines.rbegin(); line != logLines.rend(); ++line) {
    const std::size_t found = line->find(mark);
    if (found != std::string::npos) return line->substr(found + mark.size());
  }
  return {};
}

bool anyHas(const std::string& mark, const std::vector<std::string>& logLines) {
  return std::any_of(logLines.begin(), logLines.end(),
                     [&mark](const std::string& line) { return line.find(mark) != std::string::npos; });
}

}  // namespace

std::string LinkEnd::words() const {
  return (side.empty() ? "" : "The " + side + ": ") + what + (advice.empty() ? "" : "; " + advice);
}

LinkEnd explainAuthenticationFailure(const std::vector<std::string>& logLines) {
  const std::string verdict = textBehind("[LHU] Verify, ret: 0, ", logLines);
  if (verdict.empty()) {
    return {false, "phone",
            "the TLS handshake failed: it refused this head unit's certificate, or does not speak TLS 1.2",
            SAME_ROOT};
  }
  const std::string reason = textBehind("returned: ", {verdict});
  return {false, "phone", "its certificate is not to be trusted: " + reason, SAME_ROOT};
}

LinkEnd explainBrokenStream(const std::vector<std::string>& logLines) {
  if (anyHas("decryption pipeline!", logLines) || anyHas("Detailed error=", logLines)) {
    return {false, "phone", "it sent a frame that cannot be decrypted", "connect it again"};
  }
  return {false, "phone", "it sent bytes that make no frame",
          "check that a phone is what connects to this port"};
}

}  // namespace headunit
