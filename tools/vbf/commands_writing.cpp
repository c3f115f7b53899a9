#include "append.h"
#include "arguments.h"
#include "commands.h"
#include "copy.h"
#include "import.h"
#include "repair.h"

#include <memory>

namespace {

void add_stack_options(CLI::App& arguments, StackOptions& options)
{
    add_number(arguments, "--level", options.level, "compression from 0, which is none, to 9; default 1");
    add_list(arguments, "--label", options.labels, "labels of the first axes")->type_name("A,B");
    add_list(arguments, "--length", options.lengths, "lengths of the first axes")->type_name("N,N");
    add_list(arguments, "--unit", options.units, "unit of the lengths, one or one for each; default m, and s for T")
        ->type_name("UNIT");
    arguments.add_option("--tag", options.tags, "a tag; may be given several times")
        ->allow_extra_args(false)
        ->type_name("KEY=TEXT");
    arguments.add_option("--name", options.name, "the name of the stack, default that of the image")->type_name("TEXT");
}

Command add_import(CLI::App& app)
{
    const auto options = std::make_shared<ImportOptions>();
    CLI::App* const arguments = app.add_subcommand("import", "make a VBF file of TIFF files, a stack of each");
    constexpr int least = 2;
    constexpr int most = 1 << 20;
    arguments->add_option("PATHS", options->paths, "TIFF files, and last the VBF file to be made")
        ->required()
        ->expected(least, most)
        ->type_name("TIFF... OUT.vbf");
    add_stack_options(*arguments, options->stack);
    arguments->add_option("--creator", options->creator, "the program or person that makes the file")
        ->type_name("TEXT");
    return command(arguments, options, import_images);
}

Command add_append(CLI::App& app)
{
    const auto options = std::make_shared<AppendOptions>();
    CLI::App* const arguments = app.add_subcommand("append", "add stacks to a VBF file");
    add_file(*arguments, options->path);
    arguments->add_option("TIFF", options->images, "TIFF files, each a new stack; not with --from")->type_name("");
    arguments->add_option("--from", options->from, "add the stacks of this VBF file as they are, but for --level")
        ->type_name("OTHER.vbf");
    add_stack_options(*arguments, options->stack);
    return command(arguments, options, append_stacks);
}

Command add_copy(CLI::App& app)
{
    const auto options = std::make_shared<CopyOptions>();
    CLI::App* const arguments = app.add_subcommand("copy", "make a file of the stacks of another one");
    add_file(*arguments, options->path);
    arguments->add_option("OUT", options->out, "the new VBF file")->required()->type_name("");
    const auto store = [options](const std::string& list)
    {
        for (const std::string& text : split(list))
            options->stacks.push_back(parse_number("--stacks", text));
    };
    arguments->add_option_function<std::string>("--stacks", store, "these stacks in this order, default all")
        ->type_name("N,N");
    add_number(*arguments, "--level", options->level,
               "compression from 0, which is none, to 9; default that of each stack");
    return command(arguments, options, copy_stacks);
}

Command add_repair(CLI::App& app)
{
    const auto options = std::make_shared<RepairOptions>();
    CLI::App* const arguments =
        app.add_subcommand("repair", "mend a file that was not closed, or to which stacks were appended");
    add_file(*arguments, options->path);
    arguments->add_option("--out", options->out, "write a mended copy")->type_name("NEW");
    arguments->add_flag("--in-place", options->in_place, "mend the file itself");
    return command(arguments, options, repair_file);
}

} // namespace

std::vector<Command> add_writing_commands(CLI::App& app)
{
    return {add_import(app), add_append(app), add_copy(app), add_repair(app)};
}
