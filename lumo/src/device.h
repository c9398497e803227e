#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <source_location>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "board_values.h"
#include "dev_cuid.h"
#include "dev_desc.h"
#include "feature_question.h"
#include "features.h"
#include "lumo_def.h"
#include "other_devices_closed.h"
#include "pcie_values.h"
#include "performance_monitor.h"
#include "resource.h"
#include "sablink_values.h"
#include "topology_values.h"

namespace kelp {
class DeviceObj;
}

namespace lumo {

class Gpu;
class Memory;
class Vpu;

/// One device, known by a key: its uuid, or its address when it has no uuid of its own.
///
/// Owned by the library, and an MPC instance or a vGPU by the device that carries it besides; callers
/// reach it through a handle that does not keep it alive. Operations may run on several threads: a mutex
/// guards the MPC instances that this one carries and another its vGPUs, all else is fixed when the device
/// is made. On a failure an operation stores the code and returns a default.
class Device : public Resource<std::string, Gpu, Memory, Vpu>, public std::enable_shared_from_this<Device> {
 public:
  /// Makes a device together with its GPU, memory and VPU. `mpcParent` is null but for an MPC instance.
  static std::shared_ptr<Device> create(std::string key, std::shared_ptr<kelp::DeviceObj> deviceObj,
                                        std::shared_ptr<kelp::DeviceManager> deviceManager,
                                        const std::shared_ptr<Device>& mpcParent);
  ~Device() override;

  kelp::DevType getType() const { return getCuid().type; }
  const kelp::DevCuid& getCuid() const;
  const kelp::DevDesc& getDesc() const;
  const kelp::Features& getFeatures() const;
  /// Identities of an MPC parent's instances.
  kelp::Stated<std::vector<kelp::DevCuid>> listMpcInstCuids() const;
  /// The model name for a part of the device, empty when there is none.
  std::string readName() const;
  /// Closes the nodes of every other device until the result goes.
  OtherDevicesClosed closeOtherDevices() const { return {deviceManager_, getCuid()}; }

  virtual std::string getName(LumoReturn* status) const;
  virtual unsigned int getBrand(LumoReturn* status) const;
  virtual unsigned int getFanCount(LumoReturn* status) const;
  /// Percent.
  virtual unsigned int getFanSpeed(unsigned int index, LumoReturn* status) const;
  virtual unsigned int getFanRpm(unsigned int index, LumoReturn* status) const;
  virtual LumoPciSlotInfo getPcieSlotInfo(LumoReturn* status) const;
  /// Milliwatts.
  virtual unsigned int getPowerUsage(LumoReturn* status) const;
  virtual std::string getOvBiosVersion(LumoReturn* status) const;
  virtual std::string getRtosVersion(LumoReturn* status) const;
  virtual std::string getMiscPath(LumoReturn* status) const;
  virtual std::string getCardPath(LumoReturn* status) const;
  virtual std::string getRenderPath(LumoReturn* status) const;
  virtual std::string getIonPath(LumoReturn* status) const;
  virtual LumoPciInfo getPciInfo(LumoReturn* status) const;
  /// PCI addresses of the host's network adapters.
  virtual std::vector<std::string> getNicDevices(LumoReturn* status) const;
  virtual kelp::TopologyLevel getTopologyLevel(const Device& other, LumoReturn* status) const;
  /// `peer` is the internal id of another device.
  virtual kelp::P2pCapStatus getP2pStatus(std::uint64_t peer, unsigned int capability,
                                          LumoReturn* status) const;
  /// Shader units of each GPU core.
  virtual std::vector<unsigned int> getCoreUnits(LumoReturn* status) const;
  virtual unsigned int getPerformanceState(LumoReturn* status) const;
  virtual void setPerformanceState(unsigned int state, LumoReturn* status) const;
  virtual std::uint64_t getIntId(LumoReturn* status) const;
  virtual unsigned int getDisplayInterfaceCount(LumoReturn* status) const;
  virtual LumoDispIntfSpec getDisplayInterfaceSpec(unsigned int index, LumoReturn* status) const;
  virtual std::string getSerialNumber(LumoReturn* status) const;
  virtual unsigned long getPcieReplayCounter(LumoReturn* status) const;
  virtual unsigned int getCoreCount(LumoReturn* status) const;

