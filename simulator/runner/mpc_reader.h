// The "mpc" of a GPU entry: profiles, configurations and what is set of them.
#ifndef MPC_READER_H
#define MPC_READER_H

#include "host.h"
#include "json_cursor.h"

/// Unknown keys are errors.
void checkMpcKeys(const JsonCursor& mpc);

/// What the parent's node answers.
void setMpcLists(const JsonCursor& mpc, CellMap& cells);

/// One profile id for each instance of the configuration that is set; none when none is.
std::vector<uint32_t> currentProfiles(const JsonCursor& mpc);

/// Throws, in the name of `asked`, when there is no such profile.
JsonCursor profileById(const JsonCursor& mpc, uint64_t id, const JsonCursor& asked);

/// What an instance of the profile answers; `index` is its place in the parent.
void setOwnProfile(const JsonCursor& profile, uint64_t index, CellMap& cells);

#endif
