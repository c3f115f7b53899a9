#include "progress.h"

#include "text.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>
#include <utility>

namespace {

const char* const erase_line = "\r\x1b[K";

} // namespace

Progress::Progress(std::string in_label, std::uint64_t in_whole)
    : label(std::move(in_label)), whole(in_whole), visible(isatty(STDERR_FILENO) == 1)
{
}

Progress::~Progress()
{
    if (visible && shown_percent >= 0)
        std::fputs(erase_line, stderr);
}

void Progress::add(std::uint64_t part)
{
    set(done + part);
}

void Progress::set(std::uint64_t in_done)
{
    done = in_done;
    if (!visible || whole == 0)
        return;
    constexpr double hundred = 100;
    const double part_done = std::min(1.0, static_cast<double>(done) / static_cast<double>(whole));
    const int percent = static_cast<int>(hundred * part_done);
    if (percent == shown_percent)
        return;
    shown_percent = percent;
    std::fprintf(stderr, "%s%s %d %%", erase_line, terminal_safe(label).c_str(), percent);
}
