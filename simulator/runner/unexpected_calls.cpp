#include "unexpected_calls.h"

#include <cstring>
#include <iomanip>
#include <sstream>

#include "sim_model.h"

namespace {

template <class Row>
Row rowOf(const std::string& image, size_t offset, size_t index) {
  Row row{};
  const size_t at = offset + sizeof row * index;
  if (at + sizeof row <= image.size()) std::memcpy(&row, image.data() + at, sizeof row);
  return row;
}

void putHex(std::ostream& out, int width, uint32_t number) {
  out << "0x" << std::hex << std::setfill('0') << std::setw(width) << number << std::dec;
}

void putCall(std::ostream& out, const SimNode& node, const SimUnexpected& call) {
  char name[SIM_NODE_NAME];
  simNodeName(&node, name);
  out << call.hits << ' ' << name << ' ' << simKindName(call.kind) << ' ';
  if (call.hasInterface) {
    out << call.interfaceName << ' ';
  } else {
    putHex(out, 8, call.request);
    out << ' ';
  }
  if (call.kind == SIM_CALL_SMC) {
    putHex(out, 2, call.command);
  } else if (call.hasInterface) {
    out << call.version;
  } else {
    out << '-';
  }
  out << '\n';
}

}  // namespace

std::string unexpectedCalls(const std::string& image) {
  const auto head = rowOf<SimImage>(image, 0, 0);
  std::ostringstream out;
  for (uint32_t i = 0; i < head.unexpectedCalls.count; ++i) {
    const auto call = rowOf<SimUnexpected>(image, head.unexpectedCalls.offset, i);
    if (call.hits != 0) putCall(out, rowOf<SimNode>(image, head.nodes.offset, call.node), call);
  }
  return out.str();
}
