// Feeds every file of the given folders to a fuzz target: replay FOLDER... Fails when there is no file at
// all.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

std::string contentOf(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace

int main(int argc, char *argv[])
{
    int files = 0;
    for (int i = 1; i < argc; ++i) {
        std::error_code error;
        for (const auto &entry : std::filesystem::directory_iterator(argv[i], error)) {
            if (!entry.is_regular_file()) continue;
            const std::string input = contentOf(entry.path());
            std::printf("%s, %zu bytes\n", entry.path().filename().c_str(), input.size());
            std::fflush(stdout); // the last line names the input that ended the program
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(input.data()), input.size());
            ++files;
        }
    }
    std::printf("%d files replayed\n", files);
    return files > 0 ? 0 : 1;
}
