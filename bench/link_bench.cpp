// What a frame costs on its way through the library, beside what its cipher or its copy alone would cost.
//
// The bare loop of OpenSSL does what nobody can do without who ciphers in memory, and nothing else. Sending:
// SSL_write of the message, BIO_read of the record. Receiving: the transport's copy into a buffer, BIO_write
// of the record, SSL_read of the message. One buffer serves for all messages, and there are no frames,
// queues, locks or threads. The library copies a message once more when it is queued, for its sender does not
// wait; what the loop takes with that one copy stands in the table too.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "BenchLink.h"
#include "Ratios.h"
#include "ThreadClock.h"

namespace {

using Security = BenchLink::Security;

/// Messages between two looks at the clock: many, since the clock costs a system call, but few enough for
/// them all to stay in the cache. Else the figures tell how busy the machine's memory is.
int batchOf(std::size_t size) {
  constexpr std::size_t MOST_BYTES = 512 * 1024;
  constexpr std::size_t MOST = 256;
  return static_cast<int>(std::min(MOST, MOST_BYTES / size));
}

/// A client and a server of plain OpenSSL, connected, with the cipher that a link gets.
struct BarePair {
  HeapLayout before;
  TlsPeer client{TlsPeer::Role::client};
  TlsPeer server{TlsPeer::Role::server};
  HeapLayout behind;

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
  const Bytes message(static_cast<std::size_t>(state.range(0)), 0);
  const int batch = batchOf(message.size());
  std::vector<Bytes> frames(static_cast<std::size_t>(batch));
  for (auto _ : state) {
    for (Bytes& frame : frames) link.mediaFrame(1, message, &frame);
    const double start = now();
    for (const Bytes& frame : frames) link.receive(frame);
    state.SetIterationTime(secondsSince(start));
  }
  if (link.delivered() != static_cast<unsigned long long>(state.iterations() * batch)) {
    state.SkipWithError("messages were lost");
  }
  if (security == Security::tls) state.SetLabel(link.cipher());
  perMessage(state, batch);
}

void receiveTls(benchmark::State& state) { receive(state, Security::tls); }
void receivePlain(benchmark::State& state) { receive(state, Security::plain); }

void receiveTlsBare(benchmark::State& state) {
  BarePair pair;
  const Bytes plain(static_cast<std::size_t>(state.range(0)), 0);
  const int batch = batchOf(plain.size());
  Bytes out(plain.size() + 256);
  std::vector<Bytes> records(static_cast<std::size_t>(batch));
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
  perMessage(state, batch);
}

/// Reading a message into a buffer of its own, and nothing else.
void receivePlainBare(benchmark::State& state) {
  const Bytes frame(static_cast<std::size_t>(state.range(0)) + 4, 1);
  const int batch = batchOf(frame.size());
  for (auto _ : state) {
    const double start = now();
    for (int i = 0; i < batch; ++i) {
      void* const buffer = malloc(frame.size());
      memcpy(buffer, frame.data(), frame.size());
      benchmark::DoNotOptimize(buffer);
      free(buffer);
    }
    state.SetIterationTime(secondsSince(start));
  }
  perMessage(state, batch);
}

void send(benchmark::State& state, Security security) {
  BenchLink link(security, 1);
  Bytes message(static_cast<std::size_t>(state.range(0)), 0);
  const int batch = batchOf(message.size());
  IoBuffer out;
  unsigned long long sent = 0;
  for (auto _ : state) {
    const double start = now();
    for (int i = 0; i < batch; ++i) {
      link.receiver().messageRouter()->queueOutgoing(1, message.data(),
                                                     static_cast<unsigned int>(message.size()));
      sent += link.receiver().getEncodedFrame(&out) ? 1U : 0U;
    }
    state.SetIterationTime(secondsSince(start));
  }
  if (sent != static_cast<unsigned long long>(state.iterations() * batch))
    state.SkipWithError("frames were lost");
  if (security == Security::tls) state.SetLabel(link.cipher());
  perMessage(state, batch);
}

void sendTls(benchmark::State& state) { send(state, Security::tls); }
void sendPlain(benchmark::State& state) { send(state, Security::plain); }

/// `queued`: with the one copy that lets a message outlive its sender until its turn comes.
void sendBare(benchmark::State& state, bool queued) {
  BarePair pair;
  const Bytes plain(static_cast<std::size_t>(state.range(0)), 0);
  const int batch = batchOf(plain.size());
  Bytes out(plain.size() + 256);
  for (auto _ : state) {
    const double start = now();
    for (int i = 0; i < batch; ++i) {
      void* const copy = queued ? malloc(plain.size()) : nullptr;
      if (queued) memcpy(copy, plain.data(), plain.size());
      const void* const source = queued ? copy : plain.data();
      benchmark::DoNotOptimize(pair.client.encrypt(source, plain.size(), out.data(), out.size()));
      free(copy);
    }
    state.SetIterationTime(secondsSince(start));
  }
  state.SetLabel(pair.client.cipher());
  perMessage(state, batch);
}

void sendTlsBare(benchmark::State& state) { sendBare(state, false); }
void sendTlsBareQueued(benchmark::State& state) { sendBare(state, true); }

/// The two copies that a message needs to outlive its sender and to stand behind its header.
void sendPlainBare(benchmark::State& state) {
  const Bytes message(static_cast<std::size_t>(state.range(0)), 1);
  const int batch = batchOf(message.size());
  for (auto _ : state) {
    const double start = now();
    for (int i = 0; i < batch; ++i) {
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
  perMessage(state, batch);
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
BENCHMARK(sendTlsBareQueued)->Arg(16128)->UseManualTime();
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
    {"send, TLS, 16128 bytes / bare OpenSSL, queued", "sendTls/16128", "sendTlsBareQueued/16128", 0},
    {"receive, plain, 16128 bytes / one copy", "receivePlain/16128", "receivePlainBare/16128", 0},
    {"receive, plain, 64 bytes / one copy", "receivePlain/64", "receivePlainBare/64", 0},
    {"send, plain, 16128 bytes / two copies", "sendPlain/16128", "sendPlainBare/16128", 0},
    {"send, plain, 64 bytes / two copies", "sendPlain/64", "sendPlainBare/64", 0},
    {"send, 16 busy channels / 1", "sendChannels/16", "sendChannels/1", 0},
    {"send, 255 busy channels / 1", "sendChannels/255", "sendChannels/1", 0.90},
    {"receive, 16 busy channels / 1", "receiveChannels/16", "receiveChannels/1", 0},
    {"receive, 255 busy channels / 1", "receiveChannels/255", "receiveChannels/1", 0.90},
};

}  // namespace

int main(int argc, char** argv) { return runWithRatios(argc, argv, ratios); }
