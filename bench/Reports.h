#pragma once

#include <vector>

#include "BenchLink.h"
#include "InputSource.h"
#include "SensorSource.h"

/// A head unit whose phone listens: every sensor is live, and touches go out.
class ReportingLink {
 public:
  ReportingLink();

  /// The next frame's message body, behind its type.
  Bytes takeBody();

  BenchLink link{BenchLink::Security::plain, 0};
  SensorSource sensors{1, link.receiver().messageRouter()};
  InputSource input{2, link.receiver().messageRouter()};
};

/// One thing that a host reports.
struct Report {
  enum class Record { sensorBatch, inputReport };

  const char* name;
  void (*send)(ReportingLink&);
  Record record = Record::sensorBatch;
  int messages = 1;  ///< that it sends, the one with the value last
};

/// The 21 sensors in the order of their types, and a touch of two fingers.
const std::vector<Report>& reports();
