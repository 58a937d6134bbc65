/// An empty directory for one test, which is the working directory while the test runs and is gone afterwards.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace tov::test {

class ScratchDirectory {
public:
    ScratchDirectory() : before_(std::filesystem::current_path()) {
        std::random_device source;
        do {
            path_ = std::filesystem::temp_directory_path() / ("tov_test_" + std::to_string(source()));
        } while (!std::filesystem::create_directory(path_));
        std::filesystem::current_path(path_);
    }
    ~ScratchDirectory() {
        std::error_code ignored;
        std::filesystem::current_path(before_, ignored);
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchDirectory(ScratchDirectory const&) = delete;
    ScratchDirectory& operator=(ScratchDirectory const&) = delete;

    [[nodiscard]] std::filesystem::path const& path() const { return path_; }
    /// Writes a file, byte for byte.
    void write(std::string const& name, std::string const& text) const {
        std::ofstream(path_ / name, std::ios::binary) << text;
    }
    /// The whole text of a file; empty when there is none.
    [[nodiscard]] std::string read(std::string const& name) const {
        std::ifstream is(path_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(is), std::istreambuf_iterator<char>()};
    }
    [[nodiscard]] bool has(std::string const& name) const { return std::filesystem::exists(path_ / name); }

private:
    std::filesystem::path before_;
    std::filesystem::path path_;
};

}  // namespace tov::test
