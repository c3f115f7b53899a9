#include "failure.h"

#include "text.h"

#include <VelaBase/VelaError.h>

#include <cstdio>

std::string message_of(const std::exception& error)
{
    const auto* const of_library = dynamic_cast<const VelaError*>(&error);
    if (of_library == nullptr)
        return error.what();
    if (of_library->get_oserr_id() <= 0)
        return of_library->get_msg();
    return of_library->get_msg() + " (" + of_library->get_oserr() + ")";
}

void report(const std::string& message)
{
    std::fputs(("vbf: " + terminal_safe(message) + "\n").c_str(), stderr);
}
