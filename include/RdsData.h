#pragma once

#include <string>

/// What the host knows of a radio station. A field that holds nothing, which is how each begins, is not sent.
struct RdsData {
  int alternativeFrequencyHz = 0;     ///< hertz; sent only if greater than 0
  std::string programIdentification;  ///< sent only if not empty, as are the other texts
  std::string programService;
  std::string programType;
  std::string radioText;
  int hd = 0;      ///< 0: not known, and not sent; 2: true; any other number: false
  int stereo = 0;  ///< as `hd`
};
