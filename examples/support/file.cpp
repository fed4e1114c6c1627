#include "file.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace demo {

void refuse(const std::string &path, const std::string &reason)
{
    throw std::runtime_error(path + ": " + reason);
}

void requireFile(const std::string &path, const std::string &kind)
{
    std::error_code failure;
    const auto status = std::filesystem::status(path, failure);
    if (failure)
        refuse(path, failure.message());
    if (std::filesystem::is_directory(status))
        refuse(path, "is a directory, not " + kind);
    if (!std::filesystem::is_regular_file(status))
        refuse(path, "is not a regular file");
    errno = 0;
    if (!std::ifstream(path, std::ios::binary))
        refuse(path, std::strerror(errno));
    if (std::filesystem::file_size(path) == 0)
        refuse(path, "is empty");
}

} // namespace demo
