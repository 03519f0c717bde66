#pragma once

#include <vector>

#include "IVideoSinkCallbacks.h"
#include "MediaSinkBase.h"
#include "VantryExport.h"

/// The service that receives the phone's encoded video and hands it to the host, which decodes and shows it.
class VANTRY_EXPORT VideoSink : public MediaSinkBase {
 public:
  /// `id`: 1 to 254. `messageRouter`: VantryReceiver::messageRouter(). Keeps a reference to
  /// `sinkCallbacks`, which must point to an object, until destruction.
  VideoSink(int id, MessageRouter* messageRouter, const shared_ptr<IVideoSinkCallbacks>& sinkCallbacks);
  ~VideoSink() override;

  /// Before the phone's Setup: whether the phone is told that it has video focus right after Setup has been
  /// answered (initially false).
  void setGrantFocusOnSetup(bool grant) { grantFocusOnSetup = grant; }

  /// Before discovery: offers a configuration and returns its index, from 0. `codecResolution` is a
  /// VideoCodecResolutionType (anything else ends the process); `frameRate` is in frames per second, 60 or,
  /// for any other number, 30; margins are in pixels; `density` is passed on unchanged. Margins and density
  /// travel as unsigned numbers, so that negative ones arrive as large ones.
  int addSupportedConfiguration(int codecResolution, int frameRate, int widthMargin, int heightMargin,
                                int density);

  /// Any thread: tells the phone its video focus; `unsolicited` where it answers no request. Dropped while no
  /// channel is open. A `focusMode` that is no VideoFocusMode ends the process.
  void setVideoFocus(int focusMode, bool unsolicited);

  /// Any thread: the size in pixels of `configuration`'s resolution. STATUS_INVALID_CONFIGURATION, with
  /// nothing written, for an unknown one.
  int codecResolutionToPixels(VideoConfiguration const& configuration, int* width, int* height);

  void addDiscoveryInfo(ServiceDiscoveryResponse* response) override;
  int handleSetup(int mediaCodecType) override;
  void handleCodecConfig(void* data, unsigned int length) override;
  void handleDataAvailable(unsigned long long timestamp, shared_ptr<IoBuffer> const& buffer,
                           unsigned int offset) override;
  void playbackStart(int session) override;
  void playbackStop(int session) override;
  int handleMediaConfiguration(int configurationIndex) override;
  bool handleVideoFocusRequest(VideoFocusRequestNotification const& request) override;
  unsigned int getNumberOfConfigurations() override;

 private:
  bool grantFocusOnSetup = false;
  shared_ptr<IVideoSinkCallbacks> callbacks;
  std::vector<shared_ptr<VideoConfiguration>> videoConfigurations;
};
