// Shares a stack with a second process, which paints into it, and writes what it painted to a file.
//
//     two_processes FILE.vbf          the first process
//     two_processes paint ID SIZE     the second one, which the first one starts
#include <Remote/File.h>
#include <Remote/StackObject.h>
#include <VelaStacks/SharedMemory.h>
#include <VelaStacks/VStack.h>

#include <boost/make_shared.hpp>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

/// The second process has the id and what it was told of the samples: here that they are bytes, and how many.
void paint(const std::string& id, std::uint64_t size_bytes)
{
    Vela::SharedMemory memory(id);
    auto* const samples = static_cast<unsigned char*>(memory.data());
    for (std::uint64_t i = 0; i < size_bytes; ++i)
        samples[i] = static_cast<unsigned char>(10 * i);
    std::cout << "the second process painted " << size_bytes << " of " << memory.size() << " bytes\n";
}

/// Starts the second process and waits for its end. The stack has to live as long.
bool let_paint(std::string program, const Remote::Stack& stack)
{
    std::string command = "paint";
    std::string id = stack.share(); // the samples are in shared memory from now on
    std::string size_bytes = std::to_string(stack.number_of_elements());
    char* const arguments[] = {program.data(), command.data(), id.data(), size_bytes.data(), nullptr};
    std::cout.flush();
    pid_t process = -1;
    int status = -1;
    return posix_spawn(&process, program.c_str(), nullptr, nullptr, arguments, environ) == 0 &&
           waitpid(process, &status, 0) == process && status == 0;
}

int run(const std::string& program, const std::string& path)
{
    // A new stack, and one that was there before, behind the same face of plain values.
    const boost::shared_ptr<Remote::Stack> fresh(Remote::get_stack(vela_dt_uint8, {4, 3}));
    const auto image =
        boost::make_shared<VStackImp>(Ome::Type::uint8, std::vector<std::uint64_t>{2, 2}, Ome::DimensionOrder::XYZTC);
    const auto shown = boost::make_shared<Remote::StackObject>(image);
    fresh->set_name("fresh");
    shown->set_name("shown");
    if (!let_paint(program, *fresh) || !let_paint(program, *shown))
        return 1;
    std::cout << "sample 3 of the image is " << static_cast<int>(image->get_data_ptr()[3]) << "\n";

    Remote::File file(path, VFile::write_mode);
    file.write(fresh, 0);
    file.write(shown, 0);
    file.close();

    Remote::File written(path, VFile::read_mode);
    for (std::uint64_t index = 0; index < written.number_of_stacks(); ++index)
    {
        const boost::shared_ptr<Remote::Stack> stack = written.read(index, 0);
        std::cout << stack->name() << ": " << stack->size(0) << " x " << stack->size(1) << " samples\n";
    }
    return 0;
}

int main(int argc, char** argv)
{
    try
    {
        if (argc == 2)
            return run(argv[0], argv[1]);
        if (argc == 4)
            paint(argv[2], std::stoull(argv[3]));
        return argc == 4 ? 0 : 2;
    }
    catch (const std::exception& error)
    {
        std::cerr << error.what() << "\n";
        return 1;
    }
}
