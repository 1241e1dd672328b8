// Starting arguments for the exports whose valid call the sweep's generic
// search cannot find: each names parameters and their values, the others
// keeping the search's choice. Handles read ROWS[xCOLS][/DATA] (DATA ramp,
// spd, zero or a constant), scalars and pointees a number.
#pragma once

namespace sweep {

struct StartingArguments {
  const char* name;
  const char* values;
};

const StartingArguments kStartingArguments[] = {
    {"GenHistH", "edges=5/ramp"},
};

}  // namespace sweep
