#pragma once

#include <functional>
#include <memory>
#include <string>

#include "headunit/Screen.h"

struct SDL_Renderer;
struct SDL_Texture;
struct SDL_Window;

namespace headunit {

/// Shows the pictures in a window, as large as it is, with their proportions kept. Main thread.
class Window : public Screen {
 public:
  /// `closed` is called when the user closes the window.
  Window(PictureSlot* slot, std::function<void()> closed) : slot_(slot), closed_(std::move(closed)) {}
  ~Window() override;

  /// Returns false, with the reason in `*error`, if there is no display.
  bool open(std::string* error);
  void run() override;

  /// Any thread: something has come through the slot, or it has been closed.
  void wake();

 private:
  void takePicture();
  bool fitTexture(const Picture& picture);
  void draw();

  PictureSlot* const slot_;
  const std::function<void()> closed_;
  SDL_Window* window_ = nullptr;
  SDL_Renderer* renderer_ = nullptr;
  SDL_Texture* texture_ = nullptr;
  int width_ = 0;
  int height_ = 0;
  unsigned int wakeEvent_ = 0;
};

}  // namespace headunit
