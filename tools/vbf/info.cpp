#include "info.h"

#include "output.h"
#include "scanned_file.h"

void print_info(const InfoOptions& options)
{
    Output output("", options.path);
    ScannedFile input(options.path);
    const std::string listing = options.json ? info_as_json(input) : info_as_text(options.path, input);
    output.write(listing.data(), listing.size());
    output.finish();
}
