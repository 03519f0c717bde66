#pragma once

#include <string>

namespace headunit::strip {

/// Any bytes that a phone may send, as text that can be drawn: valid UTF-8 of one line, `shortened`.
std::string drawable(const std::string& bytes);

std::string distanceWords(int meters);
/// How long until something: "40 s", "12 min", "1 h 5 min".
std::string waitWords(int seconds);
/// Where something stands that runs: "3:05", "1:02:03".
std::string clockWords(unsigned int seconds);
/// "98.5 MHz" or "810 kHz".
std::string frequencyWords(int hertz);
/// The first letters of a name's first and last word, or nothing if it has no letters.
std::string initials(const std::string& name);

}  // namespace headunit::strip
