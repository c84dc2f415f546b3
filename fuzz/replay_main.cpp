// Gives every file of the folders named on the command line to a fuzz target, once.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" [[gnu::weak]] int LLVMFuzzerInitialize(int* argc, char*** argv);

int main(int argc, char** argv) {
  std::vector<std::filesystem::path> inputs;
  for (int i = 1; i < argc; ++i)
    for (const auto& entry : std::filesystem::directory_iterator(argv[i]))
      inputs.push_back(std::filesystem::absolute(entry.path()));
  if (LLVMFuzzerInitialize != nullptr) LLVMFuzzerInitialize(&argc, &argv);
  for (const auto& path : inputs) {
    std::ifstream in(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), {});
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  }
  std::printf("%zu inputs replayed\n", inputs.size());
  return inputs.empty() ? 1 : 0;
}
