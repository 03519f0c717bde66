// The least that a host can be: it needs the installed headers, exported classes and generated records.
#include <VantryReceiver.h>
#include <VideoSink.h>

int main() {
  VantryReceiver receiver;
  receiver.init(shared_ptr<IControllerCallbacks>());
  VideoSink sink(1, receiver.messageRouter(), shared_ptr<IVideoSinkCallbacks>());
  if (!receiver.registerService(&sink)) return 1;

  // The accessor of a record inside a record is inline code that calls back into the library.
  Service service;
  service.set_id(1);
  service.mutable_media_sink_service();
  if (!service.IsInitialized()) return 1;

  receiver.shutdown();
  return 0;
}
