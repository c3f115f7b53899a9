/// The OME document of a file.
#pragma once

#include <VelaBinaryIO/VBFHeaders.h>

#include <optional>
#include <string>

/// What the document says of the file itself.
struct FileDocument
{
    std::optional<std::string> creator;
    std::optional<std::string> uuid;
};

/// Reads the document in the dictionary of a file. One that cannot be read has nothing to say.
FileDocument read_document(const VBFDictionary& dictionary);
