#include <algorithm>

#include "headunit/strip/Cards.h"
#include "headunit/strip/Glyphs.h"

namespace headunit::strip {
namespace {

constexpr double ROW = 40;
constexpr double PADDING = 10;

std::string positionWords(const BrowserView& browser) {
  if (browser.loading) return "Loading";
  if (browser.entries.empty()) return "";
  return std::to_string(browser.start + browser.selected + 1ULL) + " of " +
         std::to_string(std::max<unsigned long long>(browser.total, browser.start + browser.entries.size()));
}

void drawHead(Brush* brush, Box box, const BrowserView& browser) {
  const std::string position = positionWords(browser);
  const double width = brush->widthOf(position, SMALL) + 2;
  if (!position.empty()) brush->text(position, box.takeRight(width), SMALL, Align::right);
  box.takeRight(8);
  brush->text(browser.title.empty() ? "Media" : browser.title, box, TITLE);
}

void drawEntry(Brush* brush, Box box, const BrowserView::Entry& entry, bool isSelected) {
  box = {box.x, box.y + 1, box.width, box.height - 2};
  if (isSelected) brush->fill(box, SELECTION, 8);
  box = box.inset(4);
  const Box picture = box.takeLeft(box.height);
  if (entry.image) {
    brush->imageCovering(*entry.image, picture, 5);
  } else {
    brush->fill(picture, RAISED, 5);
    drawNote(brush, picture, isSelected ? SOFT_INK : FAINT_INK);
  }
  box.takeLeft(10);
  const Type name{13, INK, isSelected};
  const std::string words = entry.name.empty() ? entry.path : entry.name;
  if (entry.detail.empty()) return brush->text(words, box, name);
  brush->text(words, box.takeTop(box.height * 0.54), name);
  brush->text(entry.detail, box, {11, isSelected ? SOFT_INK : FAINT_INK});
}

// How a click gets from the entry that is selected to another one, and opens it.
std::vector<ClusterKey> keysTo(std::size_t entry, std::size_t selected) {
  const std::size_t steps = entry > selected ? entry - selected : selected - entry;
  std::vector<ClusterKey> keys(steps, entry > selected ? ClusterKey::down : ClusterKey::up);
  keys.push_back(ClusterKey::enter);
  return keys;
}

void drawScrollbar(Brush* brush, const Box& box, const BrowserView& browser, std::size_t first,
                   std::size_t shown) {
  const double total = std::max<double>(browser.total, static_cast<double>(browser.entries.size()));
  if (total <= static_cast<double>(shown)) return;
  const double height = std::max(14.0, box.height * static_cast<double>(shown) / total);
  const double most = total - static_cast<double>(shown);
  const double share = std::min(1.0, (browser.start + static_cast<double>(first)) / most);
  brush->fill({box.x, box.y + (box.height - height) * share, box.width, height}, TRACK, box.width / 2);
}

}  // namespace

void drawBrowserCard(Brush* brush, Box box, const BrowserView& browser, Targets* targets) {
  brush->fill(box, CARD, CARD_RADIUS);
  box = box.inset(PADDING);
  drawHead(brush, box.takeTop(24), browser);
  box.takeTop(4);
  const std::size_t count = browser.entries.size();
  if (count == 0) {
    brush->text(browser.loading ? "\u2026" : "Empty", box, BODY, Align::middle);
    return;
  }
  const auto room = static_cast<std::size_t>(std::max(1.0, box.height / ROW));
  const std::size_t shown = std::min(room, count);
  const std::size_t selected = std::min<std::size_t>(browser.selected, count - 1);
  const std::size_t first = std::min(selected > shown / 2 ? selected - shown / 2 : 0, count - shown);
  drawScrollbar(brush, box.takeRight(3), browser, first, shown);
  box.takeRight(4);
  const double row = std::min(ROW, box.height);
  for (std::size_t i = first; i < first + shown; ++i) {
    const Box place = box.takeTop(row);
    drawEntry(brush, place, browser.entries[i], i == selected);
    targets->push_back({place, keysTo(i, selected)});
  }
}

}  // namespace headunit::strip
