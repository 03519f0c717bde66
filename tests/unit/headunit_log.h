#pragma once

#include <spdlog/sinks/base_sink.h>
#include <spdlog/spdlog.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace headunit {

/// Takes what the head unit logs while this object lives. It comes before the threads that log, and goes
/// after them.
class LoggedLines {
 public:
  LoggedLines() { spdlog::set_default_logger(std::make_shared<spdlog::logger>("headunit", lines_)); }
  ~LoggedLines() { spdlog::set_default_logger(before_); }
  LoggedLines(const LoggedLines&) = delete;
  LoggedLines& operator=(const LoggedLines&) = delete;

  /// Without time and level.
  std::vector<std::string> all() const { return lines_->all(); }

  /// Waits for a line with this text and returns it; empty if none comes for a long time.
  std::string waitFor(const std::string& text) const { return lines_->waitFor(text); }

 private:
  class Lines : public spdlog::sinks::base_sink<std::mutex> {
   public:
    std::vector<std::string> all() {
      const std::lock_guard lock(mutex_);
      return lines_;
    }

    std::string waitFor(const std::string& text) {
      std::unique_lock lock(mutex_);
      std::string found;
      changed_.wait_for(lock, std::chrono::seconds(20), [&] {
        for (const std::string& line : lines_) {
          if (line.find(text) != std::string::npos) found = line;
        }
        return !found.empty();
      });
      return found;
    }

   protected:
    void sink_it_(const spdlog::details::log_msg& message) override {
      lines_.emplace_back(message.payload.data(), message.payload.size());
      changed_.notify_all();
    }
    void flush_() override {}

   private:
    std::condition_variable changed_;
    std::vector<std::string> lines_;
  };

  const std::shared_ptr<spdlog::logger> before_ = spdlog::default_logger();
  const std::shared_ptr<Lines> lines_ = std::make_shared<Lines>();
};

}  // namespace headunit
