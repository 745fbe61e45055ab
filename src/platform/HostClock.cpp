// The machine's wall clock and terminals, which every Host starts with and the desktop keeps.
#include <unistd.h>

#include <ctime>

#include "platform/Host.h"

HostDateTime DateTimeAt(int64_t secondsSince1970, bool local) {
    const std::time_t at = static_cast<std::time_t>(secondsSince1970);
    std::tm parts{};
    HostDateTime t;
    if (!(local ? ::localtime_r(&at, &parts) : ::gmtime_r(&at, &parts))) return t;
    t.year = parts.tm_year + 1900;
    t.month = parts.tm_mon + 1;
    t.day = parts.tm_mday;
    t.hour = parts.tm_hour;
    t.minute = parts.tm_min;
    t.second = parts.tm_sec;
    t.weekday = parts.tm_wday;
    return t;
}

HostDateTime MachineWallClock() {
    return DateTimeAt(std::time(nullptr), true);
}

bool MachineIsTerminal(int fd) {
    return ::isatty(fd) == 1;
}
