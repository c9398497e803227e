#include "model_list.h"

#include <gtest/gtest.h>

#include <string>

namespace kelp {
namespace {

TEST(ModelList, HasEveryModelByItsId) {
  struct Row {
    unsigned deviceId;
    const char* name;
  };
  const Row rows[] = {
      {0x0105, "OVT A11"},   {0x0106, "OVT A11"},   {0x0108, "OVT A13"},   {0x0109, "OVT B210M"},
      {0x010C, "OVT A15"},   {0x010D, "OVT A16"},   {0x010E, "OVT B210"},  {0x010F, "OVT B220"},
      {0x0210, "OVT A18"},   {0x0211, "OVT A18"},   {0x0220, "OVT A17"},   {0x0230, "OVT B230"},
      {0x0240, "OVT B230E"}, {0x0241, "OVT B230E"}, {0x0250, "OVT D33"},   {0x0310, "OVT A19ES"},
      {0x0320, "OVT A19"},   {0x0330, "OVT B240"},  {0x0331, "OVT B240"},  {0x0332, "OVT B240"},
      {0x0340, "OVT D35"},   {0x0410, "OVT B250A"}, {0x0411, "OVT B250A"}, {0x0420, "OVT B250Z"},
      {0x0430, "OVT B250B"}, {0x0440, "OVT B250C"}, {0x0450, "OVT B250D"}, {0x04FF, "OVT T1"},
  };
  for (const Row& row : rows) {
    const ModelRow* const model = findModel(row.deviceId);
    ASSERT_NE(model, nullptr) << row.deviceId;
    EXPECT_EQ(std::string(model->name), row.name);
    EXPECT_EQ(static_cast<unsigned>(model->arch), row.deviceId >> 8);
  }
}

TEST(ModelList, HasNoOtherId) {
  for (const unsigned id : {0U, 0x0104U, 0x0107U, 0x01FFU, 0x02FFU, 0x03FFU, 0x0412U, 0x0500U, 0x10410U}) {
    EXPECT_EQ(findModel(id), nullptr) << id;
  }
}

}  // namespace
}  // namespace kelp
