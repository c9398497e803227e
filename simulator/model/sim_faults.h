// Faults that strike an ioctl. For the sources of the model.
#ifndef SIM_FAULTS_H
#define SIM_FAULTS_H

#include "sim_model.h"

typedef struct SimCallFault {
  int error;
  uint32_t status;
  int hasStatus;
  int ones;
  int hasCount;
  int hasShort;
  uint64_t count;
  uint64_t shortTo;
} SimCallFault;

// Counts the call against every fault that matches it and gathers what applies. A device that is
// removed by one of them is removed from now on.
void simCallFaults(SimImage* image, SimCall* call, SimCallFault* fault);

#endif
