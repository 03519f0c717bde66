#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <thread>

#include "headunit/media/SdlSound.h"

namespace headunit {
namespace {

using Block = std::vector<std::int16_t>;

/// Puts a variable of the environment back as it was.
class Variable {
 public:
  Variable(const char* name, const std::string& value) : name_(name) {
    if (const char* const before = std::getenv(name)) before_ = before;
    setenv(name, value.c_str(), 1);
  }
  ~Variable() { before_ ? setenv(name_, before_->c_str(), 1) : unsetenv(name_); }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

 private:
  const char* const name_;
  std::optional<std::string> before_;
};

/// Somebody who listens, and can be waited for.
class Ear {
 public:
  Microphone::Take take() {
    return [this](const std::int16_t* samples) {
      const std::lock_guard lock(mutex_);
      heard_.emplace_back(samples, samples + MICROPHONE_BLOCK);
      hears_.notify_all();
      return true;
    };
  }

  /// All that has been heard by then.
  std::vector<Block> waitFor(std::size_t blocks) {
    std::unique_lock lock(mutex_);
    hears_.wait(lock, [&] { return heard_.size() >= blocks; });
    return heard_;
  }

  std::size_t count() {
    const std::lock_guard lock(mutex_);
    return heard_.size();
  }

 private:
  std::mutex mutex_;
  std::condition_variable hears_;
  std::vector<Block> heard_;
};

/// The device is a file, from which SDL reads as from a microphone; behind its end there is silence.
class HeadunitSdlMicrophone : public testing::Test {
 protected:
  ~HeadunitSdlMicrophone() override { std::filesystem::remove_all(folder); }

  // The device may be opened at any moment: then the file is whole, or is not there.
  void says(const std::vector<Block>& blocks) const {
    {
      std::ofstream file(recording + ".part", std::ios::binary);
      for (const Block& block : blocks)
        file.write(reinterpret_cast<const char*>(block.data()),
                   static_cast<std::streamsize>(2 * block.size()));
    }
    std::filesystem::rename(recording + ".part", recording);
  }

  std::unique_ptr<Microphone> found() {
    std::unique_ptr<Microphone> microphone = findMicrophone(&error);
    EXPECT_TRUE(microphone) << error;
    return microphone;
  }

  static Block steady(std::int16_t sample) { return Block(MICROPHONE_BLOCK, sample); }

  const std::string folder = [] {
    std::string name = (std::filesystem::temp_directory_path() / "headunit-XXXXXX").string();
    return std::string(mkdtemp(name.data()));
  }();
  const std::string recording = folder + "/voice.raw";
  const Variable driver{"SDL_AUDIODRIVER", "disk"};
  const Variable input{"SDL_DISKAUDIOFILEIN", recording};
  const Variable pause{"SDL_DISKAUDIODELAY", "1"};
  std::string error;
  Ear ear;
};

TEST_F(HeadunitSdlMicrophone, HearsInBlocks) {
  says({steady(1000), steady(-2000), steady(3000)});
  const auto microphone = found();
  EXPECT_TRUE(microphone->open(ear.take()));
  const std::vector<Block> heard = ear.waitFor(4);
  EXPECT_EQ(heard[0], steady(1000));
  EXPECT_EQ(heard[1], steady(-2000));
  EXPECT_EQ(heard[2], steady(3000));
  EXPECT_EQ(heard[3], steady(0));
}

TEST_F(HeadunitSdlMicrophone, NobodyHearsItWhoHasClosedIt) {
  says({steady(1000)});
  const auto microphone = found();
  microphone->open(ear.take());
  ear.waitFor(1);
  microphone->close();
  const std::size_t heard = ear.count();
  Ear other;
  EXPECT_TRUE(microphone->open(other.take()));
  other.waitFor(3);
  EXPECT_EQ(ear.count(), heard);
}

TEST_F(HeadunitSdlMicrophone, CanBeClosedWhileTheDeviceIsBeingOpened) {
  says({});
  const auto microphone = found();
  for (int i = 0; i < 20; ++i) {
    EXPECT_TRUE(microphone->open(ear.take()));
    microphone->close();
  }
  const std::size_t heard = ear.count();
  Ear other;
  EXPECT_TRUE(microphone->open(other.take()));
  other.waitFor(1);
  EXPECT_EQ(ear.count(), heard);
}

TEST_F(HeadunitSdlMicrophone, MayGoWhileItListens) {
  says({steady(1000)});
  auto microphone = found();
  microphone->open(ear.take());
  ear.waitFor(1);
  microphone.reset();
  const std::size_t heard = ear.count();
  Ear other;
  microphone = found();
  microphone->open(other.take());
  other.waitFor(3);
  EXPECT_EQ(ear.count(), heard);
}

TEST_F(HeadunitSdlMicrophone, MayGoWithoutHavingListened) {
  found();
  EXPECT_EQ(ear.count(), 0U);
}

// That the device cannot be opened is known only after the first request.
TEST_F(HeadunitSdlMicrophone, TellsAfterwardsThatItCouldNotBeOpened) {
  const auto microphone = found();
  while (microphone->open(ear.take())) std::this_thread::yield();
  EXPECT_EQ(ear.count(), 0U);
}

TEST_F(HeadunitSdlMicrophone, IsTriedAnewOnceItWasRefused) {
  const auto microphone = found();
  while (microphone->open(ear.take())) std::this_thread::yield();
  says(std::vector<Block>(1000, steady(1000)));  // what comes before somebody listens is lost
  while (!microphone->open(ear.take())) std::this_thread::yield();
  EXPECT_EQ(ear.waitFor(1)[0], steady(1000));
}

TEST_F(HeadunitSdlMicrophone, IsNotFoundWhereThereIsNoSound) {
  const Variable none("SDL_AUDIODRIVER", "no such driver");
  EXPECT_FALSE(findMicrophone(&error));
  EXPECT_NE(error, "");
}

}  // namespace
}  // namespace headunit
