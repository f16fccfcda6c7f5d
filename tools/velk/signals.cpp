#include "tools/velk/signals.h"

#include "tools/velk/failure.h"

#include <csignal>

#include <unistd.h>

namespace
{

constexpr int Interrupts[] = {SIGINT, SIGTERM, SIGHUP};

// What the handler says; set before it is installed.
std::string lastOutput;
std::string lastError;

void Handle(int /*signal*/)
{
    // Whatever becomes of these, the program ends.
    if (write(STDOUT_FILENO, lastOutput.data(), lastOutput.size()) < 0 ||
        write(STDERR_FILENO, lastError.data(), lastError.size()) < 0)
        _exit(ExitInterrupted);
    _exit(ExitInterrupted);
}

void HandleAll(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    for (const int interrupt : Interrupts)
        sigaddset(&action.sa_mask, interrupt);
    for (const int interrupt : Interrupts)
        sigaction(interrupt, &action, nullptr);
}

} // namespace

void Signals_Catch(const std::string &output, const std::string &error)
{
    lastOutput = output;
    lastError = error;
    HandleAll(Handle);
    signal(SIGPIPE, SIG_IGN);
}

void Signals_Wait()
{
    HandleAll(SIG_IGN);
}
