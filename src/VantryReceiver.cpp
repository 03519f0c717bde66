#include "VantryReceiver.h"

#include <cstring>

#include "Log.h"
#include "Version.h"

namespace {

constexpr signed char CONTROL_CHANNEL_PRIORITY = -128;

}  // namespace

int VantryReceiver::init(const shared_ptr<IControllerCallbacks>& callbacks) {
  const bool channelsReady = channelManager.init(&router);
  const bool routerReady = router.init(&channelManager);
  const bool registered = registerService(&controller_);
  router.setupMapping(0, 0);
  channelManager.registerChannel(0, CONTROL_CHANNEL_PRIORITY);
  controller_.setCallbacks(callbacks);
  controller_.ProtocolEndpointBase::onChannelOpened(0);
  return channelsReady | routerReady | registered;  // any one step is enough
}

bool VantryReceiver::registerService(ProtocolEndpointBase* endpoint) {
  return router.registerService(endpoint);
}

int VantryReceiver::start() { return controller_.start(); }

void VantryReceiver::prepareShutdown() { channelManager.prepareShutdown(); }

void VantryReceiver::shutdown() {
  print_critical_i("[LHU] VTP Version : %s", VTP_VERSION);
  router.shutdown();
  channelManager.shutdown();
  controller_.sslWrapper().shutdown();
}

int VantryReceiver::queueIncoming(void* data, unsigned int length) {
  const shared_ptr<IoBuffer> frame = allocateBuffer(length);
  if (length > 0) memcpy(frame->data, data, length);
  return channelManager.queueIncoming(frame);
}

int VantryReceiver::queueIncoming(const shared_ptr<IoBuffer>& frame) {
  return channelManager.queueIncoming(frame);
}

shared_ptr<IoBuffer> VantryReceiver::allocateBuffer(unsigned int size) {
  return shared_ptr<IoBuffer>(new IoBuffer(size));
}

int VantryReceiver::getAdditionalBytesToRead(unsigned char* header) {
  return ChannelManager::getAdditionalBytesToRead(header);
}

bool VantryReceiver::getEncodedFrame(IoBuffer* out) { return channelManager.getEncodedFrame(out); }
