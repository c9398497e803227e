#include <cstdlib>
#include <new>

#include "handles.h"
#include "in_process/lumo_fixture.h"

// What the caller sees when there is no memory: a code, as of any failure.

namespace {

/// How many allocations this thread may still make; negative for as many as it likes.
thread_local int allowance = -1;

}  // namespace

void* operator new(std::size_t size) {
  void* const memory = allowance == 0 ? nullptr : std::malloc(size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  if (allowance > 0) {
    --allowance;
  }
  return memory;
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace {

class NoMemoryTest : public tolk_test::LumoFixture {
 protected:
  /// Asks for a handle with room for no allocation, for one, for two and so on, until it is given. The
  /// number of refusals.
  template <class Handle, class Ask>
  int refusals(Ask ask) {
    for (int room = 0;; ++room) {
      Handle former;
      Handle* handle = &former;
      allowance = room;
      const LumoReturn status = ask(&handle);
      allowance = -1;
      if (status == LUMO_RETURN_SUCCESS) {
        EXPECT_NE(handle, &former);
        EXPECT_NE(handle, nullptr);
        Handle* again = nullptr;
        EXPECT_EQ(ask(&again), LUMO_RETURN_SUCCESS);
        EXPECT_EQ(again, handle) << "a refusal leaves nothing behind";
        return room;
      }
      EXPECT_EQ(status, LUMO_RETURN_INSUFFICIENT_MEMORY);
      EXPECT_EQ(handle, nullptr);
    }
  }
};

/// Asks with room for no allocation, for one, for two and so on, until memory is no matter. How often it was.
template <class Ask>
int refusalsOf(Ask ask, LumoReturn atLast) {
  for (int room = 0;; ++room) {
    allowance = room;
    const LumoReturn status = ask();
    allowance = -1;
    if (status != LUMO_RETURN_INSUFFICIENT_MEMORY) {
      EXPECT_EQ(status, atLast);
      return room;
    }
  }
}

TEST_F(NoMemoryTest, AQuestionThatFindsNoMemoryIsRefused) {
  constexpr const char* kUuid = "a uuid too long to stand in a string itself";
  addGpuAt(0x40, 0, kUuid);
  mustStart();
  LumoDevice* const gpu = device(0);
  char text[64] = "before";
  EXPECT_GE(refusalsOf([&] { return lumoDeviceGetUUID(gpu, text, sizeof text); }, LUMO_RETURN_SUCCESS), 1);
  EXPECT_STREQ(text, kUuid);
  unsigned count = 0;
  EXPECT_GE(refusalsOf([&] { return lumoDeviceCountMaxVirtDevices(gpu, kUuid, &count); },
                       LUMO_RETURN_UNKNOWN_ERROR),
            1);
  LumoEventData events[1];
  EXPECT_GE(
      refusalsOf(
          [&] { return lumoGetTargetUuidEventDataByEventType(kUuid, LUMO_EVENT_XID, events, 1, &count); },
          LUMO_RETURN_UNKNOWN_ERROR),
      2);
  EXPECT_GE(
      refusalsOf([&] { return lumoDeviceGetEventDataByEventType(gpu, LUMO_EVENT_XID, events, 1, &count); },
                 LUMO_RETURN_UNKNOWN_ERROR),
      2);
}

TEST_F(NoMemoryTest, AChangeThatFindsNoMemoryIsRefused) {
  addGpu(0);
  mustStart();
  LumoDevice* const gpu = device(0);
  EXPECT_GE(refusalsOf([&] { return lumoDeviceSetPerformanceState(gpu, 1); }, LUMO_RETURN_UNKNOWN_ERROR), 1);
  EXPECT_GE(refusalsOf([&] { return lumoLibraryFreeDevice(gpu); }, LUMO_RETURN_SUCCESS), 1);
}

TEST_F(NoMemoryTest, ADivisionThatFindsNoMemoryIsRefused) {
  addMpc();
  mustStart();
  LumoDevice* parent = deviceOf("uuid-2");
  unsigned configuration = 1;
  allowance = 0;
  const LumoReturn status = lumoLibrarySetMpcConfigurationInBatch(library_, 1, &parent, &configuration);
  allowance = -1;
  EXPECT_EQ(status, LUMO_RETURN_INSUFFICIENT_MEMORY);
}

TEST_F(NoMemoryTest, AStartThatFindsNoMemoryIsRefused) {
  addMpc();
  EXPECT_GE(refusalsOf([&] { return start(); }, LUMO_RETURN_SUCCESS), 10);
  EXPECT_EQ(count(), 3U) << "what was begun is forgotten";
}

TEST_F(NoMemoryTest, EveryHandleThatCannotBeMadeIsRefused) {
  addGpu(0);
  mustStart();
  EXPECT_GE(refusals<LumoSystem>([&](auto** out) { return lumoLibraryInitSystem(library_, out); }), 2);
  EXPECT_GE(refusals<LumoDevice>([&](auto** out) { return lumoLibraryInitDeviceByIndex(library_, 0, out); }),
            2);
  LumoDevice* const gpu = device(0);
  EXPECT_GE(refusals<LumoGpu>([&](auto** out) { return lumoDeviceInitGpu(gpu, out); }), 2);
  EXPECT_GE(refusals<LumoMemory>([&](auto** out) { return lumoDeviceInitMemory(gpu, out); }), 2);
  EXPECT_GE(refusals<LumoVpu>([&](auto** out) { return lumoDeviceInitVpu(gpu, out); }), 2);
}

TEST_F(NoMemoryTest, EveryTextThatNamesADeviceMayFindNoMemory) {
  addGpuAt(0x40, 0, "a uuid too long to stand in a string itself");
  mustStart();
  EXPECT_GE(refusals<LumoDevice>([&](auto** out) {
              return lumoLibraryInitDeviceByUuid(library_, "a uuid too long to stand in a string itself",
                                                 out);
            }),
            3);
}

TEST_F(NoMemoryTest, AListOfHandlesThatCannotBeMadeIsRefused) {
  addMpc();
  mustStart();
  LumoDevice* const parent = deviceOf("uuid-2");
  LumoReturn status = LUMO_RETURN_INSUFFICIENT_MEMORY;
  int refused = -1;
  for (int room = 0; status == LUMO_RETURN_INSUFFICIENT_MEMORY; ++room, ++refused) {
    LumoDevice* devices[2] = {nullptr, nullptr};
    allowance = room;
    status = lumoDeviceGetMpcInstances(parent, devices, 2);
    allowance = -1;
    EXPECT_EQ(devices[0] != nullptr, status == LUMO_RETURN_SUCCESS);
  }
  EXPECT_EQ(status, LUMO_RETURN_SUCCESS);
  EXPECT_GE(refused, 2);
}

TEST_F(NoMemoryTest, ASampleThatCannotBeMadeIsRefused) {
  mustStart();
  LumoPfmSample* sample = nullptr;
  for (const int room : {0, 1}) {
    allowance = room;
    const LumoReturn status = lumoPfmSampleAlloc(&sample);
    allowance = -1;
    EXPECT_EQ(status, LUMO_RETURN_INSUFFICIENT_MEMORY);
    EXPECT_EQ(sample, nullptr);
  }
  EXPECT_EQ(lumoPfmSampleAlloc(&sample), LUMO_RETURN_SUCCESS);
}

TEST_F(NoMemoryTest, AnEventThatCannotBeMadeIsRefused) {
  mustStart();
  LumoEvent* event = nullptr;
  for (const int room : {0, 1}) {
    allowance = room;
    const LumoReturn status = lumoEventCreate(&event);
    allowance = -1;
    EXPECT_EQ(status, LUMO_RETURN_INSUFFICIENT_MEMORY);
    EXPECT_EQ(event, nullptr);
  }
  EXPECT_EQ(lumoEventCreate(&event), LUMO_RETURN_SUCCESS);
}

TEST_F(NoMemoryTest, ALibraryThatCannotBeMadeIsRefused) {
  addGpu(0);
  for (const int room : {0, 1}) {
    allowance = room;
    const LumoReturn status = lumoLibraryInit(&library_);
    allowance = -1;
    EXPECT_EQ(status, LUMO_RETURN_INSUFFICIENT_MEMORY);
    EXPECT_EQ(library_, nullptr);
  }
  mustStart();
  EXPECT_EQ(count(), 1U);
}

TEST_F(NoMemoryTest, AFurtherHandleOfTheLibraryThatCannotBeMadeIsRefused) {
  addGpu(0);
  mustStart();
  LumoLibrary* second = nullptr;
  allowance = 0;
  const LumoReturn status = lumoLibraryInit(&second);
  allowance = -1;
  EXPECT_EQ(status, LUMO_RETURN_INSUFFICIENT_MEMORY);
  EXPECT_EQ(second, nullptr);
  EXPECT_EQ(count(), 1U) << "the first handle is as good as before";
}

}  // namespace
