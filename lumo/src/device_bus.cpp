#include "device.h"
#include "device_object.h"
#include "objects/affinity_feat_obj.h"
#include "objects/pcie_feat_obj.h"
#include "objects/topology_feat_obj.h"
#include "pci_sbdf.h"
#include "pci_text.h"
#include "record_text.h"

// A device on its bus, and what is near to it.

namespace lumo {

using kelp::AffinityFeatObj;
using kelp::Features;
using kelp::PcieFeatObj;
using kelp::TopologyFeatObj;

namespace {

/// A link of no lanes is one whose width is not known.
kelp::Stated<unsigned int> knownWidth(const kelp::Stated<unsigned int>& width) {
  return width.ok() && width.value() == 0 ? kelp::KelpReturn::kNotSupported : width;
}

unsigned int orNotAvailable(const kelp::Stated<unsigned int>& number) {
  return number.ok() ? number.value() : LUMO_NOT_AVAILABLE;
}

}  // namespace

LumoPciSlotInfo Device::getPcieSlotInfo(LumoReturn* status) const {
  const kelp::PcieSlotInfo slot = ask(&Features::pcie, status, &PcieFeatObj::querySlotInfo);
  LumoPciSlotInfo record{};
  record.number = slot.number;
  setText(record.name, slot.name);
  return record;
}

LumoPciInfo Device::getPciInfo(LumoReturn* status) const {
  kelp::PcieInfo pcie = consumeMv(deviceObj_->queryPcieInfo(), status);
  LumoPciInfo info{};
  unsigned int subsystemDevice = 0;
  unsigned int subsystemVendor = 0;
  const auto read = [status](auto& field, auto value,
                             std::source_location where = std::source_location::current()) {
    if (*status == LUMO_RETURN_SUCCESS) {
      field = consumeMv(std::move(value), status, where);
    }
  };
  read(info.vendorId, pcie.vendorId);
  read(info.deviceId, pcie.deviceId);
  read(subsystemVendor, pcie.subsystemVendorId);
  read(subsystemDevice, pcie.subsystemDeviceId);
  read(info.maxSpeed, pcie.maxLinkSpeed);
  read(info.curSpeed, pcie.curLinkSpeed);
  read(info.maxWidth, knownWidth(pcie.maxLinkWidth));
  read(info.curWidth, knownWidth(pcie.curLinkWidth));
  read(info.maxGen, pcie.maxLinkGen);
  read(info.curGen, pcie.curLinkGen);
  if (*status != LUMO_RETURN_SUCCESS) {
    return {};
  }
  info.subsystemId = subsystemDevice << 16 | subsystemVendor;
  setText(info.sbdf, formatOutputPciStr(getDesc().sbdf));
  info.domain = kelp::sbdfDomain(getCuid().sbdf);
  info.bus = kelp::sbdfBus(getCuid().sbdf);
  info.device = kelp::sbdfDevice(getCuid().sbdf);
  return info;
}

// Two questions to the machine's own tables, which a device without the feature can be asked as well.

std::vector<std::string> Device::getNicDevices(LumoReturn* status) const {
  const auto& feature = getFeatures().topology;
  return consumeMv(feature != nullptr ? feature->queryNicDevices() : kelp::DeviceManager::queryNicDevices(),
                   status);
}

kelp::TopologyLevel Device::getTopologyLevel(const Device& other, LumoReturn* status) const {
  const auto& feature = getFeatures().topology;
  return consumeMv(feature != nullptr
                       ? feature->queryLevel(other.getCuid())
                       : kelp::DeviceManager::queryTopologyLevel(kelp::sbdfText(getCuid().sbdf),
                                                                 kelp::sbdfText(other.getCuid().sbdf)),
                   status);
}

kelp::P2pCapStatus Device::getP2pStatus(std::uint64_t peer, unsigned int capability,
                                        LumoReturn* status) const {
  return ask(&Features::topology, status, [=](const TopologyFeatObj& feature) {
    return feature.queryP2pStatus({.peer = static_cast<unsigned int>(peer), .capability = capability});
  });
}

unsigned long Device::getPcieReplayCounter(LumoReturn* status) const {
  return ask(&Features::pcie, status, &PcieFeatObj::queryReplayCounter);
}

unsigned int Device::startPciePerf(unsigned int intervalMs, LumoReturn* status) const {
  return ask(&Features::pcie, status,
             [intervalMs](const PcieFeatObj& feature) { return feature.startPerf(intervalMs); });
}

LumoPcieBandWidth Device::getPcieBandWidthData(unsigned int session, LumoReturn* status) const {
  const kelp::PcieBandWidthData data = ask(&Features::pcie, status, [session](const PcieFeatObj& feature) {
    return feature.queryBandWidth(session);
  });
  return {.rxBytes = data.rxBytes,
          .txBytes = data.txBytes,
          .rxRate = data.rxRate,
          .txRate = data.txRate,
          .state = data.state,
          .rxMin = orNotAvailable(data.rxMin),
          .rxMean = orNotAvailable(data.rxMean),
          .rxMax = orNotAvailable(data.rxMax),
          .txMin = orNotAvailable(data.txMin),
          .txMean = orNotAvailable(data.txMean),
          .txMax = orNotAvailable(data.txMax),
          .samples = orNotAvailable(data.samples)};
}

void Device::stopPciePerf(unsigned int session, LumoReturn* status) const {
  ask(&Features::pcie, status, [session](const PcieFeatObj& feature) { return feature.stopPerf(session); });
}

kelp::PcieBar2MemInfo Device::getPcieBar2MemoryInfo(LumoReturn* status) const {
  return ask(&Features::pcie, status, &PcieFeatObj::queryBar2Memory);
}

std::string Device::getMemoryAffinityWithinNode(LumoReturn* status) const {
  return ask(&Features::affinity, status, &AffinityFeatObj::readMemoryAffinity);
}

std::string Device::getCpuAffinityListWithinNode(LumoReturn* status) const {
  return ask(&Features::affinity, status, &AffinityFeatObj::readCpuList);
}

std::string Device::getCpuAffinityBitmaskWithinNode(LumoReturn* status) const {
  return ask(&Features::affinity, status, &AffinityFeatObj::readCpuBitmask);
}

}  // namespace lumo
