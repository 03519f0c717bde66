#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>

namespace headunit {

/// While it lives, no file takes more than so many bytes: EFBIG where a full disk would give ENOSPC.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit few{bytes, before_.rlim_max};
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &few), 0);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  void (*const handler_)(int);
  rlimit before_{};
};

}  // namespace headunit
