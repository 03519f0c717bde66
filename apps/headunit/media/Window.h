#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "headunit/Layout.h"
#include "headunit/Screen.h"
#include "headunit/Waker.h"
#include "headunit/media/WindowInput.h"

struct SDL_Renderer;
struct SDL_Texture;
struct SDL_Window;

namespace headunit {

/// Shows the pictures in a window, as large as it is, with their proportions kept, and the strip on their
/// right, and hears what the user does there. Without a phone it says so; what the last one has left is not
/// shown any more. Main thread, unless something else is said.
class Window : public Screen {
 public:
  /// `margins`: what is not shown of each picture. `closed` is called when the user closes the window.
  Window(PictureSlot* slot, const Cluster* cluster, Size margins, WindowInput input,
         std::function<void()> closed)
      : Screen(cluster, margins), slot_(slot), closed_(std::move(closed)), input_(std::move(input)) {}
  ~Window() override;

  /// Returns false, with the reason in `*error`, if there is no display.
  bool open(std::string* error);
  void run() override;
  /// Shows what has come till now, without waiting.
  void refresh();

  /// After open: to be called, by any thread and also when the window has gone, when something has come
  /// through the slot, when it has been closed, and when the strip has changed. Cheap if it is called often.
  std::function<void()> waker() const;

 private:
  ScreenLayout layoutWith(const std::optional<Picture>& picture) const override;
  ScreenLayout split() const;
  void handle(const SDL_Event& event);
  void measure();
  void takePicture();
  void forgetPicture();
  void drawNobody(const Rect& place);
  bool fitTexture(const Picture& picture);
  void takeStrip(TimePoint now);
  bool fitStripTexture(Size size);
  WindowView view() const;
  void draw();

  PictureSlot* const slot_;
  const std::function<void()> closed_;
  WindowInput input_;
  SDL_Window* window_ = nullptr;
  SDL_Renderer* renderer_ = nullptr;
  SDL_Texture* texture_ = nullptr;
  SDL_Texture* stripTexture_ = nullptr;
  Size picture_;
  const LinkStats* pictureLink_ = nullptr;  ///< that the picture came by
  Size strip_;
  std::vector<StripTarget> targets_;
  std::optional<std::uint64_t> stripVersion_;  ///< of the cluster that is drawn
  TimePoint stripUntil_ = TimePoint::max();    ///< when it is to be drawn anew, though nothing changes
  mutable std::mutex sizeMutex_;
  Size size_;  ///< of the window, in the renderer's pixels
  unsigned int wakeEvent_ = 0;
  std::shared_ptr<Waker> waker_;
  bool redraw_ = true;
};

}  // namespace headunit
