#include "linux/ap/misc/mkis_protocol_v0/misc_kernel_accessor_v0.h"

#include "linux/ap/mki_list.h"

// The list of this protocol, and the slots that the board's controller serves.

namespace kelp::linux_ {

MKI_RECORD(MkiMkisList, 0xC1484DB1);

MkisStated<RemoteList> MiscKernelAccessorV0::mkisList(const MkisProbe& probe) {
  return fetchMkisList(probe.interfaceCount,
                       [this](MkiMkisList& page) { return access(page) == KelpReturn::kSuccess; });
}

#define MKI_OPERATION(area, name, ...)
#define SMC_OPERATION(name, ...)                                                           \
  VersionsOf<MiscMkisIntfName::k##name> MiscKernelAccessorV0::do##name() {                 \
    return {{0, [this](const auto&... params) { return this->do##name##V0(params...); }}}; \
  }
#include "linux/ap/misc/mkis_protocol_v0/mki_operations.def"

}  // namespace kelp::linux_
