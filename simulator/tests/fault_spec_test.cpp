#include "fault_spec.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "host_error.h"

namespace {

std::string errorOf(const std::string& written) {
  try {
    parseFault(written);
  } catch (const HostError& error) {
    return error.what();
  }
  return {};
}

TEST(SimFaultSpec, FullForm) {
  const FaultSpec spec = parseFault("ioctl(interface=56,version=1,kind=record,node=ovgpu.*)#2-7:hang=30");
  EXPECT_EQ(spec.fault.target, SIM_FAULT_IOCTL);
  EXPECT_EQ(spec.fault.effect, SIM_EFFECT_HANG);
  EXPECT_EQ(spec.fault.number, 30u);
  EXPECT_EQ(spec.fault.anyInterface, 0);
  EXPECT_EQ(spec.fault.interfaceName, 56u);
  EXPECT_EQ(spec.fault.version, 1u);
  EXPECT_EQ(spec.fault.callKind, SIM_CALL_RECORD);
  EXPECT_EQ(spec.fault.first, 2u);
  EXPECT_EQ(spec.fault.last, 7u);
  EXPECT_EQ(spec.pattern, "ovgpu.*");
}

TEST(SimFaultSpec, MappingHasTheEffectsThatItCanHave) {
  const FaultSpec spec = parseFault("map(/dev/ovgpu.0)#2+:errno=ENOMEM");
  EXPECT_EQ(spec.fault.target, SIM_FAULT_MAP);
  EXPECT_EQ(spec.pattern, "/dev/ovgpu.0");
  EXPECT_NE(errorOf("map(/dev/ovgpu.0):cut=3").find("effect on a mapping"), std::string::npos);
  EXPECT_NE(errorOf("map(/dev/ovgpu.0):status=3").find("effect on a mapping"), std::string::npos);
}

TEST(SimFaultSpec, EveryAccessCanKill) {
  for (const char* const written :
       {"ioctl#2:kill", "file(/a)#1:kill", "open(/a):kill", "map:kill", "move#3:kill"}) {
    EXPECT_EQ(parseFault(written).fault.effect, SIM_EFFECT_KILL) << written;
  }
  EXPECT_NE(errorOf("move:errno=EIO").find("unknown effect on a move \"errno\" (kill)"), std::string::npos);
  EXPECT_NE(errorOf("ioctl:kill=9").find("takes no value"), std::string::npos);
}

TEST(SimFaultSpec, CommandsToTheFirmwareAreAKindOfCall) {
  EXPECT_EQ(parseFault("ioctl(kind=smc):errno=EAGAIN").fault.callKind, SIM_CALL_SMC);
  EXPECT_EQ(parseFault("ioctl(kind=unknown):errno=EIO").fault.callKind, SIM_CALL_UNKNOWN);
  EXPECT_NE(errorOf("ioctl(kind=smcs):errno=EIO").find("\"smc\"?"), std::string::npos);
}

TEST(SimFaultSpec, TextUnderstandsEscapes) {
  EXPECT_EQ(parseFault(R"(open(/etc/ovparams):text=a:b=c\n\x41\\\0z)").text,
            std::string("a:b=c\nA\\\0z", 10));
}

TEST(SimFaultSpec, WhatIsTakenIsAPath) {
  const FaultSpec spec = parseFault("file(/sys/a)#3:take=/sys/bus/pci/devices/0000:01:00.0");
  EXPECT_EQ(spec.fault.effect, SIM_EFFECT_TAKE);
  EXPECT_EQ(spec.text, "/sys/bus/pci/devices/0000:01:00.0");
  EXPECT_EQ(spec.fault.number, SIM_TAKE_NOT_YET);
  EXPECT_NE(errorOf("file:take=sys/a").find("begins with \"/\""), std::string::npos);
  EXPECT_NE(errorOf("file:take=/sys/a/").find("ends without"), std::string::npos);
  EXPECT_NE(errorOf("ioctl:take=/sys/a").find("effect on an ioctl"), std::string::npos);
}

TEST(SimFaultSpec, PathMayHoldColons) {
  const FaultSpec spec = parseFault("file(/sys/bus/pci/devices/0000:01:00.0/config)#1:cut=64");
  EXPECT_EQ(spec.pattern, "/sys/bus/pci/devices/0000:01:00.0/config");
  EXPECT_EQ(spec.fault.number, 64u);
}

TEST(SimFaultSpec, ErrnoNames) {
  EXPECT_EQ(errnoFromName("EACCES"), EACCES);
  EXPECT_EQ(errnoFromName("ENODEV"), ENODEV);
  EXPECT_FALSE(errnoFromName("EWHAT"));
}

TEST(SimFaultSpec, MistakesAreNamed) {
  const struct {
    const char* written;
    const char* message;
  } mistakes[] = {
      {"iocl#1:errno=EIO",
       "fault \"iocl#1:errno=EIO\": unknown target \"iocl\"; did you mean \"ioctl\"? (ioctl, file, open, "
       "map, move)"},
      {"ioctl#0:errno=EIO", "fault \"ioctl#0:errno=EIO\": accesses are counted from 1"},
      {"ioctl#x:errno=EIO", "fault \"ioctl#x:errno=EIO\": what follows \"#\" is a number; found \"x\""},
      {"ioctl#5-3:gone", "fault \"ioctl#5-3:gone\": the range ends before it begins"},
      {"ioctl", "fault \"ioctl\": expected \":\" and an effect; found the end"},
      {"ioctl:errno=EIX", "fault \"ioctl:errno=EIX\": unknown errno \"EIX\"; one such as EIO is expected"},
      {"ioctl:cut=3",
       "fault \"ioctl:cut=3\": unknown effect on an ioctl \"cut\"; did you mean \"count\"? "
       "(errno, hang, kill, status, short, ones, count, gone)"},
      {"file(/sys/x):gone",
       "fault \"file(/sys/x):gone\": unknown effect on a file \"gone\" "
       "(errno, hang, kill, cut, text, take)"},
      {"ioctl:gone=1", "fault \"ioctl:gone=1\": \"gone\" takes no value"},
      {"ioctl:status", "fault \"ioctl:status\": \"status\" needs a value: status=..."},
      {"ioctl(interfac=3):ones",
       "fault \"ioctl(interfac=3):ones\": unknown key \"interfac\"; did you mean "
       "\"interface\"? (node, interface, version, kind, request)"},
      {"ioctl(kind=scam):ones",
       "fault \"ioctl(kind=scam):ones\": unknown kind \"scam\"; did you mean \"scan\"? "
       "(probe, scan, list, record, smc, memory, unknown)"},
      {"ioctl(interface=3:ones", "fault \"ioctl(interface=3:ones\": the selection has no \")\""},
      {"file(sys/x):cut=1", "fault \"file(sys/x):cut=1\": a path begins with \"/\"; found \"sys/x\""},
      {"file:text=a\\q", "fault \"file:text=a\\q\": after \"\\\" only n, 0, \\ and xHH are understood"},
  };
  for (const auto& row : mistakes) EXPECT_EQ(errorOf(row.written), row.message);
}

}  // namespace
