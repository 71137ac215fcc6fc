#pragma once

// For the handler of an entry of the module ("try { … } catch (...) { inpS_passOn(); }"): throws on
// what is under way, and where memory ran out, in the store's engine too, inpS_MemoryException.
[[noreturn]] void inpS_passOn();
