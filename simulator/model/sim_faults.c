#include "sim_faults.h"

int simGlobMatches(const char* pattern, const char* text) {
  for (; *pattern; ++pattern, ++text) {
    if (*pattern == '*') {
      const int crosses = pattern[1] == '*';
      const char* const rest = pattern + 1 + crosses;
      for (;; ++text) {
        if (simGlobMatches(rest, text)) return 1;
        if (!*text || (*text == '/' && !crosses)) return 0;
      }
    }
    if (!*text || (*pattern == '?' ? *text == '/' : *pattern != *text)) return 0;
  }
  return !*text;
}

static int patternMatches(const SimImage* image, const SimFault* fault, const char* text) {
  return !fault->pattern || simGlobMatches((const char*)image + fault->pattern, text);
}

// Counts the access; true when the fault strikes this one.
static int strikes(SimFault* fault) {
  const uint64_t hit = __atomic_add_fetch(&fault->hits, 1, __ATOMIC_RELAXED);
  return hit >= fault->first && hit <= fault->last;
}

static int callMatches(const SimImage* image, const SimFault* fault, const SimCall* call, const char* name) {
  if (fault->target != SIM_FAULT_IOCTL) return 0;
  if (fault->callKind != SIM_CALL_ANY && fault->callKind != call->kind) return 0;
  if (!fault->anyRequest && fault->request != call->request) return 0;
  if (!fault->anyInterface && !(call->hasInterface && fault->interfaceName == call->interfaceName)) return 0;
  if (!fault->anyVersion && !(call->hasInterface && fault->version == call->version)) return 0;
  return patternMatches(image, fault, name);
}

void simCallFaults(SimImage* image, SimCall* call, SimCallFault* result) {
  SimNode* const nodes = SIM_AT(image, SimNode, nodes);
  SimFault* const faults = SIM_AT(image, SimFault, faults);
  char name[SIM_NODE_NAME];
  simNodeName(&nodes[call->node], name);
  for (uint32_t i = 0; i < image->faults.count; ++i) {
    SimFault* const fault = &faults[i];
    if (!callMatches(image, fault, call, name) || !strikes(fault)) continue;
    switch (fault->effect) {
      case SIM_EFFECT_ERRNO:
        result->error = (int)fault->number;
        break;
      case SIM_EFFECT_STATUS:
        result->hasStatus = 1;
        result->status = (uint32_t)fault->number;
        break;
      case SIM_EFFECT_SHORT:
        result->hasShort = 1;
        result->shortTo = fault->number;
        break;
      case SIM_EFFECT_ONES:
        result->ones = 1;
        break;
      case SIM_EFFECT_COUNT:
        result->hasCount = 1;
        result->count = fault->number;
        break;
      case SIM_EFFECT_HANG:
        call->hangMs += fault->number;
        break;
      case SIM_EFFECT_GONE:
        __atomic_store_n(&nodes[nodes[call->node].owner].gone, 1, __ATOMIC_RELEASE);
        break;
      case SIM_EFFECT_KILL:
        call->isKilled = 1;
        result->error = SIM_EINTR;
        break;
      default:
        break;
    }
  }
}

// Mapping and moving are nothing that a program does to a file: only faults of their own strike them.
static int aimsAt(const SimFault* fault, enum SimAim aim) {
  if (aim == SIM_AIM_MAP) return fault->target == SIM_FAULT_MAP;
  if (aim == SIM_AIM_MOVE) return fault->target == SIM_FAULT_MOVE;
  return fault->target == SIM_FAULT_FILE || (fault->target == SIM_FAULT_OPEN && aim == SIM_AIM_OPEN);
}

void simFileFaults(SimImage* image, const char* path, enum SimAim aim, SimFileFault* result) {
  SimFault* const faults = SIM_AT(image, SimFault, faults);
  for (uint32_t i = 0; i < image->faults.count; ++i) {
    SimFault* const fault = &faults[i];
    if (!aimsAt(fault, aim) || !patternMatches(image, fault, path) || !strikes(fault)) continue;
    switch (fault->effect) {
      case SIM_EFFECT_ERRNO:
        result->error = (int)fault->number;
        break;
      case SIM_EFFECT_HANG:
        result->hangMs += fault->number;
        break;
      case SIM_EFFECT_KILL:
        result->isKilled = 1;
        break;
      case SIM_EFFECT_TAKE: {
        uint64_t notYet = SIM_TAKE_NOT_YET;
        __atomic_compare_exchange_n(&fault->number, &notYet, SIM_TAKE_DUE, 0, __ATOMIC_ACQ_REL,
                                    __ATOMIC_RELAXED);
        result->takes = 1;
        break;
      }
      case SIM_EFFECT_CUT:
        result->cut = (int64_t)fault->number;
        break;
      case SIM_EFFECT_TEXT:
        result->text = (const char*)image + fault->text;
        result->textLength = fault->textLength;
        break;
      default:
        break;
    }
  }
}

const char* simNextToTake(SimImage* image) {
  SimFault* const faults = SIM_AT(image, SimFault, faults);
  for (uint32_t i = 0; i < image->faults.count; ++i) {
    SimFault* const fault = &faults[i];
    uint64_t due = SIM_TAKE_DUE;
    if (fault->effect == SIM_EFFECT_TAKE &&
        __atomic_compare_exchange_n(&fault->number, &due, SIM_TAKE_DONE, 0, __ATOMIC_ACQ_REL,
                                    __ATOMIC_RELAXED)) {
      return (const char*)image + fault->text;
    }
  }
  return 0;
}

static int liesIn(const char* path, const char* folder) {
  while (*folder && *folder == *path) {
    ++folder;
    ++path;
  }
  return !*folder && (!*path || *path == '/');
}

int simIsTaken(const SimImage* image, const char* path) {
  const SimFault* const faults = SIM_AT(image, const SimFault, faults);
  for (uint32_t i = 0; i < image->faults.count; ++i) {
    const SimFault* const fault = &faults[i];
    if (fault->effect == SIM_EFFECT_TAKE &&
        __atomic_load_n(&fault->number, __ATOMIC_ACQUIRE) != SIM_TAKE_NOT_YET &&
        liesIn(path, (const char*)image + fault->text)) {
      return 1;
    }
  }
  return 0;
}
