#pragma once

#include "base/cow_Value.h"
#include <filesystem>
#include <functional>

class inps_Arguments;
class inps_ReadFiles;
struct inps_Session;
class utl_Stream;

// A file that takes its name when it is whole; it is not forced to the disk, for the model can make
// it again. What is read is never replaced. What is no regular file (a pipe, a device) is
// written as it stands. An existing file is replaced by force only. Throws utl_FileException.
void inps_writeFile(const std::filesystem::path& path, bool force, const inps_ReadFiles& read,
                    const std::function<void(utl_Stream& out)>& print);

// Whether a model may take the name: a folder is never replaced, nor is a device or a pipe, not
// even by force. Throws utl_FileException.
void inps_requireFree(const std::filesystem::path& target, bool force);

// Why a model cannot go to standard output; empty: it can.
cow_String inps_faultOfModelOutput(const inps_Session& session, const inps_Arguments& arguments);
