// What the driver of a host was asked for and did not offer, as the host's image has it written down.
#ifndef UNEXPECTED_CALLS_H
#define UNEXPECTED_CALLS_H

#include <string>

/// A line for each call that is not the same as another: how often, and then as a trace has it without the
/// result. Empty when there was none.
std::string unexpectedCalls(const std::string& image);

#endif
