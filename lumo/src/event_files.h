#pragma once

#include <string>
#include <unordered_map>

namespace lumo {

/// The files in which the driver delivers events, by the path of the GPU's misc node ("/dev/ovgpu.N"). The
/// driver numbers its folders by itself; the node's name in each tells which GPU it belongs to.
std::unordered_map<std::string, std::string> findEventFiles();

}  // namespace lumo
