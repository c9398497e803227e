#include "pci_topology.h"

#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <algorithm>

#include "host_tree.h"
#include "linux/topology/pci_node_info.h"

namespace kelp {
namespace {

using linux_::PciNodeType;
using rusk::LogLevel;

class PciTopologyTest : public tolk_test::HostTree {
 protected:
  /// A function at the end of a chain of ancestors, "pci0000:00/0000:00:01.0/0000:01:00.0".
  std::string node(const std::string& chain, const std::string& nodeClass, const std::string& numaNode = "0",
                   const std::string& deviceId = "0x0410", const std::string& vendorId = "0x4f56") const {
    const std::string sbdf = chain.substr(chain.rfind('/') + 1);
    const std::string place = "/sys/devices/" + chain;
    file(place + "/class", nodeClass + "\n");
    file(place + "/vendor", vendorId + "\n");
    file(place + "/device", deviceId + "\n");
    file(place + "/local_cpulist", "0-31\n");
    file(place + "/numa_node", numaNode + "\n");
    link("/sys/bus/pci/devices/" + sbdf, place);
    return sbdf;
  }
  std::string gpu(const std::string& chain, const std::string& numaNode = "0") const {
    return node(chain, "0x038000", numaNode);
  }
  std::string bridge(const std::string& chain) const {
    return node(chain, "0x060400", "0", "0x1234", "0x1111");
  }

