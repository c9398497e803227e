#include "command_output/document_text.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace tolk {
namespace {

using Json = nlohmann::ordered_json;

std::string drawn(const Json& document, BeginsParagraph beginsParagraph = nullptr) {
  std::string out;
  appendDocument(out, document, beginsParagraph);
  return out;
}

std::string padded(std::string key) {
  key.resize(50, ' ');
  return key;
}

TEST(DocumentText, IndentsInsideTheColumnOfTheKeys) {
  EXPECT_EQ(drawn({{"a", "1"}, {"b", {{"c", "2"}, {"d", {{"e", "3"}}}}}, {"f", ""}}),
            padded("a") + ":  1\n" + padded("b") + "\n" + padded("    c") + ":  2\n" + padded("    d") +
                "\n" + padded("        e") + ":  3\n" + padded("f") + ":  \n");
}

TEST(DocumentText, ALongKeyIsFollowedByItsColonAtOnce) {
  const std::string key(47, 'k');
  EXPECT_EQ(drawn({{"g", {{key, "v"}}}}), padded("g") + "\n    " + key + ":  v\n");
}

TEST(DocumentText, KeepsTheOrderOfTheDocument) {
  EXPECT_EQ(drawn({{"z", "1"}, {"a", "2"}}), padded("z") + ":  1\n" + padded("a") + ":  2\n");
}

TEST(DocumentText, PutsAnEmptyLineBeforeEachKeyThatBeginsAParagraph) {
  // The key is looked at with its indent.
  const auto begins = [](std::string_view key) { return key == "a" || key == "    b"; };
  EXPECT_EQ(drawn({{"a", {{"b", "1"}, {"a", "2"}}}, {"b", "3"}}, begins),
            "\n" + padded("a") + "\n" + "\n" + padded("    b") + ":  1\n" + padded("    a") + ":  2\n" +
                padded("b") + ":  3\n");
}

TEST(DocumentText, PassesAnyBytesOn) {
  const std::string bytes = "\xff\x80 \x01\t\"\\\n\xc3";
  EXPECT_EQ(drawn({{"a", bytes}}), padded("a") + ":  " + bytes + "\n");
}

TEST(DocumentText, NothingButTextsAndObjectsCanBeDrawn) {
  for (const Json& value : {Json(1), Json(true), Json(nullptr), Json::array({"a"})}) {
    EXPECT_THROW(drawn(Json::object({{"a", value}})), Json::type_error);
  }
}

TEST(DocumentText, KnowsTheKeyOfADevice) {
  for (const auto* key : {"GPU0 00000000:01:00.0", "GPU12345 0000ab12:c3:1f.f", "    GPU0 00000000:01:00.0",
                          "a GPU7 00000000:01:00.0", "GPUGPU7 00000000:01:00.0"}) {
    EXPECT_TRUE(isDeviceKey(key)) << key;
  }
  for (const auto* key :
       {"", "GPU0", "GPU0 ", "GPU 00000000:01:00.0", "GPU00000000:01:00.0", " 00000000:01:00.0",
        "00000000:01:00.0", "GPU0  00000000:01:00.0", "GPU0 0000:01:00.0", "GPU0 0000000G:01:00.0",
        "GPU0 0000000A:01:00.0", "GPU0 00000000:01:00:0", "GPU0 00000000.01:00.0", "GPU0 00000000:01:00.0 ",
        "GPU0 000000000:01:00.0", "gpu0 00000000:01:00.0", "GPUx 00000000:01:00.0",
        "GPU0x 00000000:01:00.0"}) {
    EXPECT_FALSE(isDeviceKey(key)) << key;
  }
}

}  // namespace
}  // namespace tolk
