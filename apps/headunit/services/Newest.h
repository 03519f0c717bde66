#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

namespace headunit {

/// Lets work that was begun for one thing find out that something newer has come meanwhile. Any thread.
class Newest {
 public:
  class Ticket {
   public:
    /// False for good once a newer ticket has been drawn, or the Newest is gone.
    bool isNewest() const { return *newest_ == number_; }

   private:
    friend class Newest;
    Ticket(std::shared_ptr<const std::atomic<std::uint64_t>> newest, std::uint64_t number)
        : newest_(std::move(newest)), number_(number) {}

    std::shared_ptr<const std::atomic<std::uint64_t>> newest_;
    std::uint64_t number_;
  };

  Newest() = default;
  ~Newest() { ++*newest_; }
  Newest(const Newest&) = delete;
  Newest& operator=(const Newest&) = delete;

  Ticket next() { return {newest_, ++*newest_}; }

 private:
  const std::shared_ptr<std::atomic<std::uint64_t>> newest_ = std::make_shared<std::atomic<std::uint64_t>>(0);
};

}  // namespace headunit