  static void expectLevel(const std::string& a, const std::string& b, TopologyLevel level) {
    const auto there = getPciDeviceTopology(a, b);
    const auto back = getPciDeviceTopology(b, a);
    EXPECT_TRUE(there.ok() && back.ok()) << a << " " << b;
    EXPECT_EQ(there.value(), level) << a << " " << b;
    EXPECT_EQ(back.value(), level) << b << " " << a;
  }
  static KelpReturn stateOf(const std::string& a, const std::string& b) {
    return getPciDeviceTopology(a, b).state();
  }
};

TEST_F(PciTopologyTest, NodeIsReadFromItsFolder) {
  const std::string sbdf = gpu("pci0000:00/0000:00:01.0/0000:01:00.0", "1");
  const auto read = linux_::readPciNode(sbdf);
  ASSERT_TRUE(read.ok());
  const linux_::PciNodeInfo& info = read.value();
  EXPECT_EQ(info.domain, 0U);
  EXPECT_EQ(info.bus, 1U);
  EXPECT_EQ(info.deviceId, 0x0410U);
  EXPECT_EQ(info.type, PciNodeType::kGpu);
  EXPECT_EQ(info.cpuList, "0-31");
  EXPECT_EQ(info.numaNode, "1");
  EXPECT_EQ(info.path, (std::vector<std::string>{"pci0000:00", "0000:00:01.0", "0000:01:00.0"}));
}

TEST_F(PciTopologyTest, TypeGoesByClassAndVendor) {
  const std::tuple<const char*, const char*, PciNodeType> rows[] = {
      {"0x038000", "0x4f56", PciNodeType::kGpu},
      {"0x030000", "0x4f56", PciNodeType::kGpu},
      {"0x030200", "0x10de", PciNodeType::kUnknown},
      {"0x060000", "0x1022", PciNodeType::kHostBridge},
      {"0x060400", "0x1022", PciNodeType::kOtherBridge},
      {"0x068000", "0x1022", PciNodeType::kOtherBridge},
      {"0x020000", "0x15b3", PciNodeType::kNetworkAdapter},
      {"0x020700", "0x15b3", PciNodeType::kNetworkAdapter},
      {"0x028000", "0x15b3", PciNodeType::kUnknown},
      {"0x010802", "0x4f56", PciNodeType::kUnknown},
  };
  for (const auto& [nodeClass, vendorId, type] : rows) {
    remove("/sys/bus/pci/devices");
    const auto info = linux_::readPciNode(node("pci0000:00/0000:01:00.0", nodeClass, "0", "0x1", vendorId));
    ASSERT_TRUE(info.ok());
    EXPECT_EQ(info.value().type, type) << nodeClass << vendorId;
  }
}

TEST_F(PciTopologyTest, ValuesAreCutAt20Characters) {
  const std::string sbdf = gpu("pci0000:00/0000:01:00.0");
  file("/sys/devices/pci0000:00/0000:01:00.0/local_cpulist", "0-15,32-47,64-79,96-111,128-143\n");
  EXPECT_EQ(linux_::readPciNode(sbdf).value().cpuList, "0-15,32-47,64-79,96-");
}

TEST_F(PciTopologyTest, FunctionThatCannotBeReadIsAFailure) {
  const std::string good = gpu("pci0000:00/0000:01:00.0");
  const std::string bad = gpu("pci0000:00/0000:02:00.0");
  const std::string folder = "/sys/bus/pci/devices/" + bad + "/";
  expectLevel(good, bad, TopologyLevel::kSingleBridge);
  for (const char* const name : {"class", "vendor", "device", "local_cpulist", "numa_node"}) {
    file(folder + name, "");
    log_.lines.clear();
    EXPECT_EQ(stateOf(good, bad), KelpReturn::kFailure) << name;
    EXPECT_EQ(stateOf(bad, good), KelpReturn::kFailure) << name;
    EXPECT_TRUE(log_.has(LogLevel::kError, ">> read from  " + folder + name + "  failed "));
    remove(folder + name);
    EXPECT_EQ(stateOf(good, bad), KelpReturn::kFailure) << name;
    file(folder + name, "0x038000\n");
  }
  for (const char* const name : {"class", "vendor", "device"}) {
    file(folder + name, "display\n");
    EXPECT_EQ(stateOf(good, bad), KelpReturn::kFailure) << name;
    EXPECT_TRUE(log_.has(LogLevel::kError, ">> no number in  " + folder + name + " "));
    file(folder + name, "0x038000\n");
  }
  EXPECT_EQ(stateOf(good, "0000:03:00.0"), KelpReturn::kFailure) << "no such function";
}

TEST_F(PciTopologyTest, FunctionWithoutAPlaceInTheTreeIsAFailure) {
  const std::string good = gpu("pci0000:00/0000:01:00.0");
  const std::string folder = "/sys/bus/pci/devices/0000:02:00.0";
  for (const char* const name : {"class", "vendor", "device", "local_cpulist", "numa_node"}) {
    file(folder + "/" + name, "0x038000\n");
  }
  EXPECT_EQ(stateOf(good, "0000:02:00.0"), KelpReturn::kFailure) << "a folder and no link";
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> no path of  " + folder + " "));
  log_.lines.clear();
  remove(folder);
  link(folder, "/sys/bus/pci/elsewhere");
  for (const char* const name : {"class", "vendor"}) {
    file("/sys/bus/pci/elsewhere/" + std::string(name), "0x038000\n");
  }
  EXPECT_EQ(stateOf(good, "0000:02:00.0"), KelpReturn::kFailure) << "a link of two parts";
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> no path of  " + folder + " "));
}

TEST_F(PciTopologyTest, TextThatIsNoAddressIsAFailure) {
  const std::string good = gpu("pci0000:00/0000:01:00.0");
  for (const char* const text : {"", "01:00.0", "000:01:00.0", "000000000:01:00.0", "0000:01:00",
                                 "0000:01:00:0", "000g:01:00.0", "0000:01:00.0 ", "../pci0000:00"}) {
    EXPECT_EQ(stateOf(good, text), KelpReturn::kFailure) << text;
    EXPECT_EQ(stateOf(text, good), KelpReturn::kFailure) << text;
  }
}

TEST_F(PciTopologyTest, FunctionsThatAreNeitherGpuNorAdapterAreNotSupported) {
  const std::string good = gpu("pci0000:00/0000:01:00.0");
  const std::string other = bridge("pci0000:00/0000:00:01.0");
  EXPECT_EQ(stateOf(good, other), KelpReturn::kNotSupported);
  EXPECT_EQ(stateOf(other, good), KelpReturn::kNotSupported);
  EXPECT_EQ(stateOf(other, other), KelpReturn::kNotSupported) << "even where it is the same";
}

TEST_F(PciTopologyTest, LongAndShortDomainNameTheSameFunction) {
  const std::string sbdf = gpu("pci0000:00/0000:01:00.0");
  expectLevel(sbdf, sbdf, TopologyLevel::kSame);
  expectLevel("00000000:01:00.0", "0000:01:00.0", TopologyLevel::kSame);
  EXPECT_EQ(linux_::normaliseSbdf("0001a000:01:00.0").value(), "1a000:01:00.0");
  EXPECT_EQ(linux_::normaliseSbdf("00010:41:1f.7").value(), "0010:41:1f.7");
}

TEST_F(PciTopologyTest, TwoHalvesOfADualCardAreInternal) {
  const auto half = [this](const std::string& sbdf, const std::string& deviceId = "0x010f") {
    return node("pci0000:00/" + sbdf, "0x038000", "0", deviceId);
  };
  const std::string first = half("0000:01:00.0");
  expectLevel(first, half("0000:02:00.0"), TopologyLevel::kInternal);
  expectLevel(first, half("0000:03:00.0"), TopologyLevel::kSingleBridge);
  expectLevel("0000:02:00.0", half("0001:03:00.0"), TopologyLevel::kSingleBridge);
  expectLevel(first, half("0000:00:00.0", "0x010e"), TopologyLevel::kSingleBridge);
  const std::string adapter = node("pci0000:00/0000:04:00.0", "0x020000", "0", "0x010f", "0x15b3");
  expectLevel("0000:03:00.0", adapter, TopologyLevel::kSingleBridge);
}

TEST_F(PciTopologyTest, InternalPairOutweighsItsNumaNodes) {
  const std::string a = node("pci0000:00/0000:01:00.0", "0x038000", "0", "0x010f");
  const std::string b = node("pci0000:00/0000:02:00.0", "0x038000", "1", "0x010f");
  expectLevel(a, b, TopologyLevel::kInternal);
}

TEST_F(PciTopologyTest, GpusDirectlyUnderOneSwitchAreOneBridgeApart) {
  bridge("pci0000:00/0000:00:01.0");
  bridge("pci0000:00/0000:00:01.0/0000:01:00.0");
  const std::string a = gpu("pci0000:00/0000:00:01.0/0000:01:00.0/0000:02:00.0");
  const std::string b = gpu("pci0000:00/0000:00:01.0/0000:01:00.0/0000:03:00.0");
  expectLevel(a, b, TopologyLevel::kSingleBridge);
  bridge("pci0000:00/0000:00:01.0/0000:01:00.0/0000:04:00.0");
  const std::string deeper = gpu("pci0000:00/0000:00:01.0/0000:01:00.0/0000:04:00.0/0000:05:00.0");
  expectLevel(a, deeper, TopologyLevel::kMultipleBridges);
  // As deep as each other, but two levels below what they share.
  bridge("pci0000:00/0000:00:01.0/0000:01:00.0/0000:06:00.0");
  const std::string alike = gpu("pci0000:00/0000:00:01.0/0000:01:00.0/0000:06:00.0/0000:07:00.0");
  expectLevel(deeper, alike, TopologyLevel::kMultipleBridges);
}

TEST_F(PciTopologyTest, GpusBelowAHostBridgeAreApartByIt) {
  node("pci0000:00/0000:00:01.0", "0x060000", "0", "0x1234", "0x1111");
  bridge("pci0000:00/0000:00:01.0/0000:01:00.0");
  bridge("pci0000:00/0000:00:01.0/0000:02:00.0");
  const std::string a = gpu("pci0000:00/0000:00:01.0/0000:01:00.0/0000:03:00.0");
  const std::string b = gpu("pci0000:00/0000:00:01.0/0000:02:00.0/0000:04:00.0");
  expectLevel(a, b, TopologyLevel::kHostBridge);
}

TEST_F(PciTopologyTest, RootComplexCountsAsAHostBridgeAndIsNeverRead) {
  bridge("pci0000:00/0000:00:01.0");
  bridge("pci0000:00/0000:00:02.0");
  const std::string a = gpu("pci0000:00/0000:00:01.0/0000:01:00.0");
  const std::string b = gpu("pci0000:00/0000:00:02.0/0000:02:00.0");
  const std::string direct = gpu("pci0000:00/0000:00:03.0");
  const std::string beside = gpu("pci0000:00/0000:00:04.0");
  expectLevel(a, b, TopologyLevel::kHostBridge);
  expectLevel(a, direct, TopologyLevel::kHostBridge);
  expectLevel(direct, beside, TopologyLevel::kSingleBridge);
  EXPECT_FALSE(log_.has("Incorrect sbdf"));
}

TEST_F(PciTopologyTest, BridgeThatCannotBeReadIsAFailure) {
  bridge("pci0000:00/0000:00:01.0");
  const std::string a = gpu("pci0000:00/0000:00:01.0/0000:01:00.0");
  const std::string b = gpu("pci0000:00/0000:00:01.0/0000:02:00.0");
  expectLevel(a, b, TopologyLevel::kSingleBridge);
  remove("/sys/bus/pci/devices/0000:00:01.0");
  EXPECT_EQ(stateOf(a, b), KelpReturn::kFailure);
}

TEST_F(PciTopologyTest, RootComplexesOfOneNodeAreApartByTheNode) {
  const std::string a = gpu("pci0000:00/0000:00:01.0");
  const std::string b = gpu("pci0000:40/0000:40:01.0");
  expectLevel(a, b, TopologyLevel::kNode);
}

TEST_F(PciTopologyTest, NumaNodesThatDifferAreApartBySystemWhateverTheirPaths) {
  bridge("pci0000:00/0000:00:01.0");
  const std::string a = gpu("pci0000:00/0000:00:01.0/0000:01:00.0", "0");
  const std::string b = gpu("pci0000:00/0000:00:01.0/0000:02:00.0", "1");
  const std::string c = gpu("pci0000:40/0000:40:01.0", "1");
  expectLevel(a, b, TopologyLevel::kSystem);
  expectLevel(a, c, TopologyLevel::kSystem);
}

TEST_F(PciTopologyTest, HostWithoutNumaIsNeverApartBySystem) {
  const std::string a = gpu("pci0000:00/0000:00:01.0", "-1");
  const std::string b = gpu("pci0000:40/0000:40:01.0", "-1");
  expectLevel(a, b, TopologyLevel::kNode);
}

TEST_F(PciTopologyTest, GpuAndAdapterHaveALevel) {
  bridge("pci0000:00/0000:00:01.0");
  const std::string a = gpu("pci0000:00/0000:00:01.0/0000:01:00.0");
  const std::string adapter =
      node("pci0000:00/0000:00:01.0/0000:02:00.0", "0x020700", "0", "0x101b", "0x15b3");
  expectLevel(a, adapter, TopologyLevel::kSingleBridge);
}

// The InfiniBand adapters.

class PciNicTest : public tolk_test::HostTree {
 protected:
  void adapter(const std::string& sbdf, const std::string& name) const {
    const std::string place = "/sys/devices/pci0000:80/" + sbdf + "/infiniband/" + name;
    folder(place);
    link("/sys/class/infiniband/" + name, place);
  }
};

TEST_F(PciNicTest, HostWithoutAdaptersHasAnEmptyList) {
  const auto sbdfs = getPciNicDevicesSbdf();
  EXPECT_TRUE(sbdfs.ok());
  EXPECT_TRUE(sbdfs.value().empty());
  EXPECT_TRUE(log_.has(LogLevel::kInfo, ">> query mellanox  /sys/class/infiniband/  not exit "));
}

TEST_F(PciNicTest, AdaptersAreListedByTheirFunction) {
  adapter("0000:81:00.0", "mlx5_0");
  adapter("0000:81:00.1", "mlx5_1");
  adapter("0000:82:00.0", "hfi1_0");
  folder("/sys/class/infiniband/mlx5_2");
  auto sbdfs = getPciNicDevicesSbdf();
  ASSERT_TRUE(sbdfs.ok());
  auto list = sbdfs.take();
  std::ranges::sort(list);
  EXPECT_EQ(list, (std::vector<std::string>{"0000:81:00.0", "0000:81:00.1"}));
}

TEST_F(PciNicTest, AdapterThatLeadsNowhereFailsTheList) {
  link("/sys/class/infiniband/mlx5_0", "/sys/devices/nowhere");
  const auto sbdfs = getPciNicDevicesSbdf();
  EXPECT_EQ(sbdfs.state(), KelpReturn::kFailure);
  EXPECT_TRUE(sbdfs.value().empty());
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> realpath  /sys/class/infiniband/mlx5_0  failed "));
}

TEST_F(PciNicTest, FirstAdapterThatFailsEndsTheWalk) {
  link("/sys/class/infiniband/mlx5_0", "/sys/devices/nowhere");
  link("/sys/class/infiniband/mlx5_1", "/sys/devices/nowhere");
  EXPECT_EQ(getPciNicDevicesSbdf().state(), KelpReturn::kFailure);
  EXPECT_EQ(log_.count(">> realpath "), 1U);
}

TEST_F(PciNicTest, AdapterOutsideTheTreeFailsTheList) {
  link("/sys/class/infiniband/mlx5_0", "/sys");
  EXPECT_EQ(getPciNicDevicesSbdf().state(), KelpReturn::kFailure);
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> Mellanox nic card path error "));
}

/// While it lives, permissions hold for root as they do for everybody.
class WithoutPrivileges {
 public:
  WithoutPrivileges() {
    EXPECT_EQ(::syscall(SYS_capget, &header_, kept_), 0);
    __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3] = {kept_[0], kept_[1]};
    none[0].effective = 0;
    none[1].effective = 0;
    EXPECT_EQ(::syscall(SYS_capset, &header_, none), 0);
  }
  ~WithoutPrivileges() { ::syscall(SYS_capset, &header_, kept_); }

 private:
  __user_cap_header_struct header_{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
  __user_cap_data_struct kept_[_LINUX_CAPABILITY_U32S_3] = {};
};

TEST_F(PciNicTest, FolderThatCannotBeWalkedFailsTheList) {
  using std::filesystem::perms;
  adapter("0000:81:00.0", "mlx5_0");
  std::filesystem::permissions(behind("/sys/class/infiniband"), perms::none);
  {
    const WithoutPrivileges unprivileged;
    EXPECT_EQ(getPciNicDevicesSbdf().state(), KelpReturn::kFailure);
  }
  EXPECT_TRUE(log_.has(LogLevel::kError, ">> opendir  /sys/class/infiniband/  failed "));
  std::filesystem::permissions(behind("/sys/class/infiniband"), perms::owner_all);
}

}  // namespace
}  // namespace kelp
