#include <algorithm>
#include <array>

#include "kelp_log.h"
#include "linux/ap/misc/device_exchange.h"
#include "linux/ap/misc/memory_exchange.h"
#include "linux/ap/misc/mkis_protocol_v0/ipc_board_records.h"
#include "linux/ap/misc/mkis_protocol_v0/misc_kernel_accessor_v0.h"
#include "linux/ap/misc/mkis_protocol_v0/shared_buffer.h"

// The board, its firmware, its memory and the chip's identity, asked of the board's controller.

namespace kelp::linux_ {
namespace {

/// Sizes of a board's memory in MiB and rates of its memory in MT/s, by the board's index of them.
constexpr std::array<unsigned int, 10> kMemorySizes{1024,  2048,  4096,  8192,  12288,
                                                    16384, 24576, 32768, 49152, 65536};
constexpr std::array<unsigned int, 8> kTransferRates{3200, 3733, 4266, 12000, 14000, 16000, 18000, 20000};

template <std::size_t N>
Stated<unsigned int> valueAt(const std::array<unsigned int, N>& table, u32 index, const char* unknown) {
  if (index >= N) {
    KELP_LOG(kError) << unknown << index;
    return KelpReturn::kNotSupported;
  }
  return table[index];
}

/// `transfersPerClock` is what the family's memory does in one clock.
MemorySpec decodeDdr(const BoardHead& board, unsigned int transfersPerClock, const char* unknownSize) {
  constexpr unsigned long kMega = 1000000;
  MemorySpec spec;
  spec.size = valueAt(kMemorySizes, board.memSizeIndex, unknownSize);
  // Both families' lines name the first; sic.
  const auto rate =
      valueAt(kTransferRates, board.ddrFreqType, "getDdrSpecV0() not found the ddr frequency type : ");
  if (rate.ok()) {
    spec.maxClock = rate.value() / transfersPerClock * kMega;
  }
  spec.type = memoryTypeOf(board.memType);
  spec.vendor = memoryVendorOf(board.memVendor);
  spec.channelCount = unlessZero<unsigned int>(board.channelCount);
  spec.channelWidth = unlessZero<unsigned int>(board.channelWidth);
  return spec;
}

MemorySpec queryDdrSpecV0(const BoardHead& board) {
  return decodeDdr(board, 2, "getDdrSpecV0() unknown mem size idx ");
}

MemorySpec queryDdrSpecV1(const BoardHead& board) {
  return decodeDdr(board, 8, "getDdrSpecV1() unknown mem size idx ");
}

}  // namespace

Stated<FirmwareVersions> MiscKernelAccessorV0::doQuerySmcFwVersionV0() const {
  IpcGetFwVerionCmdV0 record{};
  if (const KelpReturn state = cmd(fd(), record); state != KelpReturn::kSuccess) {
    return state;
  }
  if (record.status != kIpcGoodStatus) {
    KELP_LOG(kError) << "querySmcFwVersionV0() status check failed!";
    return KelpReturn::kNotSupported;
  }
  return readFirmwareVersions(record);
}

template <class Command>
Stated<EfuseData> MiscKernelAccessorV0::queryEfuse(const QueryEfuseDataParam& param) const {
  Command record{};
  record.wantedStart = param.startBit;
  record.wantedCount = param.bitCount;
  if (const KelpReturn state = cmd(fd(), record); state != KelpReturn::kSuccess) {
    return state;
  }
  if (record.status != kIpcGoodStatus) {
    KELP_LOG(kError) << "queryEfuseData() status check failed!";
    return KelpReturn::kNotSupported;
  }
  return readEfuseData(record);
}

Stated<EfuseData> MiscKernelAccessorV0::doQueryEfuseDataV0(const QueryEfuseDataParam& param) const {
  return isFirstFamily() ? queryEfuse<IpcGetEfuseCmdV0>(param) : queryEfuse<IpcGetEfuseCmdV1>(param);
}

template <class Command, class Data>
Stated<Data> MiscKernelAccessorV0::queryBuffer(const char* mapFailure, const char* refusal) const {
  if (fd() < 0) {
    KELP_LOG(kError) << "miscFd_ is invalid, value is " << fd();
    return KelpReturn::kFailure;
  }
  const std::lock_guard lock(bufferMutex_);
  const SharedBuffer buffer(fd(), sizeof(Data));
  if (!buffer.isMapped()) {
    if (buffer.isAllocated()) {
      KELP_LOG(kError) << mapFailure;
    }
    return KelpReturn::kFailure;
  }
  Command record{};
  record.bufferHandle = buffer.handleLowHalf();
  if (const KelpReturn state = cmd(fd(), record); state != KelpReturn::kSuccess) {
    return state;
  }
  if (record.status != kIpcGoodStatus) {
    KELP_LOG(kError) << refusal;
    return KelpReturn::kNotSupported;
  }
  Data data;
  buffer.copyTo(&data, sizeof data);
  return data;
}

Stated<MemoryEdc> MiscKernelAccessorV0::doQueryMemEdcV0() const {
  const auto counters = queryBuffer<IpcGetMemEdcCmdV0, MemEdcCounters>(
      "queryMemEdcV0() failed to map memory!", "queryMemEdcV0() status check failed!");
  if (!counters.ok()) {
    return counters.state();
  }
  return sumOfChannels(counters.value());
}

Stated<BoardData> MiscKernelAccessorV0::getBoardCapInfoV0() const {
  IpcGetDeviceInfoCmdV0 record{};
  if (const KelpReturn state = cmd(fd(), record); state != KelpReturn::kSuccess) {
    return state;
  }
  if (record.status != kIpcGoodStatus) {
    KELP_LOG(kError) << "getBoardCapInfoV0() status check failed!";
    return KelpReturn::kNotSupported;
  }
  BoardData data{};
  data.head = record.head;
  data.head.dispCount = 0;
  return data;
}

Stated<BoardData> MiscKernelAccessorV0::getBoardCapInfoV1() const {
  return queryBuffer<IpcGetDeviceInfoCmdV1, BoardData>("getBoardCapInfoV1() failed to map memory!",
                                                       "getBoardCapInfoV1() status check failed!");
}

Stated<BoardData> MiscKernelAccessorV0::getBoardCapInfoV2() const {
  MkiGetBoardCfgCapV2 record{};
  if (const KelpReturn state = access(record); state != KelpReturn::kSuccess) {
    return state;
  }
  BoardData data{};
  data.head = record.head;
  data.head.dispCount = static_cast<u16>(rowsOf(u16{record.head.dispCount}, record.rows));
  std::copy(std::begin(record.rows), std::end(record.rows), data.rows);
  return data;
}

Stated<BoardData> MiscKernelAccessorV0::getBoardData() const {
  switch (getArch()) {
    case DevArch::kWold:
      return getBoardCapInfoV0();
    case DevArch::kFen1:
    case DevArch::kFen2:
      return getBoardCapInfoV1();
    case DevArch::kTor1:
      return getBoardCapInfoV2();
    default:
      return KelpReturn::kNotSupported;
  }
}

Stated<MemorySpec> MiscKernelAccessorV0::doQueryDdrCapV0() const {
  const auto board = getBoardData();
  if (!board.ok()) {
    return board.state();
  }
  return isFirstFamily() ? queryDdrSpecV0(board.value().head) : queryDdrSpecV1(board.value().head);
}

Stated<GpuSpec> MiscKernelAccessorV0::doQueryGpuCapV0() const {
  const auto board = getBoardData();
  if (!board.ok()) {
    return board.state();
  }
  return readGpuSpec(board.value().head, board.value().head.gpuMaxClock);
}

Stated<std::vector<DispInterfaceInfo>> MiscKernelAccessorV0::doQueryDisplayInterfaceSpecV0() const {
  const auto board = getBoardData();
  if (!board.ok()) {
    KELP_LOG(kError) << "getDisplayInterfaceSpecV0() get board info error, status: " << board.state();
    return board.state();
  }
  return readDisplays(board.value(), board.value().head.dispCount);
}

}  // namespace kelp::linux_
