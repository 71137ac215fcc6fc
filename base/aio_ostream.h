#pragma once

#include <iosfwd>

using aio_ostream = std::ostream; // the suite's diagnostic output stream
