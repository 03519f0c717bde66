#pragma once

#include "protos.pb.h"

// A field that the schema does not know is skipped and forgotten, but the parser keeps it, in every record at
// every depth. These operations drop what it kept. Without reflection each kind of record that holds others
// has its own; a record with nothing but plain fields needs none.

/// `record` alone, not those inside it.
template <class Record>
void forgetOwnUnknownFields(Record* record) {
  // Asking first: the mutable accessor allocates where there is nothing to clear.
  if (!record->unknown_fields().empty()) record->mutable_unknown_fields()->clear();
}

/// `record`, which holds no other records.
template <class Record>
void forgetUnknownFields(Record* record) {
  forgetOwnUnknownFields(record);
}

void forgetUnknownFields(PhoneStatus* status);
void forgetUnknownFields(MediaRootNode* node);
void forgetUnknownFields(MediaSourceNode* node);
void forgetUnknownFields(MediaListNode* node);
void forgetUnknownFields(MediaSongNode* node);
void forgetUnknownFields(SensorBatch* batch);
void forgetUnknownFields(GpsSatelliteData* data);
void forgetUnknownFields(InputReport* report);
void forgetUnknownFields(TouchEvent* event);
void forgetUnknownFields(KeyEvent* event);
void forgetUnknownFields(AbsoluteEvent* event);
void forgetUnknownFields(RelativeEvent* event);
void forgetUnknownFields(VantryVerificationSetSensor* message);
void forgetUnknownFields(VantryVerificationInjectInput* message);
