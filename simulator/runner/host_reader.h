// Turns a host description into a Host, and refuses what makes no sense.
#ifndef HOST_READER_H
#define HOST_READER_H

#include "host.h"
#include "host_document.h"

/// Throws HostError with file, key path, what was expected and what was found.
Host readHost(const HostDocument& document);

#endif
