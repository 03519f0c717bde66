#include "Numbered.h"

#include "phone/Bytes.h"

namespace test {

Bytes numberedContent(std::uint64_t number) {
  constexpr std::uint64_t OFTEN_ENOUGH = 200;
  const std::size_t rest = number % OFTEN_ENOUGH == 0 ? 20000 : 2 * (number % 101);
  phone::Bytes content;
  phone::appendBigEndian(&content, number);
  return Bytes(content) + pattern(rest, static_cast<unsigned int>(number));
}

std::string numberedText(std::uint64_t number) { return "text " + std::to_string(number); }

void Arrivals::takes(bool isTheOneDue) {
  if (!isTheOneDue && firstWrong == NONE) firstWrong = count.load();
  ++count;
}

std::string Arrivals::words() const {
  if (firstWrong == NONE) return asDue(count);
  return "in place of number " + std::to_string(firstWrong) + " came something else, of " +
         std::to_string(count) + " that came";
}

std::string asDue(std::uint64_t count) { return std::to_string(count) + " as due"; }

}  // namespace test
