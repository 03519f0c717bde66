// What a frame costs on its way through the library, beside what its cipher or its copy alone would cost.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "AllocationCount.h"
#include "BenchLink.h"
#include "Ratios.h"

namespace {

using Security = BenchLink::Security;

constexpr int BATCH = 256;  // messages between two looks at the clock

/// This thread's processor time in seconds: what a frame costs, whatever else the machine is doing.
double now() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double secondsSince(double start) { return now() - start; }

void perMessage(benchmark::State& state, int batch) {
  state.SetItemsProcessed(state.iterations() * batch);
  state.counters["ns/message"] =
      benchmark::Counter(static_cast<double>(state.iterations() * batch) * 1e-9,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

/// A client and a server of plain OpenSSL, connected, with the cipher that a link gets.
struct BarePair {
  TlsPeer client{TlsPeer::Role::client};
  TlsPeer server{TlsPeer::Role::server};

  BarePair() {
    bool clientDone = false;
    bool serverDone = false;
    while (!clientDone || !serverDone) {
      clientDone = client.handshake();
      const Bytes toServer = client.takeAllCiphertext();
      server.putCiphertext(toServer.data(), toServer.size());
      serverDone = server.handshake();
      const Bytes toClient = server.takeAllCiphertext();
      client.putCiphertext(toClient.data(), toClient.size());
    }
  }
};

void receive(benchmark::State& state, Security security) {
  BenchLink link(security, 1);
  const auto size = static_cast<std::size_t>(state.range(0));
  std::vector<Bytes> frames(BATCH);
  for (auto _ : state) {
    for (Bytes& frame : frames) frame = link.mediaFrame(1, size);
    const double start = now();
    for (const Bytes& frame : frames) link.receive(frame);
    state.SetIterationTime(secondsSince(start));
  }
  if (link.delivered() != static_cast<unsigned long long>(state.iterations()) * BATCH) {
    state.SkipWithError("messages were lost");
  }
  if (security == Security::tls) state.SetLabel(link.cipher());
  perMessage(state, BATCH);
}

void receiveTls(benchmark::State& state) { receive(state, Security::tls); }
void receivePlain(benchmark::State& state) { receive(state, Security::plain); }

void receiveTlsBare(benchmark::State& state) {
  BarePair pair;
  const Bytes plain(static_cast<std::size_t>(state.range(0)), 0);
  Bytes out(plain.size() + 256);
  std::vector<Bytes> records(BATCH);
  Bytes wire(plain.size() + 256);
  for (auto _ : state) {
    for (Bytes& record : records) {
      record.resize(plain.size() + 256);
      record.resize(pair.server.encrypt(plain.data(), plain.size(), record.data(), record.size()));
    }
    const double start = now();
    for (const Bytes& record : records) {
      memcpy(wire.data(), record.data(), record.size());  // the transport's read
      benchmark::DoNotOptimize(pair.client.decrypt(wire.data(), record.size(), out.data(), out.size()));
    }
    state.SetIterationTime(secondsSince(start));
  }
  state.SetLabel(pair.client.cipher());
  perMessage(state, BATCH);
}

/// Reading a message into a buffer of its own, and nothing else.
void receivePlainBare(benchmark::State& state) {
  const Bytes frame(static_cast<std::size_t>(state.range(0)) + 4, 1);
  for (auto _ : state) {
    const double start = now();
    for (int i = 0; i < BATCH; ++i) {
      void* const buffer = malloc(frame.size());
      memcpy(buffer, frame.data(), frame.size());
      benchmark::DoNotOptimize(buffer);
      free(buffer);
    }
    state.SetIterationTime(secondsSince(start));
  }
  perMessage(state, BATCH);
}

void send(benchmark::State& state, Security security) {
  BenchLink link(security, 1);
  Bytes message(static_cast<std::size_t>(state.range(0)), 0);
  IoBuffer out;
  unsigned long long sent = 0;
  for (auto _ : state) {
    const double start = now();
    for (int i = 0; i < BATCH; ++i) {
      link.receiver().messageRouter()->queueOutgoing(1, message.data(),
                                                     static_cast<unsigned int>(message.size()));
      sent += link.receiver().getEncodedFrame(&out) ? 1U : 0U;
    }
    state.SetIterationTime(secondsSince(start));
  }
  if (sent != static_cast<unsigned long long>(state.iterations()) * BATCH)
    state.SkipWithError("frames were lost");
  if (security == Security::tls) state.SetLabel(link.cipher());
  perMessage(state, BATCH);
}

void sendTls(benchmark::State& state) { send(state, Security::tls); }
void sendPlain(benchmark::State& state) { send(state, Security::plain); }

void sendTlsBare(benchmark::State& state) {
  BarePair pair;
  const Bytes plain(static_cast<std::size_t>(state.range(0)), 0);
  Bytes out(plain.size() + 256);
  for (auto _ : state) {
    const double start = now();
    for (int i = 0; i < BATCH; ++i) {
      benchmark::DoNotOptimize(pair.client.encrypt(plain.data(), plain.size(), out.data(), out.size()));
    }
    state.SetIterationTime(secondsSince(start));
  }
  state.SetLabel(pair.client.cipher());
  perMessage(state, BATCH);
}

/// The two copies that a message needs to outlive its sender and to stand behind its header.
void sendPlainBare(benchmark::State& state) {
  const Bytes message(static_cast<std::size_t>(state.range(0)), 1);
  for (auto _ : state) {
    const double start = now();
    for (int i = 0; i < BATCH; ++i) {
      void* const queued = malloc(message.size());
      memcpy(queued, message.data(), message.size());
      benchmark::DoNotOptimize(queued);
      void* const out = malloc(message.size() + 4);
      memcpy(static_cast<char*>(out) + 4, queued, message.size());
      benchmark::DoNotOptimize(out);
      free(queued);
      free(out);
    }
    state.SetIterationTime(secondsSince(start));
  }
  perMessage(state, BATCH);
}

constexpr int MOST_CHANNELS = 255;  // channel 0 and 254 services

unsigned char channelOf(int turn, int busy) {
  return static_cast<unsigned char>(busy == MOST_CHANNELS ? turn % busy : 1 + turn % busy);
}

/// Every busy channel has a frame waiting at all times.
void sendChannels(benchmark::State& state) {
  const int busy = static_cast<int>(state.range(0));
  BenchLink link(Security::plain, busy);
  Bytes message(1024, 0);
  const auto size = static_cast<unsigned int>(message.size());
  IoBuffer out;
  MessageRouter* const router = link.receiver().messageRouter();
  for (int i = 0; i < busy; ++i) router->queueOutgoing(channelOf(i, busy), message.data(), size);
  constexpr int FRAMES = 2 * MOST_CHANNELS * 8;
  for (auto _ : state) {
    const double start = now();
    for (int i = 0; i < FRAMES; ++i) {
      if (!link.receiver().getEncodedFrame(&out)) state.SkipWithError("a frame was lost");
      router->queueOutgoing(out.data[0], message.data(), size);
    }
    state.SetIterationTime(secondsSince(start));
  }
  perMessage(state, FRAMES);
}

void receiveChannels(benchmark::State& state) {
  const int busy = static_cast<int>(state.range(0));
  BenchLink link(Security::plain, busy);
  constexpr int FRAMES = 254 * 16;
  std::vector<Bytes> frames;
  for (int i = 0; i < FRAMES; ++i) {
    frames.push_back(link.mediaFrame(static_cast<unsigned char>(1 + i % std::min(busy, 254)), 1024));
  }
  for (auto _ : state) {
    const double start = now();
    for (const Bytes& frame : frames) link.receive(frame);
    state.SetIterationTime(secondsSince(start));
  }
  perMessage(state, FRAMES);
}

BENCHMARK(receiveTls)->Arg(16128)->Arg(64)->UseManualTime();
BENCHMARK(receiveTlsBare)->Arg(16128)->Arg(64)->UseManualTime();
BENCHMARK(sendTls)->Arg(16128)->Arg(64)->UseManualTime();
BENCHMARK(sendTlsBare)->Arg(16128)->Arg(64)->UseManualTime();
BENCHMARK(receivePlain)->Arg(16128)->Arg(64)->UseManualTime();
BENCHMARK(receivePlainBare)->Arg(16128)->Arg(64)->UseManualTime();
BENCHMARK(sendPlain)->Arg(16128)->Arg(64)->UseManualTime();
BENCHMARK(sendPlainBare)->Arg(16128)->Arg(64)->UseManualTime();
BENCHMARK(sendChannels)->Arg(1)->Arg(16)->Arg(255)->UseManualTime();
BENCHMARK(receiveChannels)->Arg(1)->Arg(16)->Arg(255)->UseManualTime();

const std::vector<Ratio> ratios = {
    {"receive, TLS, 16128 bytes / bare OpenSSL", "receiveTls/16128", "receiveTlsBare/16128", 0.95},
    {"receive, TLS, 64 bytes / bare OpenSSL", "receiveTls/64", "receiveTlsBare/64", 0.60},
    {"send, TLS, 16128 bytes / bare OpenSSL", "sendTls/16128", "sendTlsBare/16128", 0.93},
    {"send, TLS, 64 bytes / bare OpenSSL", "sendTls/64", "sendTlsBare/64", 0.55},
    {"receive, plain, 16128 bytes / one copy", "receivePlain/16128", "receivePlainBare/16128", 0},
    {"receive, plain, 64 bytes / one copy", "receivePlain/64", "receivePlainBare/64", 0},
    {"send, plain, 16128 bytes / two copies", "sendPlain/16128", "sendPlainBare/16128", 0},
    {"send, plain, 64 bytes / two copies", "sendPlain/64", "sendPlainBare/64", 0},
    {"send, 16 busy channels / 1", "sendChannels/16", "sendChannels/1", 0},
    {"send, 255 busy channels / 1", "sendChannels/255", "sendChannels/1", 0.90},
    {"receive, 16 busy channels / 1", "receiveChannels/16", "receiveChannels/1", 0},
    {"receive, 255 busy channels / 1", "receiveChannels/255", "receiveChannels/1", 0.90},
};

/// Counted on plain frames, so that what OpenSSL does for itself stays out of the sums.
void printCosts() {
  constexpr unsigned int SIZE = 16128;
  BenchLink link(Security::plain, 1);
  const Bytes atomic = link.mediaFrame(1, SIZE);
  const std::vector<Bytes> fragments = link.mediaFragments(1, 4 * SIZE);
  Bytes message(SIZE, 0);
  IoBuffer out;
  MessageRouter* const router = link.receiver().messageRouter();

  printf("\n%-46s %12s %12s\n", "", "allocations", "copies");
  const auto print = [](const char* title, const Costs& costs, double frames) {
    printf("%-46s %12.2f %12.2f\n", title, costs.allocations / frames, costs.copies / frames);
  };
  // The first of each fills pools and deques; the transport's own copy into the buffer is taken off.
  constexpr int FRAMES = 1000;
  Costs costs = countCosts(SIZE, [&] {
    for (int i = 0; i < FRAMES; ++i) link.receive(atomic);
  });
  costs.copies -= FRAMES;
  print("per received frame, whole message", costs, FRAMES);
  costs = countCosts(SIZE, [&] {
    for (int i = 0; i < FRAMES; ++i) {
      for (const Bytes& fragment : fragments) link.receive(fragment);
    }
  });
  costs.copies -= 4.0 * FRAMES;
  print("per received frame, fragment of four", costs, 4.0 * FRAMES);
  costs = countCosts(SIZE, [&] {
    for (int i = 0; i < FRAMES; ++i) {
      router->queueOutgoing(1, message.data(), SIZE);
      if (!link.receiver().getEncodedFrame(&out)) exit(2);
    }
  });
  print("per sent frame", costs, FRAMES);
}

}  // namespace

int main(int argc, char** argv) {
  const int status = runWithRatios(argc, argv, ratios);
  if (status == 0 && argc == 1) printCosts();
  return status;
}
