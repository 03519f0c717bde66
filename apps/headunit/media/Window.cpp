#include "headunit/media/Window.h"

#include <SDL.h>
namespace headunit {
namespace {

// Of the window at first; the user may make it as large as he likes.
constexpr int LARGEST_WIDTH = 1280;
constexpr int LARGEST_HEIGHT = 720;

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

Size firstSize() {
  SDL_Rect usable{0, 0, LARGEST_WIDTH, LARGEST_HEIGHT};
  SDL_GetDisplayUsableBounds(0, &usable);
  return {SDL_min(usable.w, LARGEST_WIDTH), SDL_min(usable.h, LARGEST_HEIGHT)};
}

}  // namespace

Window::~Window() {
  if (texture_ != nullptr) SDL_DestroyTexture(texture_);
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
    const Size size = firstSize();
    window_ = SDL_CreateWindow("vantry-headunit", SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED,
                               size.width, size.height, SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI);
    if (window_ != nullptr) renderer_ = SDL_CreateRenderer(window_, -1, SDL_RENDERER_PRESENTVSYNC);
  }
  if (renderer_ != nullptr) return true;
  *error = SDL_GetError();
  return false;
}

void Window::wake() {
  SDL_Event event{};
  event.type = wakeEvent_;
  SDL_PushEvent(&event);
}

void Window::run() {
  SDL_Event event;
  while (!slot_->isClosed()) {
    if (SDL_WaitEventTimeout(&event, millisecondsUntil(input_.nextTick())) == 1) {
      do handle(event);
      while (SDL_PollEvent(&event) == 1);
    }
    input_.tick(Clock::now());
    takePicture();
    if (redraw_) draw();
  }
  takePicture();
}

void Window::handle(const SDL_Event& event) {
  if (event.type == SDL_QUIT) closed_();
  redraw_ = redraw_ || event.type == SDL_WINDOWEVENT;
  int width = 0;
  Size output;
  SDL_GetWindowSize(window_, &width, nullptr);
  SDL_GetRendererOutputSize(renderer_, &output.width, &output.height);
  input_.handle(event, view(), width > 0 ? static_cast<float>(output.width) / static_cast<float>(width) : 1);
}

void Window::takePicture() {
  std::optional<Picture> picture = slot_->take();
  if (!picture || !fitTexture(*picture)) return;
  SDL_UpdateYUVTexture(texture_, nullptr, picture->planes[0].data, picture->planes[0].stride,
                       picture->planes[1].data, picture->planes[1].stride, picture->planes[2].data,
                       picture->planes[2].stride);
  draw();
  nowShows(std::move(*picture));
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

PictureView Window::view() const {
  Size output;
  SDL_GetRendererOutputSize(renderer_, &output.width, &output.height);
  return {picture_, margins_, output};
}

void Window::draw() {
  redraw_ = false;
  SDL_SetRenderDrawColor(renderer_, 0, 0, 0, 255);
  SDL_RenderClear(renderer_);
  if (texture_ != nullptr) {
    const PictureView shown = view();
    const SDL_Rect source = rectOf(shown.shown());
    const SDL_Rect target = rectOf(shown.area());
    SDL_RenderCopy(renderer_, texture_, &source, &target);
  }
  SDL_RenderPresent(renderer_);
}

}  // namespace headunit
