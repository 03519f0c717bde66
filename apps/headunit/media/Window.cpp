#include "headunit/media/Window.h"

#include <SDL.h>

#include <algorithm>

#include "headunit/strip/NoPhone.h"

namespace headunit {
namespace {

// Of the window at first; the user may make it as large as he likes.
constexpr Size PICTURE_AT_FIRST{1280, 720};

// SDL would rather draw where nobody sees it than fail; that is for those who ask for it.
bool isVisible() {
  const char* const driver = SDL_GetCurrentVideoDriver();
  return driver == nullptr || SDL_GetHint(SDL_HINT_VIDEODRIVER) != nullptr ||
         SDL_strcmp(driver, "offscreen") != 0;
}

SDL_Rect rectOf(const Rect& rect) { return {rect.x, rect.y, rect.width, rect.height}; }

int millisecondsUntil(TimePoint time) {
  constexpr milliseconds LONGEST(1000);
  const TimePoint now = Clock::now();
  if (time >= now + LONGEST) return static_cast<int>(LONGEST.count());
  return time <= now ? 0 : static_cast<int>(std::chrono::ceil<milliseconds>(time - now).count());
}

bool pushEvent(unsigned int type) {
  SDL_Event event{};
  event.type = type;
  return SDL_PushEvent(&event) == 1;
}

/// What stands beside no picture, whatever the last phone has left.
ClusterView nobody(const ClusterView& left) {
  ClusterView view;
  view.phone.awaited = left.phone.awaited;
  return view;
}

Size firstSize() {
  const Size wanted = besidePicture(PICTURE_AT_FIRST).size;
  SDL_Rect usable{0, 0, wanted.width, wanted.height};
  SDL_GetDisplayUsableBounds(0, &usable);
  return {SDL_min(usable.w, wanted.width), SDL_min(usable.h, wanted.height)};
}

}  // namespace

Window::~Window() {
  if (waker_) waker_->close();
  if (texture_ != nullptr) SDL_DestroyTexture(texture_);
  if (stripTexture_ != nullptr) SDL_DestroyTexture(stripTexture_);
  if (renderer_ != nullptr) SDL_DestroyRenderer(renderer_);
  if (window_ != nullptr) SDL_DestroyWindow(window_);
  SDL_QuitSubSystem(SDL_INIT_VIDEO);
}

bool Window::open(std::string* error) {
  SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  SDL_SetHint(SDL_HINT_RENDER_SCALE_QUALITY, "linear");
  SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "0");
  if (SDL_InitSubSystem(SDL_INIT_VIDEO) == 0) {
    if (!isVisible()) {
      *error = "there is no display";
      return false;
    }
    wakeEvent_ = SDL_RegisterEvents(1);
    waker_ = std::make_shared<Waker>([type = wakeEvent_] { return pushEvent(type); });
    const Size size = firstSize();
    window_ = SDL_CreateWindow("vantry-headunit", SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED,
                               size.width, size.height, SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI);
    if (window_ != nullptr) renderer_ = SDL_CreateRenderer(window_, -1, SDL_RENDERER_PRESENTVSYNC);
  }
  if (renderer_ == nullptr) {
    *error = SDL_GetError();
    return false;
  }
  measure();
  return true;
}

std::function<void()> Window::waker() const {
  return [waker = waker_] { waker->wake(); };
}

void Window::run() {
  SDL_Event event;
  while (!slot_->isClosed()) {
    if (SDL_WaitEventTimeout(&event, millisecondsUntil(std::min(input_.nextTick(), stripUntil_))) == 1) {
      do handle(event);
      while (SDL_PollEvent(&event) == 1);
    }
    refresh();
  }
  takePicture();
}

void Window::refresh() {
  const TimePoint now = Clock::now();
  input_.tick(now);
  takeStrip(now);
  takePicture();
  // Asked only now: the picture may belong to a link that the strip does not know yet.
  if (pictureLink_ != cluster()->link()) forgetPicture();
  if (redraw_) draw();
}

void Window::handle(const SDL_Event& event) {
  if (event.type == wakeEvent_) waker_->heard();
  if (event.type == SDL_QUIT) closed_();
  if (event.type == SDL_WINDOWEVENT) {
    measure();
    redraw_ = true;
  }
  input_.handle(event, view(), targets_);
}

void Window::measure() {
  Size size;
  SDL_GetRendererOutputSize(renderer_, &size.width, &size.height);
  const std::lock_guard lock(sizeMutex_);
  size_ = size;
}

// As large as the user has made it, whatever it shows.
ScreenLayout Window::layoutWith(const std::optional<Picture>&) const { return split(); }

ScreenLayout Window::split() const {
  const std::lock_guard lock(sizeMutex_);
  return splitScreen(size_);
}

