// vbf: lists, reads and shows the image stacks of VBF files, and reads physical quantities.
//
// Data go to standard output, messages to standard error.
// Exit status: 0 done, 1 failed, 2 wrong usage.
#include "failure.h"
#include "info.h"
#include "preview.h"
#include "read.h"
#include "repair.h"
#include "unit.h"
#include "verify.h"

#include <VelaBase/VelaError.h>
#include <VelaBase/version.h>

#include <CLI/CLI.hpp>

#include <charconv>
#include <csignal>
#include <iostream>

namespace {

enum ExitStatus : int
{
    done = 0,
    failed = 1,
    wrong_usage = 2,
};

std::string version_text()
{
    return "vbf " + std::to_string(VELA_VERSION_MAJOR) + "." + std::to_string(VELA_VERSION_MINOR) + "." +
           std::to_string(VELA_VERSION_PATCH);
}

std::uint64_t parse_number(const std::string& name, const std::string& text)
{
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end)
        throw CLI::ValidationError(name, "'" + text + "' is no number from 0 to 18446744073709551615");
    return number;
}

/// An option that takes a number without sign. CLI11's own reading of one lets -1 wrap and takes 010 as 8.
template <class Target>
CLI::Option* add_number(CLI::App& command, const std::string& name, Target& target, const std::string& description)
{
    const auto store = [&target, name](const std::string& text) { target = parse_number(name, text); };
    return command.add_option_function<std::string>(name, store, description)->type_name("N");
}

void add_file(CLI::App& command, std::string& path)
{
    command.add_option("FILE", path, "a VBF file")->required()->type_name("");
}

void add_index(CLI::App& command, std::uint64_t& index)
{
    add_number(command, "INDEX", index, "the stack, counted from 0")->required()->type_name("");
}

CLI::App* add_info(CLI::App& app, InfoOptions& options)
{
    CLI::App* const command = app.add_subcommand("info", "list the file and its stacks");
    add_file(*command, options.path);
    command->add_flag("--json", options.json, "print one JSON document");
    return command;
}

CLI::App* add_read(CLI::App& app, ReadOptions& options)
{
    CLI::App* const command = app.add_subcommand("read", "write samples as raw little-endian bytes");
    add_file(*command, options.path);
    add_index(*command, options.index);
    command->add_option("--type", options.type, "convert to this sample type, such as double")->type_name("NAME");
    add_number(*command, "--from", options.from, "the first sample, default 0");
    add_number(*command, "--count", options.count, "how many samples, default all that are left");
    command->add_option("--out", options.out, "write to this file, not to standard output")->type_name("PATH");
    return command;
}

CLI::App* add_preview(CLI::App& app, PreviewOptions& options)
{
    CLI::App* const command = app.add_subcommand("preview", "draw a plane as an 8-bit PNG with stretched contrast");
    add_file(*command, options.path);
    add_index(*command, options.index);
    command->add_option("--out", options.out, "the PNG file")->type_name("PATH")->required();
    add_number(*command, "--plane", options.plane,
               "a plane of the first two dimensions, counted from 0 through all others; default the middle one");
    return command;
}

CLI::App* add_unit(CLI::App& app, UnitOptions& options)
{
    CLI::App* const command = app.add_subcommand("unit", "read a physical quantity, convert and print it");
    command->add_option("TEXT", options.text, "a quantity such as '1.5 mm' or '3 kg*m/s^2'")->required()->type_name("");
    command->add_option("--in", options.in, "show it in this unit")->type_name("UNIT");
    command->add_flag("--json", options.json, "print one JSON document");
    return command;
}

CLI::App* add_repair(CLI::App& app, RepairOptions& options)
{
    CLI::App* const command =
        app.add_subcommand("repair", "mend a file that was not closed, or to which stacks were appended");
    add_file(*command, options.path);
    command->add_option("--out", options.out, "write a mended copy")->type_name("NEW");
    command->add_flag("--in-place", options.in_place, "mend the file itself");
    return command;
}

CLI::App* add_verify(CLI::App& app, VerifyOptions& options)
{
    CLI::App* const command = app.add_subcommand("verify", "inspect the whole file and all its samples");
    add_file(*command, options.path);
    command->add_flag("--json", options.json, "print one JSON document");
    return command;
}

/// Help and version are no failures, though CLI11 throws them.
int answer(const CLI::App& app, const CLI::ParseError& error)
{
    if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::Success))
        throw UsageFailure(std::string(error.what()) + ". Try vbf --help.");
    app.exit(error, std::cout, std::cerr);
    if (!std::cout.flush())
        throw std::runtime_error("Cannot write to standard output");
    return done;
}

int run(int argc, char** argv)
{
    CLI::App app("Lists, reads and shows the image stacks of VBF files, and reads physical quantities.", "vbf");
    app.set_version_flag("--version", version_text());
    app.require_subcommand(1);
    InfoOptions info_options;
    ReadOptions read_options;
    PreviewOptions preview_options;
    UnitOptions unit_options;
    VerifyOptions verify_options;
    RepairOptions repair_options;
    const CLI::App* const info = add_info(app, info_options);
    const CLI::App* const read = add_read(app, read_options);
    const CLI::App* const preview = add_preview(app, preview_options);
    const CLI::App* const unit = add_unit(app, unit_options);
    const CLI::App* const verify = add_verify(app, verify_options);
    const CLI::App* const repair = add_repair(app, repair_options);
    try
    {
        app.parse(argc, argv);
    }
    catch (const CLI::ParseError& error)
    {
        return answer(app, error);
    }
    if (info->parsed())
        print_info(info_options);
    if (read->parsed())
        read_samples(read_options);
    if (preview->parsed())
        write_preview(preview_options);
    if (unit->parsed())
        print_unit(unit_options);
    if (repair->parsed())
        repair_file(repair_options);
    if (verify->parsed() && !verify_file(verify_options))
        return failed;
    return done;
}

} // namespace

int main(int argc, char** argv)
{
    std::signal(SIGPIPE, SIG_IGN); // a reader that goes away becomes a failed write
    try
    {
        return run(argc, argv);
    }
    catch (const UsageFailure& failure)
    {
        report(failure.what());
        return wrong_usage;
    }
    catch (const VelaError& error)
    {
        report(message_of(error));
    }
    catch (const std::exception& error)
    {
        report(error.what());
    }
    return failed;
}
