#pragma once

#include <functional>
#include <memory>
#include <string>

#include "headunit/Layout.h"
#include "headunit/Screen.h"
#include "headunit/media/WindowInput.h"

struct SDL_Renderer;
struct SDL_Texture;
struct SDL_Window;

namespace headunit {

/// Shows the pictures in a window, as large as it is, with their proportions kept, and hears what the user
/// does there. Main thread.
class Window : public Screen {
 public:
  /// `margins`: what is not shown of each picture. `closed` is called when the user closes the window.
  Window(PictureSlot* slot, Size margins, Controls* controls, std::function<void()> closed)
      : slot_(slot), margins_(margins), closed_(std::move(closed)), input_(controls) {}
  ~Window() override;

  /// Returns false, with the reason in `*error`, if there is no display.
  bool open(std::string* error);
  void run() override;

  /// Any thread: something has come through the slot, or it has been closed.
  void wake();

 private:
  void handle(const SDL_Event& event);
  void takePicture();
  bool fitTexture(const Picture& picture);
  PictureView view() const;
  void draw();

  PictureSlot* const slot_;
  const Size margins_;
  const std::function<void()> closed_;
  WindowInput input_;
  SDL_Window* window_ = nullptr;
  SDL_Renderer* renderer_ = nullptr;
  SDL_Texture* texture_ = nullptr;
  Size picture_;
  unsigned int wakeEvent_ = 0;
  bool redraw_ = true;
};

}  // namespace headunit
