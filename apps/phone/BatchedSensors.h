#ifndef PHONE_BATCHEDSENSORS_H
#define PHONE_BATCHEDSENSORS_H

#include <protos.pb.h>

#include <set>

namespace phone {

/// The types of the sensors that a batch tells something of.
std::set<int> sensorsIn(const SensorBatch& batch);

}  // namespace phone

#endif