  // vGPUs. A type is named by its id, a vGPU by its uuid.
  virtual unsigned int countSupportedVirtualTypes(LumoReturn* status) const;
  virtual unsigned int countAvailableVirtualTypes(LumoReturn* status) const;
  virtual unsigned int countActiveVirtualDevices(LumoReturn* status) const;
  virtual unsigned int countMaxVirtualDevices(const std::string& typeId, LumoReturn* status) const;
  virtual unsigned int countAvailableVirtualDevices(const std::string& typeId, LumoReturn* status) const;
  virtual std::vector<LumoVirtType> getSupportedVirtualTypes(LumoReturn* status) const;
  virtual std::vector<LumoVirtType> getAvailableVirtualTypes(LumoReturn* status) const;
  virtual std::vector<std::string> getActiveVirtualDeviceUuids(LumoReturn* status) const;
  virtual LumoVirtType getVirtType(LumoReturn* status) const;
  /// One of the vGPUs that this GPU carries, made on first use.
  virtual std::shared_ptr<Device> initializeVirtualDevice(const std::string& uuid, LumoReturn* status);
  virtual unsigned int getVgpuId(LumoReturn* status) const;
  virtual unsigned int getVmPid(LumoReturn* status) const;
  virtual LumoVgpuOverCommitInfo getVgpuOverCommitInfo(LumoReturn* status) const;

  // Processes, in ascending order of pid.
  virtual std::vector<LumoProcessMemUsage> getProcessLevelMemoryInfo(LumoReturn* status) const;
  virtual std::vector<LumoProcessGpuUtilization> getProcessGpuUtilizations(LumoReturn* status) const;

  virtual unsigned int getMpcMode(LumoReturn* status) const;
  /// Both close the other devices while they work.
  virtual void setMpcMode(unsigned int mode, LumoReturn* status) const;
  virtual void setMpcConfiguration(unsigned int id, LumoReturn* status) const;
  virtual unsigned int getMpcInstanceIndex(LumoReturn* status) const;
  virtual LumoMpcProfile getMpcInstanceProfileInfo(LumoReturn* status) const;
  virtual LumoMpcConfiguration getMpcConfiguration(unsigned int id, LumoReturn* status) const;
  virtual LumoMpcConfiguration getMpcConfigurationByName(const std::string& name, LumoReturn* status) const;
  virtual std::vector<LumoMpcProfile> getSupportedMpcProfiles(LumoReturn* status) const;
  virtual std::vector<LumoMpcConfiguration> getSupportedMpcConfigurations(LumoReturn* status) const;

  // Sablink. A link past the last is an invalid argument; `peer` is the internal id of another device.
  virtual LumoSablinkSpec getSablinkSpec(LumoReturn* status) const;
  virtual kelp::SablinkState getSablinkState(unsigned int link, LumoReturn* status) const;
  /// No capability, and no failure, for a link that is not up.
  virtual kelp::SablinkCapStatus getSablinkCapStatus(unsigned int link, unsigned int capability,
                                                     LumoReturn* status) const;
  virtual void resetSablinkErrorCounter(unsigned int link, LumoReturn* status) const;
  virtual unsigned long getSablinkErrorCounter(unsigned int link, unsigned int kind,
                                               LumoReturn* status) const;
  /// Internal id of the device at the other end.
  virtual unsigned int getSablinkRemoteDevice(unsigned int link, LumoReturn* status) const;
  virtual unsigned int getSablinkRemoteLink(unsigned int link, LumoReturn* status) const;
  virtual std::vector<LumoSablinkLayout> getSablinkLayouts(unsigned int peer, LumoReturn* status) const;
  virtual std::vector<kelp::SablinkPath> getSablinkShortestPaths(unsigned int peer, LumoReturn* status) const;
  virtual kelp::SablinkPerfStart startSablinkPerf(unsigned int link, LumoReturn* status) const;
  virtual kelp::SablinkPerfData getSablinkPerfData(unsigned int link, unsigned int session,
                                                   LumoReturn* status) const;
  virtual unsigned int stopSablinkPerf(unsigned int link, unsigned int session, LumoReturn* status) const;
  virtual LumoSablinkSerdesStatus getSablinkSerdesStatus(unsigned int link, LumoReturn* status) const;

