// A folder of its own among the system's temporary files, which goes with the object.
#ifndef VEK_TESTS_SUPPORT_TEMPORARY_FOLDER_H
#define VEK_TESTS_SUPPORT_TEMPORARY_FOLDER_H

#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>

namespace support {

class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::string& prefix)
    {
        constexpr size_t placeholders = 6;  // as mkdtemp() wants them
        std::string name = (std::filesystem::temp_directory_path() / prefix).string() + std::string(placeholders, 'X');
        if (mkdtemp(name.data()) == nullptr)
            throw std::system_error(errno, std::generic_category(), name);
        path_ = name;
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::string file(const std::string& name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

}  // namespace support

#endif
