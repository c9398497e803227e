#include <map>
#include <string>

#include "calls/ask.h"
#include "calls/operations.h"
#include "on_hosts/host_fixture.h"
#include "on_hosts/in_threads.h"

// All questions, asked by many threads at once: the answers are those that one thread gets.

namespace {

using tolk_test::forAWhile;
using tolk_test::inThreads;
using tolk_test::kThreads;
using tolk_test::Operation;
using tolk_test::readings;
using tolk_test::Subject;

using Answers = std::map<std::string_view, std::string>;

Answers askAll(const Subject& subject) {
  Answers answers;
  for (const Operation& reading : readings()) {
    answers[reading.name] = reading.ask(subject);
  }
  return answers;
}

/// Asks all until the time is over, or an answer is another one.
void keepAsking(const Subject& subject, const Answers& expected) {
  bool isSame = true;
  forAWhile([&] {
    for (const Operation& reading : readings()) {
      if (!isSame) {
        return;
      }
      const std::string answer = reading.ask(subject);
      isSame = answer == expected.at(reading.name);
      EXPECT_EQ(answer, expected.at(reading.name)) << reading.name;
    }
  });
}

class ServerHost : public tolk_test::HostFixture {};

TEST_F(ServerHost, EightThreadsEachOnADeviceOfItsOwn) {
  ASSERT_EQ(count(), kThreads);
  std::vector<Subject> subjects;
  std::vector<Answers> alone;
  for (unsigned index = 0; index < kThreads; ++index) {
    subjects.push_back(Subject::of(device(index), device((index + 1) % kThreads)));
    alone.push_back(askAll(subjects.back()));
    for (const auto& [name, answer] : alone.back()) {
      EXPECT_FALSE(answer.starts_with(tolk_test::kFault)) << name << ": " << answer;
    }
  }
  inThreads([&](unsigned thread) { keepAsking(subjects[thread], alone[thread]); });
}

TEST_F(ServerHost, EightThreadsOnOneDevice) {
  const Subject subject = Subject::of(device(0), device(1));
  const Answers alone = askAll(subject);
  inThreads([&](unsigned) { keepAsking(subject, alone); });
}

TEST_F(ServerHost, ThreadsJoinAndLeaveTheLibraryWhileOthersUseIt) {
  const Subject subject = Subject::of(device(0), device(1));
  const Answers alone = askAll(subject);
  inThreads([&](unsigned thread) {
    if (thread < kThreads / 2) {
      keepAsking(subject, alone);
      return;
    }
    forAWhile([&] {
      LumoLibrary* library = nullptr;
      ASSERT_EQ(lumoLibraryInit(&library), LUMO_RETURN_SUCCESS);
      LumoDevice* same = nullptr;
      EXPECT_EQ(lumoLibraryInitDeviceByIndex(library, 0, &same), LUMO_RETURN_SUCCESS);
      EXPECT_EQ(same, subject.device);
      EXPECT_EQ(lumoLibraryShutDown(library), LUMO_RETURN_SUCCESS);
    });
  });
}

TEST(ServerHostStart, EightThreadsStartAndEndTheLibrary) {
  inThreads([](unsigned thread) {
    for (int round = 0; round < 20; ++round) {
      LumoLibrary* library = nullptr;
      ASSERT_EQ(lumoLibraryInit(&library), LUMO_RETURN_SUCCESS);
      unsigned number = 0;
      EXPECT_EQ(lumoLibraryCountDevice(library, &number), LUMO_RETURN_SUCCESS);
      EXPECT_EQ(number, kThreads);
      LumoDevice* device = nullptr;
      EXPECT_EQ(lumoLibraryInitDeviceByIndex(library, thread, &device), LUMO_RETURN_SUCCESS);
      unsigned index = 99;
      EXPECT_EQ(lumoDeviceGetIndex(device, &index), LUMO_RETURN_SUCCESS);
      EXPECT_EQ(index, thread);
      LumoGpu* gpu = nullptr;
      EXPECT_EQ(lumoDeviceInitGpu(device, &gpu), LUMO_RETURN_SUCCESS);
      unsigned utilization = 999;
      EXPECT_EQ(lumoGpuGetUtilization(gpu, &utilization), LUMO_RETURN_SUCCESS);
      EXPECT_LE(utilization, 100U);
      EXPECT_EQ(lumoLibraryShutDown(library), LUMO_RETURN_SUCCESS);
    }
  });
}

/// A GPU and the vGPUs that it carries.
class VgpusHostThreads : public tolk_test::HostFixture {};

TEST_F(VgpusHostThreads, VgpusAreMadeOnceAndAskedByAll) {
  const char* const uuids[] = {"c3d9a1e2-7f40-4b6c-9d15-2e8a0b4f6c71",
                               "d4e0b2f3-7f40-4b6c-9d15-2e8a0b4f6c72"};
  LumoDevice* made[kThreads] = {};
  inThreads([&](unsigned thread) {
    EXPECT_EQ(lumoDeviceInitVirtDevice(device(0), uuids[thread % 2], &made[thread]), LUMO_RETURN_SUCCESS);
  });
  for (unsigned thread = 2; thread < kThreads; ++thread) {
    EXPECT_EQ(made[thread], made[thread % 2]);
  }
  const Subject subjects[] = {Subject::of(made[0], device(0)), Subject::of(made[1], device(0)),
                              Subject::of(device(0))};
  const Answers alone[] = {askAll(subjects[0]), askAll(subjects[1]), askAll(subjects[2])};
  inThreads([&](unsigned thread) { keepAsking(subjects[thread % 3], alone[thread % 3]); });
}

}  // namespace
