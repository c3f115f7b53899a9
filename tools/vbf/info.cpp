#include "info.h"

#include "output.h"
#include "scanned_file.h"
#include "stack_details.h"

namespace {

/// What a scan lists; the file is closed again.
Listing scan(const std::string& path)
{
    ScannedFile input(path);
    return {input.get_chain(), input.is_dbl(), input.has_dictionary(), input.is_not_closed(), {}};
}

} // namespace

void print_info(const InfoOptions& options)
{
    Output output("", options.path);
    Listing listing = scan(options.path);
    listing.details = read_details(options.path);
    const std::string text = options.json ? info_as_json(listing) : info_as_text(options.path, listing);
    output.write(text.data(), text.size());
    output.finish();
}
