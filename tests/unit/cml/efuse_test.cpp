#include "common/efuse/efuse.h"

#include <gtest/gtest.h>

#include "support/log_capture.h"

namespace kelp {
namespace {

using rusk::LogLevel;

/// What a driver answers: 1024 bits from a start, all 0 but the words given.
EfuseData dataFrom(unsigned startBit, std::initializer_list<std::pair<std::size_t, std::uint32_t>> words) {
  EfuseData data{.startBit = startBit, .bitCount = 1024, .words = std::vector<std::uint32_t>(32)};
  for (const auto& [index, word] : words) {
    data.words[index] = word;
  }
  return data;
}

/// Fields 0 to 3 of 0x123456789A, 0xABC, 0x15, 0x0A on a chip of id 0x0230.
EfuseData exampleFen1() {
  return dataFrom(2048, {{7, 0x3456789A}, {8, 0x556AF012}, {14, 0x02000030}});
}
/// The same fields on a chip of key 15.
EfuseData exampleWold() {
  return dataFrom(0, {{8, 0x3456789A}, {9, 0x556AF012}, {10, 0x70100000}});
}

void expectExampleChip(const Stated<Efuse>& efuse) {
  ASSERT_TRUE(efuse.ok());
  EXPECT_EQ(efuse.value().chipField0.value(), 0x123456789AUL);
  EXPECT_EQ(efuse.value().chipField1.value(), 0xABCU);
  EXPECT_EQ(efuse.value().chipField23.value(), 0x15U | (0x0AU << 5));
}

TEST(Efuse, SecondChipLine) {
  tolk_test::LogCapture log;
  const Stated<Efuse> efuse = decodeEfuse(DevArch::kFen1, exampleFen1());
  expectExampleChip(efuse);
  EXPECT_EQ(efuse.value().deviceId.value(), 0x0230U);
  EXPECT_TRUE(log.lines.empty());
}

TEST(Efuse, ThirdChipLineHasTheLayoutOfTheSecond) {
  expectExampleChip(decodeEfuse(DevArch::kFen2, exampleFen1()));
}

TEST(Efuse, FirstChipLine) {
  const Stated<Efuse> efuse = decodeEfuse(DevArch::kWold, exampleWold());
  expectExampleChip(efuse);
  EXPECT_EQ(efuse.value().deviceId.value(), 0x010FU);
}

TEST(Efuse, KeysOfTheFirstChipLine) {
  for (std::uint32_t key = 0; key < 16; ++key) {
    const std::uint32_t low = key & 1;
    const std::uint32_t high = key >> 1;
    const Stated<Efuse> efuse = decodeEfuse(DevArch::kWold, dataFrom(0, {{10, (low << 20) | (high << 28)}}));
    ASSERT_TRUE(efuse.ok());
    const bool isListed =
        key == 5 || key == 8 || key == 9 || key == 12 || key == 13 || key == 14 || key == 15;
    if (isListed) {
      EXPECT_EQ(efuse.value().deviceId.value(), 0x0100 + key);
    } else {
      EXPECT_EQ(efuse.value().deviceId.state(), KelpReturn::kNotSupported) << key;
    }
  }
}

TEST(Efuse, SecondLowByteCountsWhenItIsMarked) {
  // Low bytes 0x30 and 0x41 at bits 2496 and 2504, the mark at 2512, eleven bits of architecture at 2517.
  const std::uint32_t bytes = 0x4130;
  const std::uint32_t arch = 0x10U << 21;
  const auto idOf = [](std::uint32_t word) {
    return decodeEfuse(DevArch::kFen1, dataFrom(2048, {{14, word}})).value().deviceId.value();
  };
  EXPECT_EQ(idOf(bytes | arch), 0x0230U);
  EXPECT_EQ(idOf(bytes | arch | (1U << 16)), 0x0241U);
}

TEST(Efuse, LowThreeBitsOfTheArchitectureFieldDoNotCount) {
  const Stated<Efuse> efuse = decodeEfuse(DevArch::kFen2, dataFrom(2048, {{14, (0x1FU << 21) | 0x31}}));
  EXPECT_EQ(efuse.value().deviceId.value(), 0x0331U);
}

TEST(Efuse, OtherChipLinesCarryNoIdentity) {
  tolk_test::LogCapture log;
  const Stated<Efuse> efuse = decodeEfuse(DevArch::kTor1, exampleFen1());
  EXPECT_EQ(efuse.state(), KelpReturn::kNotSupported);
  EXPECT_EQ(efuse.value().chipField0.state(), KelpReturn::kNotSupported);
  EXPECT_TRUE(log.has(LogLevel::kError, ">> AccessPoint::doExec<QueryEfuseCmd>(): Unsupported arch =  4 "));
}

TEST(Efuse, DataThatEndsBeforeAFieldFailsWithAllFieldsUnset) {
  EfuseData data = exampleFen1();
  data.bitCount = 240;  // fields 1 and 0 are inside, field 6 is not
  const Stated<Efuse> efuse = decodeEfuse(DevArch::kFen1, data);
  EXPECT_EQ(efuse.state(), KelpReturn::kFailure);
  EXPECT_EQ(efuse.value().chipField1.state(), KelpReturn::kNotSupported);
}

TEST(Efuse, DataOfAnotherBankFails) {
  EXPECT_EQ(decodeEfuse(DevArch::kWold, exampleFen1()).state(), KelpReturn::kFailure);
  EXPECT_EQ(decodeEfuse(DevArch::kFen1, exampleWold()).state(), KelpReturn::kFailure);
}

TEST(Efuse, FieldThatTheChipLacksIsNotSupported) {
  tolk_test::LogCapture log;
  EXPECT_EQ(FenEfuse(exampleFen1()).getField(4).state(), KelpReturn::kNotSupported);
  ASSERT_EQ(log.lines.size(), 1U);
  EXPECT_TRUE(log.has(LogLevel::kError, ">> Efuse Field [ 4 ] is NOT supported! "));
  EXPECT_EQ(WoldEfuse(exampleWold()).getField(6).state(), KelpReturn::kNotSupported);
}

TEST(Efuse, FieldOf42BitsFitsInTheFirstWord) {
  const Stated<EfuseFieldBits> field = FenEfuse(exampleFen1()).getField(0);
  ASSERT_TRUE(field.ok());
  EXPECT_EQ(field.value().bitOffset, 2272);
  EXPECT_EQ(field.value().width, 42U);
  EXPECT_EQ(field.value().words, (std::vector<std::uint64_t>{0x123456789A}));
}

TEST(Efuse, DataFromBit2048ReachesAllFieldsOfTheSecondChipLineAlone) {
  for (const EfuseFieldAlloc& field : Fen1EfuseLayout().getFields()) {
    EXPECT_TRUE(FenEfuse(exampleFen1()).getField(field.fieldId).ok()) << field.fieldId;
  }
  for (const EfuseFieldAlloc& field : WoldEfuseLayout().getFields()) {
    const Stated<EfuseFieldBits> bits = WoldEfuse(exampleFen1()).getField(field.fieldId);
    EXPECT_EQ(bits.state(), KelpReturn::kFailure) << field.fieldId;
    EXPECT_EQ(bits.value().bitOffset, -1);
  }
}

TEST(Efuse, LayoutsAreThoseOfTheChips) {
  struct Row {
    unsigned id, offset, width;
  };
  const auto expectLayout = [](const EfuseLayout& layout, std::initializer_list<Row> rows) {
    EXPECT_EQ(layout.getFields().size(), rows.size());
    for (const Row& row : rows) {
      const Stated<EfuseFieldAlloc> alloc = layout.getEfuseFieldAlloc(row.id);
      ASSERT_TRUE(alloc.ok()) << row.id;
      EXPECT_EQ(alloc.value().bitOffset, row.offset) << row.id;
      EXPECT_EQ(alloc.value().width, row.width) << row.id;
    }
  };
  expectLayout(Fen1EfuseLayout(), {{0, 2272, 42},
                                   {1, 2314, 12},
                                   {2, 2326, 5},
                                   {3, 2331, 5},
                                   {5, 2346, 1},
                                   {6, 2496, 8},
                                   {7, 2504, 8},
                                   {8, 2512, 1},
                                   {9, 2517, 11}});
  expectLayout(WoldEfuseLayout(),
               {{0, 256, 42}, {1, 298, 12}, {2, 310, 5}, {3, 315, 5}, {4, 348, 3}, {5, 340, 1}});
}

TEST(Efuse, WithoutALayoutThereIsNoField) {
  tolk_test::LogCapture log;
  EXPECT_EQ(EfuseBase(exampleFen1()).getField(0).state(), KelpReturn::kFailure);
  EXPECT_TRUE(log.has(LogLevel::kError, ">> Efuse layout is unspecified! "));
}

TEST(Efuse, LastBitMayLieOnePastTheDataAndReadsAsZero) {
  // Field 5 is the one bit 340.
  EfuseData data{.startBit = 0, .bitCount = 340, .words = std::vector<std::uint32_t>(10, 0xFFFFFFFF)};
  const Stated<EfuseFieldBits> field = WoldEfuse(data).getField(5);
  ASSERT_TRUE(field.ok());
  EXPECT_EQ(field.value().words.front(), 0U);
  data.bitCount = 339;
  EXPECT_EQ(WoldEfuse(data).getField(5).state(), KelpReturn::kFailure);
}

TEST(Efuse, FewerWordsThanBitsReadAsZero) {
  EfuseData data = exampleFen1();
  data.words.resize(8);
  const Stated<EfuseFieldBits> field = FenEfuse(data).getField(0);
  ASSERT_TRUE(field.ok());
  EXPECT_EQ(field.value().words.front(), 0x3456789AU);
}

TEST(Efuse, BitCountThatPassesTheNumberRangeHoldsEveryField) {
  EfuseData data = exampleFen1();
  data.bitCount = 0xFFFFFFFF;
  EXPECT_TRUE(FenEfuse(data).getField(9).ok());
}

}  // namespace
}  // namespace kelp
