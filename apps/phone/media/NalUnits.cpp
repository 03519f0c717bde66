#include "phone/media/NalUnits.h"

namespace phone {
namespace {

// The offset of the next 00 00 01 at or after `from`, or `size`.
std::size_t findStartCode(const std::uint8_t* data, std::size_t size, std::size_t from) {
  for (std::size_t i = from; i + 3 <= size; ++i) {
    if (data[i] == 0 && data[i + 1] == 0 && data[i + 2] == 1) return i;
  }
  return size;
}

}  // namespace

std::vector<NalUnit> splitAnnexB(const std::uint8_t* data, std::size_t size) {
  std::vector<NalUnit> units;
  std::size_t code = findStartCode(data, size, 0);
  while (code < size) {
    const std::size_t begin = code + 3;
    code = findStartCode(data, size, begin);
    std::size_t end = code;
    // Zeros before a start code belong to it (its four-byte form) or are padding; no NAL unit ends in one.
    while (end > begin && data[end - 1] == 0) --end;
    if (end > begin) units.push_back({data + begin, end - begin});
  }
  return units;
}

std::vector<std::uint8_t> parameterSets(const std::uint8_t* data, std::size_t size) {
  std::vector<std::uint8_t> sets;
  for (const NalUnit& unit : splitAnnexB(data, size)) {
    if (unit.type() != NAL_SPS && unit.type() != NAL_PPS) continue;
    sets.insert(sets.end(), {0, 0, 0, 1});
    sets.insert(sets.end(), unit.data, unit.data + unit.size);
  }
  return sets;
}

}  // namespace phone
