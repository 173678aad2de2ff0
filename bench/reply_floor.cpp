// What a reply in XML costs at least: its text read once, parsed in place, and the result copied once. The plug-in's
// calls, which come on top, are measured by plugin_benchmark. Each line is the best of several runs on one thread.
// Usage: reply_floor NATIVE RESULT [RUNS]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr size_t block_bytes = 262'144;  // a chunk of a reply
constexpr std::string_view entry_end = "</statistic>";

std::string contents(const char *file) {
  std::ifstream in(file, std::ios::binary);
  std::string text(std::istreambuf_iterator<char>(in), {});
  if (text.empty()) {
    std::fprintf(stderr, "reply_floor: %s: cannot be read, or is empty\n", file);
    std::exit(1);
  }
  return text;
}

void read_blocks(const char *file) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE *)> in(std::fopen(file, "rb"), &std::fclose);
  std::vector<char> block(block_bytes);
  std::setvbuf(in.get(), nullptr, _IONBF, 0);
  while (std::fread(block.data(), 1, block.size(), in.get()) > 0) {
  }
}

// Entries of the text, some in each chunk, as elements side by side.
std::vector<std::string_view> chunks(std::string_view text) {
  std::vector<std::string_view> result;
  text.remove_prefix(std::min(text.find("<statistic>"), text.size()));
  while (!text.empty()) {
    const size_t end = text.find(entry_end, std::min(block_bytes, text.size()));
    const size_t size = end == std::string_view::npos ? text.rfind(entry_end) : end;
    if (size == std::string_view::npos) {
      break;
    }
    result.push_back(text.substr(0, size + entry_end.size()));
    text.remove_prefix(size + entry_end.size());
  }
  return result;
}

void parse(const std::vector<std::string_view> &all) {
  for (const std::string_view each : all) {
    std::string text(each);
    pugi::xml_document document;
    constexpr unsigned options =
        pugi::parse_escapes | pugi::parse_eol | pugi::parse_fragment | pugi::parse_embed_pcdata;
    if (!document.load_buffer_inplace(text.data(), text.size() + 1, options, pugi::encoding_utf8)) {
      std::fputs("reply_floor: a chunk is not well-formed\n", stderr);
      std::exit(1);
    }
  }
}

void copy_blocks(std::string_view text) {
  std::vector<char> block(block_bytes);
  for (size_t at = 0; at < text.size(); at += block_bytes) {
    std::memcpy(block.data(), text.data() + at, std::min(block_bytes, text.size() - at));
    asm volatile("" : : "r"(block.data()) : "memory");  // the copy counts as used
  }
}

void measure(const char *what, int runs, const std::function<void()> &work) {
  double best_ms = 1e9;
  for (int run = 0; run < runs; ++run) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - begin;
    best_ms = std::min(best_ms, taken.count());
  }
  std::printf("%-28s %8.1f ms\n", what, best_ms);
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 3) {
    std::fputs("usage: reply_floor NATIVE RESULT [RUNS]\n", stderr);
    return 2;
  }
  const int runs = argc > 3 ? std::max(1, std::atoi(argv[3])) : 10;
  const std::string native = contents(argv[1]);
  const std::string result = contents(argv[2]);
  const std::vector<std::string_view> all = chunks(native);
  measure("read", runs, [&] { read_blocks(argv[1]); });
  measure("copy and parse in place", runs, [&] { parse(all); });
  measure("copy the result", runs, [&] { copy_blocks(result); });
}
