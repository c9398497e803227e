#include "sim_call.h"

int simFail(SimCall* call, int error) {
  call->error = error;
  return error;
}

int simReadRecord(SimCall* call, size_t size) {
  return call->readMemory(call, call->buffer, call->argument, size) ? simFail(call, SIM_EFAULT) : 0;
}

int simWriteRecord(SimCall* call, size_t size) {
  return call->writeMemory(call, call->argument, call->buffer, size) ? simFail(call, SIM_EFAULT) : 0;
}

SimNode* simNodeOf(SimImage* image, const SimCall* call) {
  return SIM_AT(image, SimNode, nodes) + call->node;
}

int simIsGone(SimImage* image, const SimCall* call) {
  return !simIsPresent(image, call->node);
}

int simErrnoOf(uint32_t status) {
  switch (status) {
    case SIM_DONE:
      return 0;
    case SIM_NOT_SUPPORTED:
      return SIM_EOPNOTSUPP;
    case SIM_BUFFER_TOO_SMALL:
      return SIM_ENOSPC;
    case SIM_BUSY:
      return SIM_EBUSY;
    case SIM_OUT_OF_MEMORY:
      return SIM_ENOMEM;
    case SIM_DEVICE_LOST:
      return SIM_ENODEV;
    case SIM_FIRMWARE_FAILURE:
    case SIM_IO_FAILURE:
      return SIM_EIO;
    case SIM_NO_SUCH_OBJECT:
      return SIM_ENOENT;
    default:
      return SIM_EINVAL;
  }
}

int simStartFaults(SimImage* image, SimCall* call, SimCallFault* fault) {
  if (image->faults.count) {
    simCallFaults(image, call, fault);
    if (simIsGone(image, call)) {
      simFail(call, SIM_ENODEV);
      return 1;
    }
  }
  if (!fault->error) return 0;
  simFail(call, fault->error);
  return 1;
}

int simWriteReply(SimCall* call, const SimCallFault* fault, size_t head, size_t size) {
  if (fault->ones) {
    for (size_t i = head; i < size; ++i) call->buffer[i] = 0xff;
  }
  if (fault->hasShort && fault->shortTo < size - head) size = head + (size_t)fault->shortTo;
  return simWriteRecord(call, size);
}

static int isSame(const SimUnexpected* row, const SimCall* call) {
  if (row->node != call->node || row->request != call->request || row->kind != call->kind) return 0;
  if (row->hasInterface != call->hasInterface || row->command != call->command) return 0;
  return !call->hasInterface || (row->interfaceName == call->interfaceName && row->version == call->version);
}

void simNoteUnexpected(SimImage* image, const SimCall* call) {
  SimUnexpected* const rows = SIM_AT(image, SimUnexpected, unexpectedCalls);
  ++image->unexpected;
  for (uint32_t i = 0; i < image->unexpectedCalls.count; ++i) {
    if (!rows[i].hits) {
      rows[i] = (SimUnexpected){.node = call->node,
                                .request = call->request,
                                .interfaceName = call->hasInterface ? call->interfaceName : 0,
                                .version = call->hasInterface ? call->version : 0,
                                .kind = call->kind,
                                .hasInterface = call->hasInterface,
                                .command = call->command};
    }
    if (!isSame(&rows[i], call)) continue;
    ++rows[i].hits;
    return;
  }
}
