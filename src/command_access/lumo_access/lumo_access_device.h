#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "command_access/lumo_access/device_records.h"
#include "command_access/lumo_access/device_type.h"
#include "lumo.h"

namespace tolk {

/// The one class through which commands reach a device. It lives no longer than the factory it came
/// from; past that, the library's handles are dead and every method fails.
///
/// Each method makes timed calls and returns the status of the one that failed, which has been logged
/// then; its output is left as it was. Nothing throws. An empty list is a success.
///
/// Any thread may call: nothing is kept here but the handles, whose setter alone must run by itself.
class LumoAccessDevice {
 public:
  explicit LumoAccessDevice(const LumoModuleSet& modules) : modules_(modules) {}
  virtual ~LumoAccessDevice() = default;
  LumoAccessDevice(const LumoAccessDevice&) = delete;
  LumoAccessDevice& operator=(const LumoAccessDevice&) = delete;

  // The order of the virtual methods is fixed.

  virtual LumoReturn devGetIndex(std::uint32_t& index) const;
  virtual LumoReturn devGetUUID(std::string& uuid) const;
  virtual LumoReturn deviceGetSerialNumber(std::string& serial) const;
  virtual LumoReturn deviceGetPcieSlotInfo(LumoPciSlotInfo& slot) const;

  /// LUMO_BRAND_....
  virtual LumoReturn devGetBranddType(std::uint32_t& brand) const;  // sic

  /// Model name, followed by the profile's name for an MPC instance.
  virtual LumoReturn devGetName(std::string& name) const;

  /// As the library's record, with eight digits of domain in the address text.
  virtual LumoReturn devGetPciInfo(LumoPciInfo& info) const;

  virtual LumoReturn devGetFanNum(std::uint32_t& count) const;

  /// Percent.
  virtual LumoReturn devGetFanSpeed(std::uint32_t fan, std::uint32_t& percent) const;

  virtual LumoReturn devGetOvBiosVersion(std::string& version) const;
  virtual LumoReturn devGetMpcCapability(bool& capable) const;
  virtual LumoReturn devGetDeviceType(DeviceType& type) const;
  virtual LumoReturn deviceCountDispIntf(std::uint32_t& count) const;
  virtual LumoReturn deviceGetDispIntfSpec(std::uint32_t interface, LumoDispIntfSpec& spec) const;
  virtual LumoReturn deviceReset();

  /// 0 (fastest) to 15.
  virtual LumoReturn deviceGetPerfState(std::uint32_t& state) const;

  /// Percent.
  virtual LumoReturn gpuGetUtilization(std::uint32_t& utilization) const;

  /// Degrees Celsius.
  virtual LumoReturn gpuGetTemperature(std::int32_t& temperature) const;

  /// Megahertz, here as in the memory and the VPU.
  virtual LumoReturn gpuGetClock(std::uint32_t& megahertz) const;
  virtual LumoReturn gpuGetMaxClock(std::uint32_t& megahertz) const;

  virtual LumoReturn gpuReset();
  virtual LumoReturn gpuHwrCountsReset();

  /// How often and for how long the GPU was slowed down by heat.
  virtual LumoReturn gpuGetThermalSlowdownStatistics(std::uint32_t& count, std::uint32_t& totalTimeMs) const;

  /// Percent.
  virtual LumoReturn vpuGetUtilization(LumoVpuUtilization& utilization) const;

  virtual LumoReturn vpuGetClock(std::uint32_t& megahertz) const;
  virtual LumoReturn vpuGetMaxClock(std::uint32_t& megahertz) const;

  /// Sessions that can run at the same time.
  virtual LumoReturn vpuGetCodecCapacity(std::uint32_t& encode, std::uint32_t& decode) const;

  /// States of the session slots that exist, idle ones too.
  virtual LumoReturn vpuGetEncoderSessionStates(SessionStates& states) const;
  virtual LumoReturn vpuGetEncoderSessionMetrics(std::uint32_t session, LumoVpuSessionMetrics& metrics) const;
  virtual LumoReturn vpuGetDecoderSessionStates(SessionStates& states) const;
  virtual LumoReturn vpuGetDecoderSessionMetrics(std::uint32_t session, LumoVpuSessionMetrics& metrics) const;

  /// Bytes.
  virtual LumoReturn memoryGetTotal(unsigned long long& totalBytes) const;
  virtual LumoReturn memoryGetUsed(unsigned long long& usedBytes) const;

  /// Percent.
  virtual LumoReturn memoryGetUtilization(std::uint32_t& utilization) const;

  virtual LumoReturn memoryGetClock(std::uint32_t& megahertz) const;
  virtual LumoReturn memoryGetMaxClock(std::uint32_t& megahertz) const;

  /// GB/s.
  virtual LumoReturn memoryGetBandwidth(std::uint32_t& bandwidth) const;

  /// Millions of transfers per second.
  virtual LumoReturn memoryGetSpeed(std::uint32_t& speed) const;

  /// 0 LPDDR4, 1 GDDR6.
  virtual LumoReturn memoryGetType(std::uint32_t& type) const;

  virtual LumoReturn memoryGetBusWidth(std::uint32_t& bits) const;
  virtual LumoReturn memoryGetVendor(std::string& vendor) const;

  /// Inline ECC now and after the next reset, 0 off and 1 on.
  virtual LumoReturn memoryGetEccMode(std::uint32_t& current, std::uint32_t& pending) const;

  virtual LumoReturn memoryGetEccErrorCounter(EccErrorCounts& counts) const;
  virtual LumoReturn memoryEnableEccMode();
  virtual LumoReturn memoryDisableEccMode();

  /// Whether pages wait for the next reset to be retired.
  virtual LumoReturn memoryGetRetiredPagesPendingStatus(bool& pending) const;

