// Plays the links that the fuzz targets start from, and writes down what one side of each said.
//
// usage: record_seeds FOLDER      the folder of the seeds, with one of each target's name in it

#include <cstdio>
#include <fstream>
#include <string>

#include "EveryService.h"
#include "FixedCredentials.h"
#include "FixedRandom.h"
#include "PhoneInMemory.h"

namespace {

using Bytes = std::vector<unsigned char>;

bool write(const std::string& file, const Bytes& bytes) {
  std::ofstream out(file, std::ios::binary);
  out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  out.close();
  if (!out) fprintf(stderr, "cannot write %s\n", file.c_str());
  return static_cast<bool>(out);
}

void append(Bytes* to, const Bytes& more) { to->insert(to->end(), more.begin(), more.end()); }

/// What the phone says from the first byte to its good-bye; `steps` are the flights on the way there.
Bytes phoneOfAWholeLink(std::vector<Bytes>* steps) {
  phone::LinkOptions options;
  options.credentials = {fixedCredentials().root, fixedCredentials().certificate, fixedCredentials().key};
  FixedRandom::drawsFor(FixedRandom::Side::phone);
  phone::PhoneLink phone(options);
  EveryService headUnit;
  headUnit.loadsCredentials();
  headUnit.startsUp();
  Bytes said;
  const auto exchange = [&] {
    const Bytes toPhone = headUnit.takeOutput();
    FixedRandom::drawsFor(FixedRandom::Side::phone);
    phone.feed(toPhone);
    const Bytes toHeadUnit = phone.takeOutput();
    FixedRandom::drawsFor(FixedRandom::Side::headUnit);
    headUnit.feedStream(toHeadUnit.data(), toHeadUnit.size());
    append(&said, toHeadUnit);
    if (!toHeadUnit.empty()) steps->push_back(said);
    return !toHeadUnit.empty();
  };
  while (exchange()) {
  }
  for (std::uint8_t service = 1; service <= headUnit.services(); ++service) {
    phone.openChannel(service, service);
    exchange();
  }
  phone.sendPing(1);
  exchange();
  phone.sayByeBye();
  exchange();
  if (phone.services() == nullptr) fprintf(stderr, "the phone was not told what the head unit offers\n");
  return said;
}

/// Whether the recorded phone gets through the handshake as the live one did.
bool getsThrough(const Bytes& said) {
  EveryService headUnit;
  headUnit.loadsCredentials();
  headUnit.startsUp();
  headUnit.feedStream(said.data(), said.size());
  if (!headUnit.tlsStands()) fprintf(stderr, "the recorded phone does not get through the handshake\n");
  return headUnit.tlsStands();
}

/// What the head unit says to a phone that opens everything, on a link without TLS.
Bytes headUnitOfAWholeLink() {
  EveryService headUnit;
  PhoneInMemory phone;
  Bytes said;
  const auto exchange = [&] {
    const Bytes toHeadUnit = phone.takeOutput();
    headUnit.feedStream(toHeadUnit.data(), toHeadUnit.size());
    const Bytes toPhone = headUnit.takeOutput();
    phone.feed(toPhone.data(), toPhone.size());
    append(&said, toPhone);
    return !toPhone.empty();
  };
  headUnit.startsUp();
  exchange();  // the version
  phone.discover();
  while (exchange()) {
  }
  const unsigned int finger = 0;
  const unsigned int place = 100;
  headUnit.sensors().reportSpeedData(13900);
  headUnit.sensors().reportLocationData(1, 2, 3, true, 4, true, 5, true, 6, true, 7);
  headUnit.input().reportTouch(1, 1, &finger, &place, &place, POINTER_ACTION_0, 0);
  headUnit.input().reportKey(2, 84, true, 0);
  exchange();
  exchange();
  return said;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: record_seeds FOLDER\n");
    return 1;
  }
  const std::string folder = argv[1];
  FixedRandom::install();
  std::vector<Bytes> steps;
  const Bytes phone = phoneOfAWholeLink(&steps);
  if (!getsThrough(phone)) return 2;
  bool written = write(folder + "/handshake_fuzz/whole-link", phone);
  const char* const names[] = {"version", "first-flight", "second-flight"};
  for (std::size_t i = 0; i < 3 && i < steps.size(); ++i) {
    written &= write(folder + "/handshake_fuzz/" + names[i], steps[i]);
  }
  written &= write(folder + "/phone_fuzz/whole-link", headUnitOfAWholeLink());
  return written ? 0 : 1;
}
