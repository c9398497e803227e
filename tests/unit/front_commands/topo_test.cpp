#include <nlohmann/json.hpp>

#include "command_access/topo_command_access.h"
#include "command_fixture.h"
#include "command_output/topo_output.h"

namespace tolk {
namespace {

using Json = nlohmann::ordered_json;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using tolk_test::device;
using tolk_test::fakeLumo;

constexpr unsigned long long kRoleMediated = 1u << 1;
constexpr unsigned long long kMpcParent = 1u << 5;
constexpr unsigned long long kMpcInstance = 2u << 5;

class TopoTest : public tolk_test::CommandFixture {
 protected:
  void SetUp() override {
    CommandFixture::SetUp();
    setGpus(2);
  }

  static void setGpus(unsigned count) {
    setDevices(count);
    for (unsigned index = 0; index < count; ++index) {
      const std::string own = "(device " + std::to_string(index);
      LumoPciInfo info{};
      std::snprintf(info.sbdf, sizeof info.sbdf, "0000:0%u:00.0", index + 1);
      fakeLumo().set("lumoDeviceGetPciInfo" + own + ")", info);
      fakeLumo().set("lumoDeviceGetUUID" + own + ", 48)", "uuid " + std::to_string(index));
    }
    fakeLumo().set("lumoDeviceGetPciDeviceTopology", static_cast<int>(LUMO_TOPOLOGY_SYSTEM));
  }

  static void setProperty(unsigned index, unsigned long long property) {
    fakeLumo().set("lumoDeviceGetProperty(device " + std::to_string(index) + ")", property);
  }

  static ParsedOptions with(ParsedOptions options) {
    options["topo"] = {};
    return options;
  }

  static std::shared_ptr<Step> run(ParsedOptions options) {
    return TopoCommandAccess(with(std::move(options))).work();
  }

  /// The rows of a matrix.
  static std::string matrix(ParsedOptions options) {
    const auto text = printedBy<TopoCommandAccess>(with(std::move(options)));
    return text.substr(0, text.find("\n\n") + 1);
  }

  /// What a command without an output prints.
  static std::string said(ParsedOptions options) {
    std::ostringstream text;
    auto* const old = std::cout.rdbuf(text.rdbuf());
    const auto next = run(std::move(options));
    std::cout.rdbuf(old);
    EXPECT_EQ(next, nullptr);
    return text.str();
  }

  static void expectNotAvailable(ParsedOptions options) {
    expectError(run(std::move(options)), "Error: the requested operation is not available",
                ExitCode::kUnsupported);
  }

