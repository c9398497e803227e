#pragma once

namespace kelp {

/// Whether the machine is of the kind on which devices go by a name of their own: whether its
/// parameter file has a line that is exactly "envType: 0". A missing file has no line. The file is
/// read afresh by each call.
bool readIsTargetEnvironment(const char* path = "/etc/ovparams");

}  // namespace kelp
