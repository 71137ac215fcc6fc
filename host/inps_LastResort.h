#pragma once

// What the process says and does when it cannot go on and nobody can catch why: memory ran out
// where a destructor needs some, an exception left where none may, or a file that is read was cut
// short under the reader.

// One line on standard error, the files under way removed, exit code 3. For the whole process.
void inps_installLastResort() noexcept;
