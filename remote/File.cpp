#include <Remote/File.h>
#include <Remote/StackObject.h>
#include <VelaProps/VPropstring.h>
#include <VelaStacks/VStack.h>

#include <boost/shared_ptr.hpp>

#include <utility>

namespace Remote {
VELA_ABI_NAMESPACE_BEGIN

File::File(const std::string& path, Mode mode) : file(VPropstring(path, VPropstring::enc_system), mode) {}

File::File(const File& other) = default;

File& File::operator=(const File& other) = default;

File::~File()
{
    try
    {
        file->close();
    }
    catch (...)
    {
        // Nobody is there any more to be told.
    }
}

std::string File::description() const
{
    std::string text;
    file->get_file_desc(text);
    return text;
}

void File::set_description(const std::string& new_description)
{
    file->set_file_desc(new_description);
}

std::uint64_t File::number_of_stacks() const
{
    return static_cast<std::uint64_t>(static_cast<std::int32_t>(file->number_of_stacks()));
}

boost::shared_ptr<Stack> File::read(std::uint64_t index, int flags) const
{
    return boost::shared_ptr<Stack>(new StackObject(file.shared()->read_stack(index, flags)));
}

void File::write(boost::shared_ptr<Stack> stack, int flags)
{
    const boost::shared_ptr<Stack> held = std::move(stack); // a binding's own reference, until the samples are written
    VStackImp attached(*held);
    file->write_stack(&attached, flags);
}

void File::close()
{
    file->close();
}

VELA_ABI_NAMESPACE_END
}
