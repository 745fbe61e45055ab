// The machine's wall clock and terminals, which every Host starts with and the desktop keeps.
#include <unistd.h>

#include <ctime>

#include "platform/Host.h"

HostDateTime MachineWallClock() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    HostDateTime t;
    if (!::localtime_r(&now, &local)) return t;
    t.year = local.tm_year + 1900;
    t.month = local.tm_mon + 1;
    t.day = local.tm_mday;
    t.hour = local.tm_hour;
    t.minute = local.tm_min;
    t.second = local.tm_sec;
    t.weekday = local.tm_wday;
    return t;
}

bool MachineIsTerminal(int fd) {
    return ::isatty(fd) == 1;
}
