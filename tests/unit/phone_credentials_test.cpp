#include "phone/Credentials.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "TestCredentials.h"

namespace test {
namespace {

using testing::HasSubstr;

struct PhoneCredentials : testing::Test {
  std::string folder;
  std::string error;
  PhoneCredentials() {
    std::string name = (std::filesystem::temp_directory_path() / "phone-XXXXXX").string();
    folder = mkdtemp(name.data());
    write("root.pem", credentials().root);
    write("phone.pem", credentials().phone.certificate);
    write("phone.key", credentials().phone.key);
  }
  ~PhoneCredentials() override { std::filesystem::remove_all(folder); }

  void write(const std::string& name, const std::string& text) { std::ofstream(folder + "/" + name) << text; }
  void expectRefusal(const std::string& words) {
    EXPECT_EQ(phone::loadCredentials(folder, &error), std::nullopt);
    EXPECT_THAT(error, HasSubstr(words));
    EXPECT_THAT(error, HasSubstr("scripts/make-credentials"));
  }
};

TEST_F(PhoneCredentials, AreTheThreeFilesOfAFolder) {
  const auto loaded = phone::loadCredentials(folder, &error);
  ASSERT_TRUE(loaded) << error;
  EXPECT_EQ(loaded->root, credentials().root);
  EXPECT_EQ(loaded->certificate, credentials().phone.certificate);
  EXPECT_EQ(loaded->key, credentials().phone.key);
  EXPECT_EQ(phone::doubtsAbout(*loaded), "");
}

TEST_F(PhoneCredentials, AMissingFileIsNamed) {
  for (const char* name : {"phone.key", "phone.pem", "root.pem"}) {
    std::filesystem::remove(folder + "/" + name);
    expectRefusal(name);
    expectRefusal("No such file");
  }
}

TEST_F(PhoneCredentials, AFolderInPlaceOfAFileIsNamed) {
  std::filesystem::remove(folder + "/phone.key");
  std::filesystem::create_directory(folder + "/phone.key");
  expectRefusal("phone.key");
}

TEST_F(PhoneCredentials, FilesWithoutPemAreNamed) {
  write("phone.key", "nothing");
  expectRefusal("phone.key holds no private key");
  write("phone.pem", "nothing");
  expectRefusal("phone.pem holds no certificate");
  write("root.pem", "");
  expectRefusal("root.pem holds no certificate");
}

TEST_F(PhoneCredentials, AKeyOfAnotherCertificateIsTold) {
  write("phone.key", credentials().otherKey);
  expectRefusal("does not belong");
}

TEST_F(PhoneCredentials, AnExpiredCertificateCanBeUsedWithADoubt) {
  write("phone.pem", credentials().expiredPhone.certificate);
  write("phone.key", credentials().expiredPhone.key);
  const auto loaded = phone::loadCredentials(folder, &error);
  ASSERT_TRUE(loaded) << error;
  EXPECT_THAT(phone::doubtsAbout(*loaded), HasSubstr("certificate has expired"));
}

TEST_F(PhoneCredentials, ACertificateOfAnotherRootCanBeUsedWithADoubt) {
  write("root.pem", credentials().strangerRoot);
  const auto loaded = phone::loadCredentials(folder, &error);
  ASSERT_TRUE(loaded) << error;
  EXPECT_THAT(phone::doubtsAbout(*loaded), HasSubstr("local issuer"));
}

TEST_F(PhoneCredentials, EmptyOnesAreDoubtfulToo) { EXPECT_NE(phone::doubtsAbout({}), ""); }

}  // namespace
}  // namespace test
