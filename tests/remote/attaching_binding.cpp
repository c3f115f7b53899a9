// The other process of attaching_process_test.cpp: what a binding does with a description and an id that have crossed.
//
// Reads id, name, description, type, rank, and for each axis size, label, length and offset, one a line; makes a stack of
// them, prints what that says and its bytes, and adds 1 to each byte. Status 3: it was refused, for the printed reason.

#include "remote/binding_stack.h"

#include <VelaStacks/VStack.h>

#include <exception>
#include <iostream>

namespace {

std::string line()
{
    std::string text;
    std::getline(std::cin, text);
    return text;
}

vela_test::BindingStack face_from_input()
{
    vela_test::BindingStack face;
    face.given_id = line();
    face.given_name = line();
    face.given_description = line();
    face.given_type = std::stoi(line());
    const std::size_t rank = std::stoul(line());
    face.given_sizes.clear();
    face.given_labels.clear();
    face.given_lengths.clear();
    face.given_offsets.clear();
    for (std::size_t axis = 0; axis < rank; ++axis)
    {
        face.given_sizes.push_back(std::stoull(line()));
        face.given_labels.push_back(line());
        face.given_lengths.push_back(std::stod(line()));
        face.given_offsets.push_back(std::stod(line()));
    }
    return face;
}

void print(const VStackImp& stack)
{
    std::cout << stack.get_name() << "|" << stack.get_description() << "|" << stack.get_dt();
    for (std::uint64_t axis = 0; axis < stack.get_rank(); ++axis)
        std::cout << "|" << stack.get_dimension_size(axis) << " " << stack.get_label(axis) << " "
                  << stack.get_length(axis) << " " << stack.get_offset(axis);
    for (std::uint64_t i = 0; i < stack.get_size(vela_dt_none); ++i)
        std::cout << (i == 0 ? "|" : " ") << int{stack.get_data_ptr()[i]};
    std::cout << "\n";
}

} // namespace

int main()
{
    try
    {
        VStackImp stack(face_from_input());
        print(stack);
        for (std::uint64_t i = 0; i < stack.get_size(vela_dt_none); ++i)
            ++stack.get_data_ptr()[i];
        return 0;
    }
    catch (const std::exception& error)
    {
        std::cout << error.what() << "\n";
        return 3;
    }
}
