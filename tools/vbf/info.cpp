#include "info.h"

#include "output.h"
#include "scanned_file.h"
#include "stack_details.h"

namespace {

/// What a scan lists; the file is closed again.
Listing scan(const std::string& path, std::vector<FooterParts>& footers)
{
    ScannedFile input(path);
    for (const VBFChainEntry& stack : input.get_chain().stacks)
        footers.push_back(read_footer_parts(input.get_file(), stack));
    return {input.get_chain(), input.has_dictionary(), input.is_not_closed(), {}};
}

} // namespace

void print_info(const InfoOptions& options)
{
    Output output("", options.path);
    std::vector<FooterParts> footers;
    Listing listing = scan(options.path, footers);
    listing.details = read_details(options.path, footers);
    const std::string text = options.json ? info_as_json(listing) : info_as_text(options.path, listing);
    output.write(text.data(), text.size());
    output.finish();
}
