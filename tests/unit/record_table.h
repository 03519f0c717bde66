#pragma once

#include <google/protobuf/message_lite.h>

#include <algorithm>
#include <memory>
#include <string>

// For tables of records of all kinds.

namespace test {

using NewRecord = std::unique_ptr<google::protobuf::MessageLite> (*)();

template <class Record>
std::unique_ptr<google::protobuf::MessageLite> newRecord() {
  return std::make_unique<Record>();
}

/// A row's name as a test may have it: "PhoneStatus.Call" has a dot, and inside a name no test may.
template <class Info>
std::string rowName(const Info& info) {
  std::string name = info.param.name;
  std::replace(name.begin(), name.end(), '.', '_');
  return name;
}

}  // namespace test
