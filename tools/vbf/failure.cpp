#include "failure.h"

#include "text.h"

#include <VelaBase/VelaError.h>

#include <cstdio>

std::string message_of(const VelaError& error)
{
    if (error.get_oserr_id() <= 0)
        return error.get_msg();
    return error.get_msg() + " (" + error.get_oserr() + ")";
}

void report(const std::string& message)
{
    std::fputs(("vbf: " + terminal_safe(message) + "\n").c_str(), stderr);
}
