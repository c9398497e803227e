#pragma once

#include "linux/ap/misc/misc_kernel_accessor_base.h"
#include "linux/ap/misc/mkis_protocol_v1/mci_record.h"

namespace kelp::linux_ {

/// Protocol 1: one request for everything, a common header, and a body that names an interface and a
/// version. A version of a slot is one record, which is filled, sent, and read into a value;
/// mci_operations.def says which records a slot has.
class MiscKernelAccessorV1 : public MiscKernelAccessorBase {
 public:
  MiscKernelAccessorV1(NodeFile node, u16 major, u16 minor)
      : MiscKernelAccessorBase(std::move(node)), major_(major), minor_(minor) {}

  MkisStated<RemoteList> mkisList(const MkisProbe& probe) override;

#define MISC_INTERFACE(number, name, ...) VersionMap<Operation<__VA_ARGS__>> do##name() override;
#include "common/mkis/misc_interfaces.def"
#undef MISC_INTERFACE

  /// The header of a record that was not sent yet.
  MciHeader newHeader(MciPduType type, std::size_t bodySize) const;
  /// Sends a record that starts with a header and maps the driver's status.
  KelpReturn access(const char* recordName, MciHeader& header) const;

 private:
  MkisStated<u16> scanPdu() const;

  u16 major_;
  u16 minor_;
};

}  // namespace kelp::linux_
