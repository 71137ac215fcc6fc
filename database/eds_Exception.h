#pragma once

#include "base/utl_Exception.h"

// What the store throws when it cannot go on. The text is one clear line and names the file.
class eds_Exception : public utl_Exception {
  using utl_Exception::utl_Exception;
};

// The engine refused or failed in a way that none of the others describes.
class eds_EngineException : public eds_Exception {
  using eds_Exception::eds_Exception;
};

// No room left, or the device failed to read or write.
class eds_DiskException : public eds_Exception {
  using eds_Exception::eds_Exception;
};

class eds_MemoryException : public eds_Exception {
  using eds_Exception::eds_Exception;
};

// The file cannot be reached: it exists already, does not exist, is a folder, is not permitted, is
// in use by another process.
class eds_FileAccessException : public eds_Exception {
  using eds_Exception::eds_Exception;
};

// Another process writes it, or has put another file in its place.
class eds_InUseException : public eds_FileAccessException {
  using eds_FileAccessException::eds_FileAccessException;
};

// The file is not a database, or a database of another program.
class eds_NotOurFileException : public eds_Exception {
  using eds_Exception::eds_Exception;
};

// A model in another format than ours: written by a newer version, or by an older one.
class eds_OtherFormatException : public eds_Exception {
  using eds_Exception::eds_Exception;
};

// Ours, but truncated or damaged.
class eds_DamagedFileException : public eds_Exception {
  using eds_Exception::eds_Exception;
};
