// Replays fuzz inputs without libFuzzer, so the seed corpus and any saved reproducer run in the
// ordinary suite with the ordinary compiler and sanitizers.
//
//   reliability_fuzz_replay <file or directory>...
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
  namespace fs = std::filesystem;
  std::vector<fs::path> files(argv + 1, argv + argc);
  for (int a = 1; a < argc; ++a)
    if (fs::is_directory(argv[a])) files.insert(files.end(), fs::directory_iterator(argv[a]), {});
  int replayed = 0;
  for (const fs::path& file : files) {
    if (!fs::is_regular_file(file)) continue;
    std::ifstream in(file, std::ios::binary);
    const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(in), {}};
    replayed += LLVMFuzzerTestOneInput(bytes.data(), bytes.size()) == 0;
  }
  std::printf("%d inputs replayed\n", replayed);
  return replayed > 0 ? 0 : 1;
}
