#pragma once

// The memory of the engine. A page or a long value that is taken from the system anew costs more
// than what is copied into it; so pages come out of big blocks on huge pages, and long values go
// from one to the next.
//
// To be said before the engine's first use in the process; a host that has used it already keeps
// its own memory.
void eds_giveEngineMemory();
