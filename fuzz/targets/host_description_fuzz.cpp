#include "host_reader.h"

#include "host_error.h"
#include "image_writer.h"
#include "support/memory_file.h"
#include "support/property.h"

// The description of a simulated host. What it extends is looked for among the hosts that ship.

using tolk_fuzz::expect;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static tolk_fuzz::MemoryFile file;
  static const HostLibrary library({FUZZ_HOSTS_FOLDER});
  file.write({reinterpret_cast<const char*>(data), size});
  try {
    const Host host = readHost(library.load(file.path()));
    for (const Node& node : host.nodes) {
      expect(node.owner < host.nodes.size() && node.gpu < host.functions.size(), "a node has its GPU");
    }
    HostPaths paths;
    paths.files.resize(host.nodes.size());
    expect(!makeImage(host, paths, {}).empty(), "a host that is read has an image");
  } catch (const HostError& error) {
    expect(*error.what() != '\0', "what is refused is named");
  }
  return 0;
}
