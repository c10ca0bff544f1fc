// Runs a fuzz target over every file of a folder, without a fuzzing engine. An empty folder is a failure.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

int main(int argc, char** argv) {
    int replayed = 0;
    for (int folder = 1; folder < argc; ++folder) {
        for (auto const& file : std::filesystem::directory_iterator(argv[folder])) {
            std::ifstream input(file.path(), std::ios::binary);
            std::string const bytes{std::istreambuf_iterator<char>(input), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const*>(bytes.data()), bytes.size());
            ++replayed;
        }
    }
    std::printf("%d inputs replayed\n", replayed);
    return replayed > 0 ? 0 : 1;
}
