// The uuid of a GPU, as its driver names the folder of its fault records by.
#ifndef DEVICE_UUID_H
#define DEVICE_UUID_H

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "device_builder.h"
#include "host.h"

/// Of the GPU's own device; empty in a guest.
std::string deviceUuid(const Host& host, const Device& device, uint32_t misc);

std::array<uint8_t, 20> sha1(std::string_view text);

#endif
