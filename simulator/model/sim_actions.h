// What records do besides filling their fields. For the tables of the model.
#ifndef SIM_ACTIONS_H
#define SIM_ACTIONS_H

#include "sim_records.h"

// ---- resets and settings

SimRefusal simResetGpu(const SimServing* serving);
SimRefusal simResetDevice(const SimServing* serving);
SimRefusal simResetLink(const SimServing* serving);
SimRefusal simClearCounts(const SimServing* serving);
SimRefusal simClearEcc(const SimServing* serving);
SimRefusal simDropEvents(const SimServing* serving);
SimRefusal simSetPowerLimit(const SimServing* serving);

// ---- MPC

SimRefusal simSwitchMpc(const SimServing* serving);
SimRefusal simSetConfiguration(const SimServing* serving);

// ---- measurements

SimRefusal simStartPcie(const SimServing* serving);
SimRefusal simReadPcie(const SimServing* serving);
SimRefusal simStopPcie(const SimServing* serving);
SimRefusal simStartSablink(const SimServing* serving);
SimRefusal simReadSablink(const SimServing* serving);
SimRefusal simStopSablink(const SimServing* serving);
SimRefusal simSampleProcesses(const SimServing* serving);

// ---- memory that is shared with the caller

SimRefusal simAllocBuffer(const SimServing* serving);
SimRefusal simFreeBuffer(const SimServing* serving);

// The buffer of the caller's descriptor, if `lowHandle` is the low half of its handle and `size` bytes fit.
SimRefusal simFindBuffer(SimCall* call, uint64_t lowHandle, uint32_t size, uint32_t* id);

// Ends all measurements on a node.
void simEndSessions(SimImage* image, uint32_t node);

// A device that is reset, or made anew, must not be held by a descriptor of another device: status 7.
SimRefusal simRefuseWhileOthersOpen(const SimServing* serving);

#endif
