#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "TestCredentials.h"
#include "headunit/Credentials.h"

namespace headunit {
namespace {

using testing::HasSubstr;

/// A folder of credentials that one test spoils.
class HeadunitCredentials : public testing::Test {
 protected:
  HeadunitCredentials() {
    std::string pattern = (std::filesystem::temp_directory_path() / "headunit.XXXXXX").string();
    folder = mkdtemp(pattern.data());
    put("root.pem", test::credentials().root);
    put("headunit.pem", test::credentials().headUnit.certificate);
    put("headunit.key", test::credentials().headUnit.key);
  }
  ~HeadunitCredentials() override { std::filesystem::remove_all(folder); }

  void put(const std::string& name, const std::string& text) { std::ofstream(folder + "/" + name) << text; }
  std::string problem() {
    std::string error;
    EXPECT_FALSE(loadCredentials(folder, &error));
    return error;
  }

  std::string folder;
};

TEST_F(HeadunitCredentials, AreReadWhole) {
  std::string error;
  const auto loaded = loadCredentials(folder, &error);
  ASSERT_TRUE(loaded) << error;
  EXPECT_EQ(loaded->root, test::credentials().root);
  EXPECT_EQ(loaded->certificate, test::credentials().headUnit.certificate);
  EXPECT_EQ(loaded->key, test::credentials().headUnit.key);
  EXPECT_EQ(doubtsAbout(*loaded), "");
}

TEST_F(HeadunitCredentials, NameAFileThatIsMissing) {
  for (const char* const name : {"headunit.key", "headunit.pem", "root.pem"}) {
    std::filesystem::remove(folder + "/" + name);
    EXPECT_THAT(problem(), HasSubstr(std::string(name) + ": No such file"));
    EXPECT_THAT(problem(), HasSubstr("scripts/make-credentials"));
  }
}

TEST_F(HeadunitCredentials, NameAFileThatIsEmptyOrAFolder) {
  put("headunit.pem", "");
  EXPECT_THAT(problem(), HasSubstr("headunit.pem: it is empty"));
  std::filesystem::remove(folder + "/root.pem");
  std::filesystem::create_directory(folder + "/root.pem");
  EXPECT_THAT(problem(), HasSubstr("root.pem"));
}

TEST_F(HeadunitCredentials, NameAFileThatNeverEnds) {
  std::filesystem::remove(folder + "/headunit.pem");
  std::filesystem::create_symlink("/dev/zero", folder + "/headunit.pem");
  EXPECT_THAT(problem(), HasSubstr("headunit.pem: it has more than 1 MiB"));
}

TEST_F(HeadunitCredentials, NameAFileThatHoldsSomethingElse) {
  put("headunit.key", "no key");
  EXPECT_THAT(problem(), HasSubstr("headunit.key holds no private key"));
  put("headunit.pem", "no certificate");
  EXPECT_THAT(problem(), HasSubstr("headunit.pem holds no certificate"));
  put("root.pem", "no certificate");
  EXPECT_THAT(problem(), HasSubstr("root.pem holds no certificate"));
}

TEST_F(HeadunitCredentials, MustBelongTogether) {
  put("headunit.key", test::credentials().otherKey);
  EXPECT_THAT(problem(), HasSubstr("headunit.key does not belong to"));
}

TEST_F(HeadunitCredentials, RaiseDoubtsThatOnlyThePhoneCanSettle) {
  const test::TestCredentials& all = test::credentials();
  EXPECT_EQ(doubtsAbout({all.root, all.strangerHeadUnit.certificate, all.strangerHeadUnit.key}),
            "headunit.pem is not signed by root.pem");
  EXPECT_EQ(doubtsAbout({all.root, all.expiredPhone.certificate, all.expiredPhone.key}),
            "headunit.pem has expired");
  EXPECT_THAT(doubtsAbout({all.root, all.futurePhone.certificate, all.futurePhone.key}),
              HasSubstr("not valid yet"));
}

}  // namespace
}  // namespace headunit
