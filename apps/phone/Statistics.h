#ifndef PHONE_STATISTICS_H
#define PHONE_STATISTICS_H

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

namespace phone {

/// The smallest of `values` that at least `percent` per cent (1 to 100) of them do not exceed; empty if there
/// are none.
template <class Value>
std::optional<Value> percentile(std::vector<Value> values, std::size_t percent) {
  if (values.empty()) return std::nullopt;
  const std::size_t rank = (values.size() * percent + 99) / 100 - 1;
  const auto at = values.begin() + static_cast<std::ptrdiff_t>(rank);
  std::nth_element(values.begin(), at, values.end());
  return *at;
}

}  // namespace phone

#endif
