#pragma once

#include "base/aio_ostream.h"
#include <string_view>

struct inps_Command;
struct inps_Session;

void inps_printHelp(aio_ostream& out); // of the program
void inps_printHelp(aio_ostream& out, const inps_Command& command);
void inps_printUsage(aio_ostream& out, const inps_Command& command); // one line

int inps_reportUnknownCommand(inps_Session& session, std::string_view name);

inline constexpr const char* inps_version = "0.1.0";
