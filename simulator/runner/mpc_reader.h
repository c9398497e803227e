// The "mpc" of a GPU entry: profiles, configurations and what is set of them.
#ifndef MPC_READER_H
#define MPC_READER_H

#include "host.h"
#include "json_cursor.h"

/// Unknown keys are errors.
void checkMpcKeys(const JsonCursor& mpc);

/// The state that the GPU is in, as SimGpu.mpcState.
uint32_t currentState(const JsonCursor& mpc);

std::vector<uint32_t> configurationIds(const JsonCursor& mpc);

/// Profiles and configurations, as the parent's node answers.
void setMpcLists(const JsonCursor& mpc, CellMap& cells);
/// The configuration that is set.
void setCurrent(const JsonCursor& mpc, uint32_t state, CellMap& cells);

/// One profile id for each instance of a state that is the id of a configuration; else none.
std::vector<uint32_t> profilesOf(const JsonCursor& mpc, uint32_t state);

bool hasProfile(const JsonCursor& mpc, uint64_t id);

/// Throws, in the name of `asked`, when there is no such profile.
JsonCursor profileById(const JsonCursor& mpc, uint64_t id, const JsonCursor& asked);

/// What an instance of the profile answers; `index` is its place in the parent.
void setOwnProfile(const JsonCursor& profile, uint64_t index, CellMap& cells);

#endif
