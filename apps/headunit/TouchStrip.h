#pragma once

#include <cstdint>
#include <optional>

#include "headunit/Picture.h"

namespace headunit {

/// How many touches the phone simulator had heard of when it drew this test picture, 24 bits of it. Nothing
/// if the picture is any other, or too damaged to be sure.
std::optional<std::uint32_t> touchesSeenIn(const Picture& picture);

}  // namespace headunit
