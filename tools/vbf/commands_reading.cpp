#include "arguments.h"
#include "commands.h"
#include "export.h"
#include "info.h"
#include "ome.h"
#include "preview.h"
#include "read.h"
#include "tags.h"
#include "unit.h"
#include "verify.h"

#include <memory>

namespace {

Command add_info(CLI::App& app)
{
    const auto options = std::make_shared<InfoOptions>();
    CLI::App* const arguments = app.add_subcommand("info", "list the file and its stacks");
    add_file(*arguments, options->path);
    add_json(*arguments, options->json);
    return command(arguments, options, print_info);
}

Command add_verify(CLI::App& app)
{
    const auto options = std::make_shared<VerifyOptions>();
    CLI::App* const arguments = app.add_subcommand("verify", "inspect the whole file and all its samples");
    add_file(*arguments, options->path);
    add_json(*arguments, options->json);
    return {arguments, [options] { return verify_file(*options); }};
}

Command add_read(CLI::App& app)
{
    const auto options = std::make_shared<ReadOptions>();
    CLI::App* const arguments = app.add_subcommand("read", "write samples as raw little-endian bytes");
    add_file(*arguments, options->path);
    add_index(*arguments, options->index);
    arguments->add_option("--type", options->type, "convert to this sample type, such as double")->type_name("NAME");
    add_number(*arguments, "--from", options->from, "the first sample, default 0");
    add_number(*arguments, "--count", options->count, "how many samples, default all that are left");
    add_number(*arguments, "--plane", options->plane,
               "a plane of the first two dimensions, counted from 0 through all others");
    add_list(*arguments, "--region", options->region,
             "a box: for each dimension begin:end, a number, or nothing for the whole dimension")
        ->type_name("B:E,B:E");
    arguments->add_option("--out", options->out, "write to this file, not to standard output")->type_name("PATH");
    return command(arguments, options, read_samples);
}

Command add_preview(CLI::App& app)
{
    const auto options = std::make_shared<PreviewOptions>();
    CLI::App* const arguments = app.add_subcommand("preview", "draw a plane as an 8-bit PNG with stretched contrast");
    add_file(*arguments, options->path);
    add_index(*arguments, options->index);
    arguments->add_option("--out", options->out, "the PNG file")->type_name("PATH")->required();
    add_number(*arguments, "--plane", options->plane,
               "a plane of the first two dimensions, counted from 0 through all others; default the middle one");
    return command(arguments, options, write_preview);
}

Command add_export(CLI::App& app)
{
    const auto options = std::make_shared<ExportOptions>();
    CLI::App* const arguments = app.add_subcommand("export", "write a stack as a TIFF file with an OME document");
    add_file(*arguments, options->path);
    add_index(*arguments, options->index);
    arguments->add_option("OUT", options->out, "the TIFF file, usually named *.ome.tif")->required()->type_name("");
    return command(arguments, options, export_stack);
}

Command add_tags(CLI::App& app)
{
    const auto options = std::make_shared<TagsOptions>();
    CLI::App* const arguments = app.add_subcommand("tags", "list the tags of a stack, or write the text of one");
    add_file(*arguments, options->path);
    add_index(*arguments, options->index);
    arguments->add_option("KEY", options->key, "only this tag, as it is stored")->type_name("");
    add_json(*arguments, options->json);
    return command(arguments, options, print_tags);
}

Command add_ome(CLI::App& app)
{
    const auto options = std::make_shared<OmeOptions>();
    CLI::App* const arguments = app.add_subcommand("ome", "write the OME document of a file, or the record of a stack");
    add_file(*arguments, options->path);
    add_number(*arguments, "INDEX", options->index, "the stack, counted from 0; default the document of the file")
        ->type_name("");
    return command(arguments, options, print_ome);
}

Command add_unit(CLI::App& app)
{
    const auto options = std::make_shared<UnitOptions>();
    CLI::App* const arguments = app.add_subcommand("unit", "read a physical quantity, convert and print it");
    arguments->add_option("TEXT", options->text, "a quantity such as '1.5 mm' or '3 kg*m/s^2'")
        ->required()
        ->type_name("");
    arguments->add_option("--in", options->in, "show it in this unit")->type_name("UNIT");
    add_json(*arguments, options->json);
    return command(arguments, options, print_unit);
}

} // namespace

std::vector<Command> add_reading_commands(CLI::App& app)
{
    return {add_info(app),   add_verify(app), add_read(app), add_preview(app),
            add_export(app), add_tags(app),   add_ome(app),  add_unit(app)};
}
