// What answering any call needs. For the sources of the model.
#ifndef SIM_CALL_H
#define SIM_CALL_H

#include "sim_faults.h"
#include "sim_records.h"

// Sets the call's errno and returns it.
int simFail(SimCall* call, int error);

// Between the caller's record and the buffer; 0, or the call fails with EFAULT.
int simReadRecord(SimCall* call, size_t size);
int simWriteRecord(SimCall* call, size_t size);

SimNode* simNodeOf(SimImage* image, const SimCall* call);
int simIsGone(SimImage* image, const SimCall* call);

// What a driver without a status word fails with.
int simErrnoOf(uint32_t status);

// Faults that come before any work: true when the call ends here.
int simStartFaults(SimImage* image, SimCall* call, SimCallFault* fault);

// Writes the reply, which may be of ones or shorter than it should be. The first `head` bytes are not
// touched by faults.
int simWriteReply(SimCall* call, const SimCallFault* fault, size_t head, size_t size);

// Writes down a call that the driver did not offer.
void simNoteUnexpected(SimImage* image, const SimCall* call);

// ---- the protocols; each answers the whole call and returns its errno

int simAnswerProbe0(SimImage* image, SimCall* call, uint32_t protocol, uint32_t listed);
int simAnswerPage(SimImage* image, SimCall* call, uint32_t protocol, const SimListed* listed, uint32_t total);
// Whether a driver without protocol 1 lists an interface of the record, and the node's chip has it.
int simOffers0(SimImage* image, const SimCall* call, const SimRecord* record);
int simAnswerRecord0(SimImage* image, SimCall* call);
int simAnswerSmc(SimImage* image, SimCall* call);

int simAnswerProbe1(SimImage* image, SimCall* call);
int simAnswerCall1(SimImage* image, SimCall* call);

int simAnswerVpuInline(SimImage* image, SimCall* call);
int simAnswerVpu(SimImage* image, SimCall* call);

#endif
