// Interrupts: before a write they end the program, with word that nothing was written; during one they wait.
#ifndef VELK_TOOLS_SIGNALS_H
#define VELK_TOOLS_SIGNALS_H

#include <string>

// From here on an interrupt ends the program with these texts, on standard output and standard error, and
// ExitInterrupted. A pipe that closes is an error of writing, and no signal.
void Signals_Catch(const std::string &output, const std::string &error);

// From here on interrupts are let be: a write is under way, or what it comes to is being said.
void Signals_Wait();

#endif
