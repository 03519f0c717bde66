// How long a touch waits until its frame is with the writer: on an idle link, and while the phone streams
// video as fast as its frames are acknowledged. A link with TLS and its three threads, in memory.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "BenchLink.h"
#include "InputSource.h"
#include "Semaphore.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned char VIDEO = 1;
constexpr unsigned char INPUT = 2;
constexpr int MAX_UNACKED = 4;
constexpr std::size_t ACCESS_UNIT = 60000;
constexpr std::size_t TOUCHES = 3000;
constexpr auto BETWEEN_TOUCHES = std::chrono::microseconds(700);

/// Bytes on their way from the phone to the reader; an empty frame is the last one.
class Wire {
 public:
  void put(Bytes frame) {
    const std::lock_guard<std::mutex> guard(lock_);
    frames_.push_back(std::move(frame));
    arrived_.notify_one();
  }
  Bytes take() {
    std::unique_lock<std::mutex> guard(lock_);
    arrived_.wait(guard, [this] { return !frames_.empty(); });
    Bytes frame = std::move(frames_.front());
    frames_.pop_front();
    return frame;
  }

 private:
  std::mutex lock_;
  std::condition_variable arrived_;
  std::deque<Bytes> frames_;
};

/// Acknowledges each picture as it comes.
class EagerSink : public CountingSink {
 public:
  void dataAvailable(int session, unsigned long long time, shared_ptr<IoBuffer> const& buffer, void* data,
                     unsigned int length) override {
    CountingSink::dataAvailable(session, time, buffer, data, length);
    sink->ackFrames(session, 1);
  }
  VideoSink* sink = nullptr;
};

/// What a run with so much video gave.
struct Latencies {
  std::vector<double> microseconds;  // sorted
  unsigned long long videoBytes = 0;
  double seconds = 0;

  double at(double share) const {
    return microseconds[static_cast<std::size_t>(share * static_cast<double>(microseconds.size() - 1))];
  }
  double megabytesPerSecond() const { return static_cast<double>(videoBytes) / seconds * 1e-6; }
};

class TouchedLink {
 public:
  TouchedLink() {
    callbacks_->sink = &video_;
    link_.offer(&video_, VIDEO);
    link_.offer(&input_, INPUT);
  }

  Latencies run(bool withVideo) {
    std::thread reader([this] { readAll(); });
    std::thread writer([this] { writeAll(); });
    std::thread phone([this] { stream(); });
    if (withVideo) {
      for (int i = 0; i < MAX_UNACKED; ++i) credits_.up();
    }
    const Clock::time_point start = Clock::now();
    touch();
    while (!allTouchesSeen_.down()) {
    }
    result_.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    stopping_ = true;
    credits_.up();
    phone.join();
    reader.join();
    link_.receiver().prepareShutdown();
    writer.join();
    result_.videoBytes = callbacks_->bytes;
    std::sort(result_.microseconds.begin(), result_.microseconds.end());
    return result_;
  }

 private:
  /// The host, which reports at a steady pace, whatever becomes of it.
  void touch() {
    constexpr unsigned int PLACE = 100;
    constexpr unsigned int FINGER = 0;
    Clock::time_point next = Clock::now();
    for (Clock::time_point& time : reported_) {
      std::this_thread::sleep_until(next += BETWEEN_TOUCHES);
      time = Clock::now();
      input_.reportTouch(0, 1, &FINGER, &PLACE, &PLACE, POINTER_ACTION_2, 0);
    }
  }

  void stream() {
    while (credits_.down() && !stopping_) {
      for (Bytes& frame : link_.mediaFragments(VIDEO, ACCESS_UNIT)) wire_.put(std::move(frame));
    }
    wire_.put({});
  }

  void readAll() {
    for (Bytes frame = wire_.take(); !frame.empty(); frame = wire_.take()) link_.receive(frame);
  }

  void writeAll() {
    IoBuffer frame;
    while (link_.receiver().getEncodedFrame(&frame)) {
      if (frame.content()[0] == VIDEO) credits_.up();  // an acknowledgement
      if (frame.content()[0] == INPUT) seeTouch();
    }
  }

  void seeTouch() {
    const Clock::time_point time = reported_[result_.microseconds.size()];
    result_.microseconds.push_back(std::chrono::duration<double, std::micro>(Clock::now() - time).count());
    if (result_.microseconds.size() == TOUCHES) allTouchesSeen_.up();
  }

  BenchLink link_{BenchLink::Security::tls, 0};
  EagerSink* callbacks_ = new EagerSink();  // owned by callbackPointer_
  shared_ptr<IVideoSinkCallbacks> callbackPointer_{callbacks_};
  VideoSink video_{1, link_.receiver().messageRouter(), callbackPointer_};
  InputSource input_{2, link_.receiver().messageRouter()};
  Wire wire_;
  Semaphore credits_;  // pictures that the phone may send
  Semaphore allTouchesSeen_;
  std::atomic<bool> stopping_{false};
  std::vector<Clock::time_point> reported_ = std::vector<Clock::time_point>(TOUCHES);
  Latencies result_;
};

/// One figure on an idle link and under load.
struct Line {
  const char* title;
  double idle;
  double loaded;
};

void print(const std::vector<Line>& lines, const Latencies& loaded) {
  printf("\n%-46s %12s %12s %8s\n", "microseconds", "under video", "idle", "ratio");
  for (const Line& line : lines) {
    printf("%-46s %12.1f %12.1f %8.2f\n", line.title, line.loaded, line.idle, line.idle / line.loaded);
  }
  printf("%zu touches each; %.0f MB/s of video meanwhile\n", loaded.microseconds.size(),
         loaded.megabytesPerSecond());
}

bool write(const std::vector<Line>& lines, const Latencies& loaded, const char* file) {
  const std::unique_ptr<FILE, int (*)(FILE*)> out(fopen(file, "w"), fclose);
  if (!out) return false;
  fprintf(out.get(), "[");
  for (const Line& line : lines) {
    fprintf(out.get(),
            "\n  {\"title\": \"%s\", \"measured_us\": %.2f, \"baseline_us\": %.2f, \"ratio\": %.4f},",
            line.title, line.loaded, line.idle, line.idle / line.loaded);
  }
  fprintf(out.get(), "\n  {\"title\": \"video meanwhile\", \"megabytes_per_second\": %.1f}\n]\n",
          loaded.megabytesPerSecond());
  return true;
}

}  // namespace

/// Options other than `--ratios=FILE` are those of the programs that time single frames.
int main(int argc, char** argv) {
  const Latencies idle = TouchedLink().run(false);
  const Latencies loaded = TouchedLink().run(true);
  const std::vector<Line> lines = {
      {"touch to frame, p50 / idle link", idle.at(0.5), loaded.at(0.5)},
      {"touch to frame, p99 / idle link", idle.at(0.99), loaded.at(0.99)},
  };
  print(lines, loaded);
  for (int i = 1; i < argc; ++i) {
    if (strncmp(argv[i], "--ratios=", 9) == 0 && !write(lines, loaded, argv[i] + 9)) {
      fprintf(stderr, "cannot write %s\n", argv[i] + 9);
      return 1;
    }
  }
  return 0;
}
