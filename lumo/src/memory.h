#pragma once

#include <string>
#include <vector>

#include "component.h"
#include "device.h"
#include "ecc_values.h"
#include "memory_values.h"
#include "virtual_values.h"

namespace lumo {

/// The memory of a device. Sizes are in bytes.
class Memory : public Component<unsigned int, Device> {
 public:
  using Component::Component;

  virtual unsigned long getTotal(LumoReturn* status) const;
  /// As the guest of a vGPU sees it.
  virtual unsigned long getGuestTotal(LumoReturn* status) const;
  virtual unsigned long getUsed(LumoReturn* status) const;
  virtual unsigned long getSystemTotal(LumoReturn* status) const;
  virtual unsigned long getGuestUsed(LumoReturn* status) const;
  /// Megahertz.
  virtual unsigned int getClock(LumoReturn* status) const;
  /// Megahertz.
  virtual unsigned int getMaxClock(LumoReturn* status) const;
  /// Bits.
  virtual unsigned int getBusWidth(LumoReturn* status) const;
  /// GB/s.
  virtual unsigned int getBandwidth(LumoReturn* status) const;
  /// MT/s.
  virtual unsigned int getSpeed(LumoReturn* status) const;
  virtual std::string getVendor(LumoReturn* status) const;
  virtual unsigned int getMemoryType(LumoReturn* status) const;
  virtual unsigned long getGuestReserved(LumoReturn* status) const;
  virtual kelp::MemoryEdc getMemEdcCounter(LumoReturn* status) const;
  /// Closes the other devices while it works.
  virtual void setEccMode(kelp::EccMode mode, LumoReturn* status) const;
  virtual kelp::EccModeInfo getEccMode(LumoReturn* status) const;
  virtual kelp::EccPageRetirementCount getEccRetiredPagesCount(LumoReturn* status) const;
  /// The retired pages of one cause; a longer list than `capacity` is a failure.
  virtual std::vector<LumoRetiredPage> getEccRetiredPagesInfo(unsigned int cause, unsigned int capacity,
                                                              LumoReturn* status) const;
  /// Whether pages wait for the next reset.
  virtual bool getEccRetiredPagesPendingStatus(LumoReturn* status) const;
  virtual unsigned long long getEccErrors(const kelp::QueryEccErrorsParam& which, LumoReturn* status) const;
  virtual void clearEccErrors(kelp::EccCounterType type, LumoReturn* status) const;

  /// Percent.
  unsigned int getUtilization(LumoReturn* status) const;
  unsigned int getGuestUtilization(LumoReturn* status) const;

 private:
  kelp::GuestMemoryUsage queryGuestMemory(LumoReturn* status, std::source_location operation) const;
};

}  // namespace lumo