  virtual kelp::DevType getDeviceType(LumoReturn* status) const;
  /// The LUMO_PROPERTY bits.
  virtual unsigned long long getProperty(LumoReturn* status) const;
  virtual std::shared_ptr<Device> getMpcParent(LumoReturn* status) const;
  virtual LumoReturn addMpcChild(const std::shared_ptr<Device>& child);
  /// In ascending order of internal id.
  virtual std::vector<std::shared_ptr<Device>> getMpcChildren(LumoReturn* status) const;
  /// Major and minor number.
  virtual std::pair<unsigned int, unsigned int> getComputeCapability(LumoReturn* status) const;
  /// The number of the measurement.
  virtual unsigned int startPciePerf(unsigned int intervalMs, LumoReturn* status) const;
  virtual LumoPcieBandWidth getPcieBandWidthData(unsigned int session, LumoReturn* status) const;
  virtual void stopPciePerf(unsigned int session, LumoReturn* status) const;
  virtual kelp::PcieBar2MemInfo getPcieBar2MemoryInfo(LumoReturn* status) const;
  virtual std::string getMemoryAffinityWithinNode(LumoReturn* status) const;
  virtual std::string getCpuAffinityListWithinNode(LumoReturn* status) const;
  virtual std::string getCpuAffinityBitmaskWithinNode(LumoReturn* status) const;

  virtual void startPfm(unsigned int mode, LumoReturn* status);
  virtual void stopPfm(LumoReturn* status);
  virtual void getPfmSample(LumoPfmSample* sample, LumoReturn* status);
  virtual void getPfmMetrics(LumoPfmMetric* metric, const LumoPfmSample& first, const LumoPfmSample& second,
                             LumoReturn* status);
  /// False comes with the code for what is not supported.
  virtual bool isPfmSupported(LumoReturn* status) const;

  virtual void resetEventMessages(LumoReturn* status) const;
  /// Closes the other devices while it works.
  virtual void reset(LumoReturn* status) const;
  // Milliwatts.
  virtual unsigned int getDefaultPowerLimit(LumoReturn* status) const;
  virtual unsigned int getEnforcedPowerLimit(LumoReturn* status) const;
  virtual unsigned int getRequestedPowerLimit(LumoReturn* status) const;
  virtual void setPowerLimit(const kelp::SetPowerLimitParam& param, LumoReturn* status) const;
  /// Minimum and maximum.
  virtual std::pair<unsigned int, unsigned int> getPowerLimitConstraints(LumoReturn* status) const;

  /// Empty for a device without one.
  std::string getUuid(LumoReturn* status) const;
  unsigned long getUsableCores(LumoReturn* status) const;
  /// Mask of LUMO_EVENT_....
  unsigned long long getSupportedEventTypes(LumoReturn* status) const;
  /// Position in the library's order, all ones until it has one.
  unsigned int getIndex(LumoReturn* status) const;
  void setIndex(unsigned int index) { index_ = index; }

 protected:
  Device(std::string key, std::shared_ptr<kelp::DeviceObj> deviceObj,
         std::shared_ptr<kelp::DeviceManager> deviceManager, const std::shared_ptr<Device>& mpcParent);

  std::unique_ptr<PerformanceMonitor> perfMonitor_;

 private:
  template <class Feature, class Question>
  Answer<Question, Feature> ask(std::shared_ptr<Feature> kelp::Features::*place, LumoReturn* status,
                                const Question& question,
                                std::source_location operation = std::source_location::current()) const {
    return askFeature((getFeatures().*place).get(), status, question, operation);
  }
  /// Stores the code of what no mediated device has, if this is one.
  bool refuseMediated(LumoReturn* status) const;
  bool checkFan(unsigned int index, LumoReturn* status) const;
  bool checkSablink(unsigned int link, LumoReturn* status, std::source_location operation) const;
  bool checkSablinkUp(unsigned int link, LumoReturn* status, std::source_location operation) const;
  unsigned int getPowerLimit(kelp::PowerLimitType type, LumoReturn* status) const;
  PerformanceMonitor* enterPfm(LumoReturn* status) const;
  /// Whoever wants all vGPUs asks for one after the other, so the GPU's vGPUs are listed once and each is
  /// made once: those that a search has passed wait for the next. A uuid that was not listed then is looked
  /// for in a list of its own. The caller holds the mutex.
  std::shared_ptr<kelp::DeviceObj> findVirtualDevice(const std::string& uuid, LumoReturn* status);

  std::shared_ptr<kelp::DeviceObj> deviceObj_;
  std::shared_ptr<kelp::DeviceManager> deviceManager_;
  mutable std::mutex mutex_;
  std::weak_ptr<Device> mpcParent_;
  std::unordered_map<std::string, std::shared_ptr<Device>> mpcChildren_;
  std::mutex virtMutex_;  ///< taken for as long as a vGPU is looked for
  std::unordered_map<std::string, std::shared_ptr<Device>> virtDevices_;
  std::vector<kelp::DevCuid> listedVirtuals_;  ///< no search has come to them yet
  std::unordered_map<std::string, std::shared_ptr<kelp::DeviceObj>> passedVirtuals_;
  unsigned int index_ = ~0U;
};

}  // namespace lumo