  static void setNearest(unsigned index, unsigned level, const std::vector<LumoDevice*>& devices) {
    const auto selection = "(device " + std::to_string(index) + ", " + std::to_string(level);
    fakeLumo().set("lumoDeviceCountDeviceByTopologyLevel" + selection + ")",
                   static_cast<unsigned>(devices.size()));
    fakeLumo().set(
        "lumoDeviceGetDeviceByTopologyLevel" + selection + ", " + std::to_string(devices.size() + 1) + ")",
        devices);
  }
};

TEST_F(TopoTest, DevicesThatCannotBeCounted) {
  fakeLumo().fail("lumoLibraryCountDevice", {LUMO_RETURN_UNKNOWN_ERROR});
  expectError(run({{"-mg", {}}}), "Error: failed to get the number of GPU device",
              ExitCode::kEnumerationFailed);
  EXPECT_THAT(log_.of('E'), Contains(HasSubstr("lumoLibraryCountDevice")));
}

TEST_F(TopoTest, DeviceThatIsMissingAtTheStart) {
  fakeLumo().fail("lumoLibraryInitDeviceByIndex(library 0, 1)", {LUMO_RETURN_NOT_FOUND});
  expectError(run({}), "Error: failed to find the specified GPU device, index = 1", ExitCode::kBadArgument);
}

TEST_F(TopoTest, TypeThatCannotBeRead) {
  fakeLumo().fail("lumoDeviceGetProperty(device 1)", {LUMO_RETURN_UNKNOWN_ERROR});
  expectNotAvailable({{"-m", {}}, {"-mg", {}}});
}

TEST_F(TopoTest, AccessThatIsNeitherReadNorWrite) {
  for (const auto* value : {"", "x", "rw", "R"}) {
    expectError(run({{"-p2p", {value}}}), "Error: wrong value type for a option", ExitCode::kBadArgument);
  }
}

TEST_F(TopoTest, LinksComeBeforeTheWayOverTheBus) {
  fakeLumo().set("lumoDeviceCountSablinkLayouts(device 0, device 1)", 4u);
  EXPECT_EQ(matrix({{"-mg", {}}}),
            "         GPU0     GPU1     CPU Affinity   NUMA Affinity  \n"
            "GPU0     X        OV4                                    \n"
            "GPU1     OV4      X                                      \n");
  EXPECT_EQ(fakeLumo().timesCalled("lumoDeviceGetPciDeviceTopology"), 0);
}

TEST_F(TopoTest, WayOverTheBusWithoutLinksOrWhenTheyCannotBeCounted) {
  const auto expected =
      "         GPU0     GPU1     CPU Affinity   NUMA Affinity  \n"
      "GPU0     X        SYS                                    \n"
      "GPU1     SYS      X                                      \n";
  EXPECT_EQ(matrix({{"-mg", {}}}), expected);
  fakeLumo().set("lumoDeviceCountSablinkLayouts(device 0, device 1)", 4u);
  fakeLumo().fail("lumoDeviceCountSablinkLayouts", {LUMO_RETURN_NOT_SUPPORTED});
  EXPECT_EQ(matrix({{"-mg", {}}}), expected);
}

TEST_F(TopoTest, EachPairIsAskedOnceAndByTheFirstGpu) {
  setGpus(3);
  run({{"-mg", {}}});
  auto asked = questions();
  std::erase_if(asked, [](const std::string& line) { return !line.starts_with("lumoDeviceGetPciDevice"); });
  EXPECT_THAT(
      asked,
      ElementsAre("lumoDeviceGetPciDeviceTopology(device 0, \"00000000:01:00.0\", \"00000000:02:00.0\")",
                  "lumoDeviceGetPciDeviceTopology(device 0, \"00000000:01:00.0\", \"00000000:03:00.0\")",
                  "lumoDeviceGetPciDeviceTopology(device 0, \"00000000:02:00.0\", \"00000000:03:00.0\")"));
}

TEST_F(TopoTest, AffinityThatCannotBeReadEndsNothing) {
  fakeLumo().set("lumoDeviceGetCpuAffinityStringWithinNode", std::string("0-31"));
  fakeLumo().set("lumoDeviceGetMemoryAffinityStringWithinNode", std::string("0"));
  fakeLumo().fail("lumoDeviceGetCpuAffinityStringWithinNode(device 0, 256)", {LUMO_RETURN_UNKNOWN_ERROR});
  fakeLumo().fail("lumoDeviceGetMemoryAffinityStringWithinNode(device 1, 256)", {LUMO_RETURN_UNKNOWN_ERROR});
  EXPECT_EQ(matrix({{"-mg", {}}}),
            "         GPU0     GPU1     CPU Affinity   NUMA Affinity  \n"
            "GPU0     X        SYS      N/A            0              \n"
            "GPU1     SYS      X        0-31           N/A            \n");
}

TEST_F(TopoTest, VirtualDevicesAndInstancesTakeNoPart) {
  setGpus(5);
  setProperty(0, kRoleMediated);
  setProperty(2, kMpcParent);
  setProperty(3, kMpcInstance);
  const auto expected =
      "         GPU1     GPU2     GPU4     CPU Affinity   NUMA Affinity  \n"
      "GPU1     X        SYS      SYS                                    \n"
      "GPU2     SYS      X        SYS                                    \n"
      "GPU4     SYS      SYS      X                                      \n";
  EXPECT_EQ(matrix({{"-mg", {}}}), expected);
  EXPECT_EQ(matrix({{"-m", {}}}), expected);
  EXPECT_EQ(fakeLumo().timesCalled("lumoDeviceCountPciNicDevices"), 1);
  EXPECT_THAT(fakeLumo().lines, Contains("lumoDeviceCountPciNicDevices(device 1)"));
  EXPECT_EQ(matrix({{"-p2p", {"r"}}}),
            "         GPU1     GPU2     GPU4     \n"
            "GPU1     X        OK       OK       \n"
            "GPU2     OK       X        OK       \n"
            "GPU4     OK       OK       X        \n");
}

TEST_F(TopoTest, VirtualDeviceCountsTowardsTheIndexLimit) {
  setProperty(1, kRoleMediated);
  fakeLumo().set("lumoDeviceGetTopologyLevel", static_cast<int>(LUMO_TOPOLOGY_NODE));
  EXPECT_EQ(said({{"-p", {}}, {"-i", {"0,1"}}}), "Device 0 is connected to device 1 by way of NODE\n");
  expectError(run({{"-p", {}}, {"-i", {"0,2"}}}), "Error: index is invalid", ExitCode::kBadArgument);
}

TEST_F(TopoTest, AdaptersNeedAGpuThatTakesPart) {
  setGpus(1);
  setProperty(0, kRoleMediated);
  expectNotAvailable({{"-m", {}}});
  EXPECT_EQ(matrix({{"-mg", {}}}), "         \n");
}

TEST_F(TopoTest, AdaptersThatCannotBeListed) {
  fakeLumo().fail("lumoDeviceCountPciNicDevices", {LUMO_RETURN_UNKNOWN_ERROR});
  expectNotAvailable({{"-m", {}}});
  EXPECT_THAT(log_.of('E'), Contains(HasSubstr(">> get nic device pci sbdf failed ")));
}

TEST_F(TopoTest, QueryThatFailsEndsIt) {
  setNearest(0, 1, {device(1)});
  const std::pair<const char*, ParsedOptions> failing[] = {
      {"lumoDeviceGetPciInfo(device 1)", {{"-mg", {}}}},
      {"lumoDeviceGetPciDeviceTopology", {{"-m", {}}}},
      {"lumoDeviceGetP2PStatus(device 1, device 0, 1)", {{"-p2p", {"w"}}}},
      {"lumoDeviceCountDeviceByTopologyLevel", {{"-n", {"1"}}, {"-i", {"0"}}}},
      {"lumoDeviceGetDeviceByTopologyLevel", {{"-n", {"1"}}, {"-i", {"0"}}}},
      {"lumoDeviceGetUUID", {{"-n", {"1"}}, {"-i", {"0"}}}},
      {"lumoDeviceGetTopologyLevel", {{"-p", {}}, {"-i", {"0,1"}}}},
  };
  for (const auto& [call, options] : failing) {
    SCOPED_TRACE(call);
    fakeLumo().fail(call, {LUMO_RETURN_UNKNOWN_ERROR});
    expectNotAvailable(options);
    EXPECT_THAT(fakeLumo().failures.at(call), IsEmpty());
  }
}

TEST_F(TopoTest, DeviceThatIsGoneBetweenStartAndQuestion) {
  for (const ParsedOptions& options :
       {ParsedOptions{{"-n", {"1"}}, {"-i", {"1"}}}, ParsedOptions{{"-p", {}}, {"-i", {"0,1"}}}}) {
    fakeLumo().fail("lumoLibraryInitDeviceByIndex(library 0, 1)",
                    {LUMO_RETURN_SUCCESS, LUMO_RETURN_UNKNOWN_ERROR});
    expectNotAvailable(options);
  }
}

TEST_F(TopoTest, AccessInBothDirectionsAndModes) {
  fakeLumo().set("lumoDeviceGetP2PStatus(device 0, device 1, 0)", 1u);
  fakeLumo().set("lumoDeviceGetP2PStatus(device 1, device 0, 0)", 2u);
  fakeLumo().set("lumoDeviceGetP2PStatus(device 0, device 1, 1)", 3u);
  EXPECT_EQ(matrix({{"-p2p", {"r"}}}),
            "         GPU0     GPU1     \n"
            "GPU0     X        CNS      \n"
            "GPU1     GNS      X        \n");
  EXPECT_EQ(matrix({{"-p2p", {"w"}}}),
            "         GPU0     GPU1     \n"
            "GPU0     X        U        \n"
            "GPU1     OK       X        \n");
}

TEST_F(TopoTest, NearestGpusByTheirUuids) {
  setGpus(4);
  setProperty(2, kMpcInstance);
  const char* const words[] = {"internal connection", "a single PCIe switch", "multiple PCIe bridges",
                               "a PCIe Host Bridge",  "a NUMA node",          "system"};
  for (unsigned level = 0; level < std::size(words); ++level) {
    setNearest(0, level, {device(3), device(2), device(1)});
    EXPECT_EQ(said({{"-n", {std::to_string(level)}}, {"-i", {"0"}}}),
              std::string("Device 0 is connected by way of ") + words[level] + " to device(s):3,1\n");
  }
  setNearest(0, 4, {device(2)});
  EXPECT_EQ(said({{"-n", {"4"}}, {"-i", {"0"}}}),
            "Device 0 is connected by way of a NUMA node to device(s):\n");
}

TEST_F(TopoTest, NoGpuAtALevel) {
  EXPECT_EQ(said({{"-n", {"1"}}, {"-i", {"1,7"}}}), "No devices connected to device 1 by this way\n");
}

TEST_F(TopoTest, LevelThatThereIsNot) {
  setNearest(0, 6, {device(1)});
  expectNotAvailable({{"-n", {"6"}}, {"-i", {"0"}}});
  fakeLumo().fail("lumoDeviceCountDeviceByTopologyLevel(device 0, 4294967295)",
                  {LUMO_RETURN_INVALID_ARGUMENT});
  expectNotAvailable({{"-n", {"4294967296"}}, {"-i", {"0"}}});
  EXPECT_THAT(log_.of('E'), Contains(HasSubstr("lumoDeviceCountDeviceByTopologyLevel")));
}

TEST_F(TopoTest, OutputWithAdapters) {
  TopoOutput output(Json{
      {"topo",
       {{"GPU0", {{"GPU0", "X"}, {"NIC0", "a longer cell"}, {"CPU Affinity", "0"}, {"NUMA Affinity", "1"}}},
        {"NIC0", {{"GPU0", "SPB"}, {"NIC0", "X"}}}}},
      {"Legend", {{"X", "Self"}, {"LONGER", "Text"}}},
      {"NIC Legend", {{"NIC0", "mlx5_0"}, {"NIC1000", "mlx5_1"}}}});
  EXPECT_EQ(printed(output),
            "         GPU0     NIC0     CPU Affinity   NUMA Affinity  \n"
            "GPU0     X        a longer cell0              1              \n"
            "NIC0     SPB      X        \n"
            "\n"
            "Legend:\n"
            "    X = Self\n"
            "LONGER = Text\n"
            "\n"
            "NIC Legend:\n"
            "  NIC0: mlx5_0\n"
            "NIC1000: mlx5_1\n"
            "\n");
}

TEST_F(TopoTest, OutputRefusesACellThatIsNoText) {
  TopoOutput output(Json{{"topo", {{"GPU0", {{"GPU0", 4}}}}}, {"Legend", Json::object()}});
  EXPECT_THROW(output.work(), Json::type_error);
}

}  // namespace
}  // namespace tolk