  virtual LumoReturn memoryCountRetiredPages(std::uint32_t& singleBit, std::uint32_t& doubleBit) const;

  /// Pages retired for a single-bit error, then those for a double-bit error.
  virtual LumoReturn memoryGetRetiredPages(std::vector<LumoRetiredPage>& pages) const;

  /// What a status of a method means, for people; a code without a text of its own reads as 999.
  static const char* getReturnText(LumoReturn code);

  void setLumoModuleSet(const LumoModuleSet& modules) { modules_ = modules; }
  const LumoModuleSet& getLumoModuleSet() const { return modules_; }

  /// "OV" and the number of direct links to `peer`; empty when there is none.
  LumoReturn getDeviceSablinkLayout(const LumoAccessDevice& peer, std::string& text) const;

  LumoReturn getSablinkSpec(LumoSablinkSpec& spec) const;

  /// The LUMO_EVENT_... that the device reports.
  LumoReturn getSupportedEventTypes(std::vector<unsigned long long>& types) const;

  /// Watts.
  LumoReturn getPowerUsage(double& watts) const;
  LumoReturn getCurrentPowerLimit(double& watts) const;
  LumoReturn getRequestedPowerLimit(double& watts) const;
  LumoReturn getDefaultPowerLimit(double& watts) const;

  LumoReturn enableMpcMode();
  LumoReturn disableMpcMode();
  LumoReturn setMpcConfiguration(std::uint32_t id);
  LumoReturn resetSablinkErrCounters(std::uint32_t link);

  /// The most vGPUs of a type that the GPU carries.
  LumoReturn vGpuGetMaxInstance(const std::string& typeId, std::uint32_t& count) const;

  LumoReturn getSupportedMpcConfiguretions(std::vector<LumoMpcConfiguration>& configurations) const;  // sic
  LumoReturn getSupportedMpcProfiles(std::vector<LumoMpcProfile>& profiles) const;

  /// @param persistent whether the limit outlives a boot
  LumoReturn setPowerLimit(double watts, bool persistent);

  /// LUMO_SABLINK_....
  LumoReturn getSablinkState(std::uint32_t link, std::uint32_t& state) const;

  /// NUMA node and CPUs near to the device. The one output that is written in a failure too: each text
  /// that can be had is.
  LumoReturn getAffinityString(std::string& memory, std::string& cpus) const;

  /// How far away `peer` is: "INT", "SPS", "MPB", "HPB", "NODE" or "SYS"; 999 for the device itself.
  LumoReturn getTopologyLevel(const LumoAccessDevice& peer, std::string& text) const;

  /// Watts.
  LumoReturn getPowerLimitConstraints(double& minimum, double& maximum) const;

  /// @param capability 0 access to the other's memory, 1 atomic access
  LumoReturn getSablinkCapStatus(std::uint32_t link, std::uint32_t capability, std::uint32_t& status) const;

  /// @param counter 0 replay, 1 recovery, 2 framing, 3 FEC correction
  LumoReturn getSablinkErrCounter(std::uint32_t link, std::uint32_t counter, unsigned long long& count) const;

  /// PCI addresses of the host's network adapters, as sysfs spells them.
  LumoReturn getNicDeviceSbdf(std::vector<std::string>& sbdfs) const;

  /// How far away any two devices or adapters are from each other, by their PCI addresses: "INT", "SPB",
  /// "MPB", "HPB", "NODE" or "SYS".
  LumoReturn getTopologyLevel(const std::string& sbdf, const std::string& otherSbdf, std::string& text) const;

  /// Processes that hold memory of the device, in ascending order of pid.
  LumoReturn getProcessMemoryInfo(std::vector<LumoProcessMemUsage>& processes) const;

  /// Processes that use the device, in ascending order of pid.
  LumoReturn getProcessGpuUtilization(std::vector<LumoProcessGpuUtilization>& processes) const;

  /// Whether the device reaches the memory of `peer`: "OK", "CNS" (chipset), "GNS" (GPU) or "U".
  /// @param mode 0 to read, 1 to write
  LumoReturn getP2pStatus(const LumoAccessDevice& peer, std::uint32_t mode, std::string& text) const;

  /// All shortest paths to `peer`.
  LumoReturn getSablinkLayout(const LumoAccessDevice& peer, std::vector<SablinkPath>& paths) const;

  /// The vGPUs that exist on the GPU.
  LumoReturn vGpuGetActiveVirtDevice(std::vector<ActiveVirtDevice>& devices) const;

  /// Instances of an MPC parent, in the library's order.
  LumoReturn getMpcInstances(std::vector<MpcInstance>& instances) const;

  /// Index of an MPC instance's parent.
  LumoReturn getParentDeviceIndex(std::uint32_t& index) const;

  /// Index of the device at the other end of a link.
  LumoReturn getSablinkRemoteDevice(std::uint32_t link, std::uint32_t& index) const;

  /// Types of vGPU that the GPU offers.
  LumoReturn vGpuGetSupportedType(std::vector<LumoVirtType>& types) const;

  /// The newest stored events of one type, newest first and at most `count`.
  LumoReturn getEventInfo(unsigned long long type, std::uint32_t count,
                          std::vector<LumoEventData>& events) const;

  /// The same of a GPU that may have been removed since.
  static LumoReturn getTargetUuidEventInfo(const std::string& uuid, unsigned long long type,
                                           std::uint32_t count, std::vector<LumoEventData>& events);

  /// The other devices at one LUMO_TOPOLOGY_... from this one. They have the handle of the device and
  /// none of its parts.
  LumoReturn getNearestGpus(std::uint32_t level,
                            std::vector<std::shared_ptr<LumoAccessDevice>>& devices) const;

 private:
  LumoModuleSet modules_;
};

}  // namespace tolk
