#include "command_output/query_output.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "command_error.h"

namespace tolk {
namespace {

using Json = nlohmann::ordered_json;

class QueryOutputTest : public testing::Test {
 protected:
  void SetUp() override {
    folder_ = testing::TempDir() + "query_output_" + std::to_string(::getpid());
    std::filesystem::create_directories(folder_);
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  static Json document() {
    return {{"Attached GPUs", "2"},
            {"GPU0 00000000:01:00.0", {{"Performance State", "P0"}, {"Index", "own"}}},
            {"GPU10 00000000:41:00.0", {{"Performance State", "P8"}}}};
  }

  static std::string text() {
    const auto padded = [](std::string key) {
      key.resize(50, ' ');
      return key;
    };
    return padded("Attached GPUs") + ":  2\n\n" + padded("GPU0 00000000:01:00.0") + "\n" +
           padded("    Performance State") + ":  P0\n" + padded("    Index") + ":  own\n\n" +
           padded("GPU10 00000000:41:00.0") + "\n" + padded("    Performance State") + ":  P8\n\n";
  }

  static std::string printed(const Json& document, bool json) {
    std::ostringstream out;
    auto* const old = std::cout.rdbuf(out.rdbuf());
    EXPECT_EQ(QueryOutput(document, json, "").work(), nullptr);
    std::cout.rdbuf(old);
    return out.str();
  }

  static std::string content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  static void expectFailure(const std::string& path, const std::string& message) {
    for (const bool json : {false, true}) {
      const auto error = std::dynamic_pointer_cast<CommandError>(QueryOutput(document(), json, path).work());
      ASSERT_TRUE(error) << path;
      EXPECT_EQ(error->message, message);
      EXPECT_EQ(error->code, ExitCode::kFileFailed);
    }
  }

  std::string folder_;
};

TEST_F(QueryOutputTest, TextEndsInAnEmptyLine) {
  EXPECT_EQ(printed(document(), false), text());
}

TEST_F(QueryOutputTest, JsonListsTheDevicesByIndexAlone) {
  const auto json = Json::parse(printed({{"Attached GPUs", "2"},
                                         {"GPU0 00000000:01:00.0", {{"Performance State", "P0"}}},
                                         {"GPU10 00000000:41:00.0", {{"Performance State", "P8"}}}},
                                        true));
  EXPECT_EQ(json, Json({{"Attached GPUs", "2"},
                        {"GPU", Json::array({{{"Index", "0"}, {"Performance State", "P0"}},
                                             {{"Index", "10"}, {"Performance State", "P8"}}})}}));
}

TEST_F(QueryOutputTest, JsonKeepsWhatIsNoDevice) {
  EXPECT_EQ(printed({{"GPU0 ", {{"a", "1"}}}}, true),
            "{\n    \"GPU0 \": {\n        \"a\": \"1\"\n    }\n}\n");
}

TEST_F(QueryOutputTest, JsonCanBeParsedWhateverBytesAreInIt) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  const auto json = Json::parse(printed({{"a", bytes + "\u00e4"}}, true));
  EXPECT_TRUE(json.at("a").get<std::string>().ends_with("\u00e4"));
}

TEST_F(QueryOutputTest, JsonWritesLettersAsTheyAre) {
  EXPECT_EQ(printed({{"a", "\u00e4"}}, true), "{\n    \"a\": \"\u00e4\"\n}\n");
}

TEST_F(QueryOutputTest, AFileGetsTheSameBytesAtItsEnd) {
  const std::string path = folder_ + "/report";
  EXPECT_EQ(QueryOutput(document(), false, path).work(), nullptr);
  EXPECT_EQ(QueryOutput(document(), true, path).work(), nullptr);
  EXPECT_EQ(content(path), text() + printed(document(), true));
}

TEST_F(QueryOutputTest, WhatTheFileHoldsStays) {
  const std::string path = folder_ + "/report";
  std::ofstream(path) << "mine, without a line end";
  EXPECT_EQ(QueryOutput(document(), false, path).work(), nullptr);
  EXPECT_EQ(content(path), "mine, without a line end" + text());
}

TEST_F(QueryOutputTest, StandardOutputHasNothingOfAFile) {
  std::ostringstream out;
  auto* const old = std::cout.rdbuf(out.rdbuf());
  EXPECT_EQ(QueryOutput(document(), false, folder_ + "/report").work(), nullptr);
  std::cout.rdbuf(old);
  EXPECT_EQ(out.str(), "");
}

TEST_F(QueryOutputTest, AFileThatCannotBeOpenedFails) {
  for (const auto& path : {folder_, folder_ + "/missing/report", folder_ + "/"}) {
    expectFailure(path, "Error: file was opened and created failed");
  }
  EXPECT_FALSE(std::filesystem::exists(folder_ + "/missing"));
}

/// Root may write everywhere, so it is somebody else while this lives.
class Nobody {
 public:
  Nobody() {
    constexpr uid_t kNobody = 65534;
    if (user_ == 0) {
      EXPECT_EQ(::seteuid(kNobody), 0);
    }
  }
  ~Nobody() { EXPECT_EQ(::seteuid(user_), 0); }

 private:
  const uid_t user_ = ::geteuid();
};

TEST_F(QueryOutputTest, AFileWithoutPermissionFails) {
  const std::string path = folder_ + "/report";
  std::ofstream(path) << "mine";
  std::filesystem::permissions(path, std::filesystem::perms::owner_read | std::filesystem::perms::group_read |
                                         std::filesystem::perms::others_read);
  const Nobody nobody;
  ASSERT_EQ(::access(path.c_str(), F_OK), 0);
  expectFailure(path, "Error: file was opened and created failed");
  EXPECT_EQ(content(path), "mine");
}

TEST_F(QueryOutputTest, AFullDiskFails) {
  expectFailure("/dev/full", "Error: failed to write to the file");
}

}  // namespace
}  // namespace tolk