void Window::takePicture() {
  std::optional<Picture> picture = slot_->take();
  if (!picture || !fitTexture(*picture)) return;
  SDL_UpdateYUVTexture(texture_, nullptr, picture->planes[0].data, picture->planes[0].stride,
                       picture->planes[1].data, picture->planes[1].stride, picture->planes[2].data,
                       picture->planes[2].stride);
  pictureLink_ = picture->stats.get();
  draw();
  nowShows(std::move(*picture));
}

void Window::forgetPicture() {
  if (texture_ == nullptr) return;
  SDL_DestroyTexture(texture_);
  texture_ = nullptr;
  picture_ = {};
  redraw_ = true;
}

bool Window::fitTexture(const Picture& picture) {
  SDL_SetYUVConversionMode(picture.fullRange ? SDL_YUV_CONVERSION_JPEG
                           : picture.bt709   ? SDL_YUV_CONVERSION_BT709
                                             : SDL_YUV_CONVERSION_BT601);
  if (texture_ != nullptr && picture.width == picture_.width && picture.height == picture_.height)
    return true;
  if (texture_ != nullptr) SDL_DestroyTexture(texture_);
  texture_ = SDL_CreateTexture(renderer_, SDL_PIXELFORMAT_IYUV, SDL_TEXTUREACCESS_STREAMING, picture.width,
                               picture.height);
  picture_ = {picture.width, picture.height};
  return texture_ != nullptr;
}

void Window::takeStrip(TimePoint now) {
  const Rect place = split().strip;
  const std::uint64_t version = cluster()->version();
  const bool isCurrent = version == stripVersion_ && now < stripUntil_ && place.width == strip_.width &&
                         place.height == strip_.height;
  if (isCurrent || !fitStripTexture({place.width, place.height})) return;
  const ClusterView view = cluster()->view();
  StripDrawing drawing = drawStrip(view.link != nullptr ? view : nobody(view), strip_, now);
  SDL_UpdateTexture(stripTexture_, nullptr, drawing.bitmap.pixels.data(),
                    strip_.width * static_cast<int>(sizeof(std::uint32_t)));
  targets_ = std::move(drawing.targets);
  stripVersion_ = version;
  stripUntil_ = view.notice && view.notice->until > now ? view.notice->until : TimePoint::max();
  redraw_ = true;
}

bool Window::fitStripTexture(Size size) {
  if (size.width <= 0 || size.height <= 0) return false;
  if (stripTexture_ != nullptr && size.width == strip_.width && size.height == strip_.height) return true;
  if (stripTexture_ != nullptr) SDL_DestroyTexture(stripTexture_);
  stripTexture_ = SDL_CreateTexture(renderer_, SDL_PIXELFORMAT_ARGB8888, SDL_TEXTUREACCESS_STREAMING,
                                    size.width, size.height);
  strip_ = size;
  return stripTexture_ != nullptr;
}

WindowView Window::view() const {
  const ScreenLayout shared = split();
  int width = 0;
  SDL_GetWindowSize(window_, &width, nullptr);
  const PictureView picture(picture_, margins(), {shared.picture.width, shared.picture.height},
                            {shared.picture.x, shared.picture.y});
  return {picture, shared,
          width > 0 ? static_cast<float>(shared.size.width) / static_cast<float>(width) : 1.0F};
}

void Window::draw() {
  redraw_ = false;
  SDL_SetRenderDrawColor(renderer_, 0, 0, 0, 255);
  SDL_RenderClear(renderer_);
  const WindowView shown = view();
  if (texture_ != nullptr) {
    const SDL_Rect source = rectOf(shown.picture.shown());
    const SDL_Rect target = rectOf(shown.picture.area());
    SDL_RenderCopy(renderer_, texture_, &source, &target);
  } else {
    drawNobody(shown.layout.picture);
  }
  if (stripTexture_ != nullptr) {
    const SDL_Rect target = rectOf(shown.layout.strip);
    SDL_RenderCopy(renderer_, stripTexture_, nullptr, &target);
  }
  SDL_RenderPresent(renderer_);
}

// Seldom enough to draw it anew each time.
void Window::drawNobody(const Rect& place) {
  const ClusterView view = cluster()->view();
  if (view.link != nullptr) return;
  const Bitmap words = drawNoPhone(view.phone.awaited, {place.width, place.height});
  if (words.pixels.empty()) return;
  SDL_Texture* const texture = SDL_CreateTexture(
      renderer_, SDL_PIXELFORMAT_ARGB8888, SDL_TEXTUREACCESS_STATIC, words.size.width, words.size.height);
  if (texture == nullptr) return;
  SDL_UpdateTexture(texture, nullptr, words.pixels.data(),
                    words.size.width * static_cast<int>(sizeof(std::uint32_t)));
  const SDL_Rect target = rectOf(place);
  SDL_RenderCopy(renderer_, texture, nullptr, &target);
  SDL_DestroyTexture(texture);
}

}  // namespace headunit
