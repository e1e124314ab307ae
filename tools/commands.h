// The commands of ktsign. Each returns the exit status. Throws Failure if the command did nothing.
#ifndef KTBASE_TOOLS_COMMANDS_H
#define KTBASE_TOOLS_COMMANDS_H

#include "command_line.h"

constexpr int kDone = 0;
constexpr int kNotValid = 1;
constexpr int kFailed = 2;

int new_domain(const CommandLine& line);
int new_key(const CommandLine& line);
int public_key(const CommandLine& line);
int sign(const CommandLine& line);
int verify(const CommandLine& line);
int show(const CommandLine& line);

#endif
