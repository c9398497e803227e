// Integer types of the driver model, where there is a C library and where there is a kernel.
#ifndef SIM_TYPES_H
#define SIM_TYPES_H

#ifdef __KERNEL__
#include <linux/types.h>
#else
#include <stddef.h>
#include <stdint.h>
#endif

#endif
