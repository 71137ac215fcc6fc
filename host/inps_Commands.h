#pragma once

struct inps_Session;
class inps_Arguments;

// What the commands do; the result is the exit code. Failures of files, memory and ours leave them
// as exceptions.
int inps_convert(inps_Session& session, const inps_Arguments& arguments);
int inps_write(inps_Session& session, const inps_Arguments& arguments);
int inps_export(inps_Session& session, const inps_Arguments& arguments);
int inps_check(inps_Session& session, const inps_Arguments& arguments);
int inps_info(inps_Session& session, const inps_Arguments& arguments);
int inps_plot(inps_Session& session, const inps_Arguments& arguments);
int inps_derive(inps_Session& session, const inps_Arguments& arguments);
int inps_diff(inps_Session& session, const inps_Arguments& arguments);
int inps_dump(inps_Session& session, const inps_Arguments& arguments);
int inps_keywords(inps_Session& session, const inps_Arguments& arguments);
int inps_help(inps_Session& session, const inps_Arguments& arguments);
