// Runs a fuzzer over the files of the directories that it is given, where there is no fuzzing
// engine.
#include <stdio.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

int main(int argc, char **argv) {
    int inputs = 0;
    for (int i = 1; i < argc; ++i)
        for (const auto &file : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream seed(file.path(), std::ios::binary);
            const std::vector<char> content{std::istreambuf_iterator<char>(seed), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(content.data()),
                                   content.size());
            ++inputs;
        }
    printf("%d inputs\n", inputs);
    return inputs > 0 ? 0 : 1;
}
